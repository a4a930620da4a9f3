// Booleans of the kernel that leave their operands as they are, bit for bit.
//
// The shapes on labels are shared with the whole program, and the kernel writes on what it is
// given. With its default options a boolean raises the tolerances of its operands' edges and
// vertices and adds curves on surfaces to edges that have none there. Its non-destructive mode does
// neither; what is left is the mark "free", which goes when an operand becomes part of a result as
// a whole, and without which no further sub-shape can be added to it. The operations here use that
// mode and put the mark back. Copies of the operands would do as well, at a tenth of the time of a
// boolean.
//
// The results share their unchanged sub-shapes with the operands.
#pragma once

#include <BOPAlgo_Operation.hxx>
#include <TopoDS_Shape.hxx>

namespace Orvex {

// The boolean of two shapes with the kernel's default tolerance.
// Returns: null if the kernel cannot do it.
// Errors: Standard_Failure passes.
TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second);

// Both shapes side by side; the other one if one is null.
TopoDS_Shape CompoundOf(const TopoDS_Shape& first, const TopoDS_Shape& second);

} // namespace Orvex
