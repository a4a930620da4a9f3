// Where a straight line runs through a box: the slab test, of which each kind of pick has its own
// borders.
#pragma once

#include "kernel/internal/BoxLimits.h"

#include <gp_XYZ.hxx>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace Orvex {

struct SlabRule
{
  // A component of the direction below this counts as none.
  double parallelBelow;
  // Whether a line that only touches the box meets it.
  bool touchingCounts;
};

struct LineSpan
{
  double from = -std::numeric_limits<double>::infinity();
  double to = std::numeric_limits<double>::infinity();
};

// The line's parameters between which it is in the box; none if it misses the box.
inline std::optional<LineSpan> SpanInBox(const gp_XYZ& origin, const gp_XYZ& direction,
                                         const BoxLimits& box, const SlabRule& rule)
{
  LineSpan span;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double o = origin.GetData()[axis], d = direction.GetData()[axis];
    if (std::abs(d) < rule.parallelBelow) {
      if (box.min[axis] > o || o > box.max[axis])
        return std::nullopt;
      continue;
    }
    double t1 = (box.min[axis] - o) / d, t2 = (box.max[axis] - o) / d;
    if (t1 > t2)
      std::swap(t1, t2);
    span.from = std::max(t1, span.from);
    span.to = std::min(t2, span.to);
    if (rule.touchingCounts ? span.from > span.to : span.from >= span.to)
      return std::nullopt;
  }
  return span;
}

inline bool IsFinite(const gp_XYZ& vector)
{
  return std::isfinite(vector.X()) && std::isfinite(vector.Y()) && std::isfinite(vector.Z());
}

} // namespace Orvex
