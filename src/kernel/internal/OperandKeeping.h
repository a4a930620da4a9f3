// Booleans of the kernel that leave their operands as they are, bit for bit.
//
// The shapes on labels are shared with the whole program, and the kernel writes on what it is
// given. With its default options a boolean raises the tolerances of its operands' edges and
// vertices, adds curves on surfaces to edges that have none there, and takes the mark "free" from
// an operand that becomes part of the result as a whole; without that mark the kernel adds nothing
// to a shape any more. Its non-destructive mode does only the last, but now and then it gives
// another, wrong result: for one or two in ten thousand random pairs of valid operands. So the
// kernel gets copies of the operands' topology. That costs a few percent of a boolean; half of it
// comes back, since the history of sub-shapes is switched off.
//
// Results share curves and surfaces with the operands, but no sub-shapes.
#pragma once

#include <BOPAlgo_Operation.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <TopoDS_Shape.hxx>

#include <functional>

namespace Orvex {

using BooleanSetup = std::function<void(BRepAlgoAPI_BooleanOperation&)>;

// The boolean of two shapes, with the kernel's default options unless `setup` sets others.
// Returns: null if the kernel cannot do it, or might not come to an end: see KernelLimits.h.
// Errors: Standard_Failure passes.
TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second, const BooleanSetup& setup = {});

// The edges and vertices in which two shapes meet, without curves on their surfaces; an empty
// compound if they do not meet.
// Returns: null as above.
// Errors: Standard_Failure passes.
TopoDS_Shape SectionOf(const TopoDS_Shape& first, const TopoDS_Shape& second);

// Copies of both shapes side by side; the other shape itself if one is null.
TopoDS_Shape CompoundOf(const TopoDS_Shape& first, const TopoDS_Shape& second);

} // namespace Orvex
