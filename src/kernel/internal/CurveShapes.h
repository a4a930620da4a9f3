// What operations take for a curve.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Wire.hxx>

namespace Orvex {

// An edge as it is, of any other shape the first edge in it; null if there is none.
TopoDS_Edge ToEdge(const TopoDS_Shape& shape);

// A wire as it is, of an edge the wire of it alone; null for any other shape.
TopoDS_Wire WireOfCurve(const TopoDS_Shape& shape);

} // namespace Orvex
