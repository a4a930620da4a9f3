// Boxes as six plain numbers, for loops over many of them, and what is to be done with those.
#pragma once

#include <Bnd_Box.hxx>
#include <gp_XYZ.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace Orvex {

struct BoxLimits
{
  static constexpr double kNone = std::numeric_limits<double>::infinity();

  std::array<double, 3> min{kNone, kNone, kNone};
  std::array<double, 3> max{-kNone, -kNone, -kNone};

  bool IsVoid() const
  {
    return min[0] > max[0];
  }

  void Add(const gp_XYZ& point)
  {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double value = point.GetData()[axis];
      min[axis] = std::min(min[axis], value);
      max[axis] = std::max(max[axis], value);
    }
  }

  void Add(const BoxLimits& other)
  {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      min[axis] = std::min(min[axis], other.min[axis]);
      max[axis] = std::max(max[axis], other.max[axis]);
    }
  }

  double Extent(std::size_t axis) const
  {
    return max[axis] - min[axis];
  }

  double Middle(std::size_t axis) const
  {
    return 0.5 * (min[axis] + max[axis]);
  }

  // X only if it is longer than both others, Y if it is longer than Z.
  std::size_t LongestAxis() const
  {
    const double dx = Extent(0), dy = Extent(1), dz = Extent(2);
    return dx > dy && dx > dz ? 0 : (dy > dz ? 1 : 2);
  }
};

// The limits of the kernel's box, its gap included; none for a void one. Open sides lie at the
// kernel's infinity.
inline std::optional<BoxLimits> LimitsOf(const Bnd_Box& box)
{
  if (box.IsVoid())
    return std::nullopt;
  BoxLimits limits;
  box.Get(limits.min[0], limits.min[1], limits.min[2], limits.max[0], limits.max[1], limits.max[2]);
  return limits;
}

// More than `gap` apart on some axis.
inline bool AreApart(const BoxLimits& a, const BoxLimits& b, double gap)
{
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (a.min[axis] - b.max[axis] > gap || b.min[axis] - a.max[axis] > gap)
      return true;
  return false;
}

// Boxes enlarged by the tolerance each; a void one rules nothing out.
inline bool MayOverlap(const BoxLimits& a, const BoxLimits& b, double tolerance)
{
  return a.IsVoid() || b.IsVoid() || !AreApart(a, b, 2 * std::abs(tolerance));
}

// 0 if either is void.
inline double SquaredDistance(const BoxLimits& a, const BoxLimits& b)
{
  if (a.IsVoid() || b.IsVoid())
    return 0;
  double sum = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double gap = std::max({0.0, a.min[axis] - b.max[axis], b.min[axis] - a.max[axis]});
    sum += gap * gap;
  }
  return sum;
}

// For sorting: what is no number comes first instead of breaking the order.
inline double SortKey(double value)
{
  return std::isnan(value) ? -std::numeric_limits<double>::infinity() : value;
}

} // namespace Orvex
