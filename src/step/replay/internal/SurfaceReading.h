// The surface of a face, from the kernel into its record.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Face.hxx>

namespace Orvex {

// Fills all but the bounds.
// Requires: the payload has its id.
// Errors: the kernel's exceptions, but those of a basis curve, which is then left out.
void ReadSurface(const TopoDS_Face& face, ReplaySurfacePayload& payload);

} // namespace Orvex
