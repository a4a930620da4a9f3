// Booleans of the kernel that leave their operands as they are, bit for bit.
//
// The shapes on labels are shared with the whole program, and the kernel writes on what it is
// given. With its default options a boolean raises the tolerances of its operands' edges and
// vertices and adds curves on surfaces to edges that have none there. Its non-destructive mode does
// neither, but an operand that becomes part of the result as a whole still loses the mark "free",
// without which the kernel adds nothing to it any more. The operations here use that mode, on
// stand-ins for the topmost shapes. Copies of all sub-shapes would do as well, at a tenth of the
// time of a boolean.
//
// Caveat: results share sub-shapes with the operands, so that both see what is written on these
// later: a mesh, for one.
#pragma once

#include <BOPAlgo_Operation.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <TopoDS_Shape.hxx>

#include <functional>

namespace Orvex {

using BooleanSetup = std::function<void(BRepAlgoAPI_BooleanOperation&)>;

// The boolean of two shapes, with the kernel's default tolerance unless `setup` sets options. A
// setup that switches the non-destructive mode off needs operands that nobody else has.
// Returns: null if the kernel cannot do it.
// Errors: Standard_Failure passes.
TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second, const BooleanSetup& setup = {});

// Both shapes side by side; the other one if one is null.
TopoDS_Shape CompoundOf(const TopoDS_Shape& first, const TopoDS_Shape& second);

} // namespace Orvex
