// The loops of a face, from the kernel into their records.
#pragma once

#include "step/replay/ReplayPayloads.h"
#include "step/replay/internal/ReplayIdIndex.h"

#include <TopoDS_Face.hxx>

namespace Orvex {

// Fills the sense and the loops. What of a coedge cannot be read is left out of it.
// Errors: the kernel's exceptions from the walk along the wires.
void ReadTrim(const TopoDS_Face& face, const ReplayIdIndex& index, ReplayFaceTrimPayload& payload);

} // namespace Orvex
