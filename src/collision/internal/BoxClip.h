// What of a shape lies in a box with sides along the axes.
#pragma once

#include "kernel/internal/BoxLimits.h"

#include <TopoDS_Shape.hxx>

namespace Orvex {

// By the common with the box. Null if the kernel cannot make it.
// Errors: Standard_Failure passes.
TopoDS_Shape ClippedByCommon(const TopoDS_Shape& shape, const BoxLimits& region, double fuzzy);

// By cutting away what is beyond each side, X first, the lower side first. The slabs reach well
// beyond `overall`, which is to hold the shape. Null if a cut fails.
// Errors: Standard_Failure passes.
TopoDS_Shape ClippedBySlabs(const TopoDS_Shape& shape, const BoxLimits& region,
                            const BoxLimits& overall, double fuzzy);

} // namespace Orvex
