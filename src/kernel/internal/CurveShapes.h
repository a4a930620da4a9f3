// What operations take for a curve, and when two shapes count as one.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Wire.hxx>

#include <initializer_list>
#include <vector>

namespace Orvex {

// An edge as it is, of any other shape the first edge in it; null if there is none.
TopoDS_Edge ToEdge(const TopoDS_Shape& shape);

// A wire as it is, of an edge the wire of it alone; null for any other shape.
TopoDS_Wire WireOfCurve(const TopoDS_Shape& shape);

// The same, but of a face its outer wire, and of any other shape the wire that all its edges make
// when they are joined one after the other; null if the last one doesn't join.
TopoDS_Wire ToWire(const TopoDS_Shape& shape);

// All edges of a shape in the explorer's order, each as often as it is met. None of a null shape.
std::vector<TopoDS_Edge> EdgesOf(const TopoDS_Shape& shape);

// Whether an edge is a curve in space: degenerate edges are not.
bool HasCurve(const TopoDS_Edge& edge);

// Whether an edge occurs twice, as the seam in the border of a cylinder does.
bool PassesAnEdgeTwice(const TopoDS_Wire& wire);

// Whether there are curved edges, and one of the shapes reaches so far out, beyond 4e8, that
// neighbouring numbers are further apart than the kernel's tolerance: it looks for closer points on
// them, almost for ever, and projects lines from 1e16 on to them with a crash.
bool AreTooLargeToFollow(std::initializer_list<TopoDS_Shape> shapes);

// The same thing at the same place, whatever the orientations; a null shape is like none.
bool IsSameShape(const TopoDS_Shape& first, const TopoDS_Shape& second);

// Whether a list holds one shape twice.
bool HasDuplicates(const std::vector<TopoDS_Shape>& shapes);

} // namespace Orvex
