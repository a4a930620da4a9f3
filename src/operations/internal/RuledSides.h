// Ruled faces between two wires, and faces sewn into a skin.
#pragma once

#include <TopoDS_Shape.hxx>
#include <TopoDS_Wire.hxx>

#include <vector>

namespace Orvex {

// A ruled face for each pair of edges, in the order of both wires, sewn together.
// Errors: AttemptFailure unless both have as many edges, at least one, with curves;
//   Standard_Failure passes.
TopoDS_Shape RuledBetween(const TopoDS_Wire& first, const TopoDS_Wire& second);

// The faces of all shapes sewn where their borders lie within 1e-6; may be null.
// Errors: Standard_Failure passes.
TopoDS_Shape Sewn(const std::vector<TopoDS_Shape>& shapes);

} // namespace Orvex
