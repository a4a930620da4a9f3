// Numbers that the kernel can work with. With others it may never come to an end: with NaN, the
// infinities, and what it takes for infinite, from 1e100 on.
#pragma once

#include <Precision.hxx>
#include <TopoDS_Shape.hxx>

#include <cmath>

namespace Orvex {

inline bool IsFinite(double value)
{
  return std::isfinite(value) && !Precision::IsInfinite(value);
}

// Whether all vertices are at such places. True for a null shape.
bool HasFinitePlaces(const TopoDS_Shape& shape);

} // namespace Orvex
