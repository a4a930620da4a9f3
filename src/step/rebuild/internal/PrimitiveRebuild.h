// Primitives by the numbers of their payloads.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Solid.hxx>

#include <string>
#include <vector>

namespace Orvex {

// kind: "primitive_box" and so on, as plans call them.
// Returns: null with the reason in `failure`.
// Errors: the kernel's exceptions.
TopoDS_Solid PrimitiveOf(const std::string& kind, const std::vector<ReplayFacePayload>& faces,
                         std::string& failure);

} // namespace Orvex
