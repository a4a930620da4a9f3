// What the kernel cannot work with, or never comes to an end with: NaN, the infinities and what it
// takes for infinite, from 1e100 on; curves too large to close.
#pragma once

#include <Precision.hxx>
#include <TopoDS_Shape.hxx>

#include <cmath>

namespace Orvex {

inline bool IsFinite(double value)
{
  return std::isfinite(value) && !Precision::IsInfinite(value);
}

// Whether all vertices lie within 1e50, where the squares of distances are still numbers; beyond, a
// boolean may hang or end the process. True for a null shape.
bool HasFinitePlaces(const TopoDS_Shape& shape);

// Whether an edge goes all the way round a curve and does not close: as that of a circle of 1e9,
// whose ends are further apart than its tolerance. Errors: Standard_Failure passes, of an edge
// without any curve.
bool HasTornEdge(const TopoDS_Shape& shape);

} // namespace Orvex
