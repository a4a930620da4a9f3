// Part records for a list of shapes.
#pragma once

#include "collision/OrvexModelPart.h"

#include <vector>

namespace Orvex {

// One for each shape, "Part_0" and so on, measured side by side.
// Errors: Standard_Failure passes.
std::vector<OrvexModelPart> PartsOf(const std::vector<TopoDS_Shape>& shapes);

} // namespace Orvex
