// A tree over boxes that a straight line is walked through, nearest boxes first.
//
// Inner nodes have four children, whose boxes stand side by side in single precision, so that one
// step tests all four. Boxes and lines are rounded outwards: a walk never misses a box that the
// line meets, and may report one that it just misses; callers test exactly what they are given.
//
// The tree is built top down by the surface area heuristic over bins (I. Wald, "On fast
// Construction of SAH-based Bounding Volume Hierarchies", 2007) and then widened by opening the
// largest child (H. Dammertz et al., "Shallow Bounding Volume Hierarchies for Fast SIMD Ray Tracing
// of Incoherent Rays", 2008).
#pragma once

#include "kernel/internal/BoxLimits.h"

#include <gp_XYZ.hxx>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace Orvex {

using Floats = float __attribute__((vector_size(16)));

inline Floats Absolute(Floats values)
{
  using Bits = std::uint32_t __attribute__((vector_size(16)));
  return reinterpret_cast<Floats>(reinterpret_cast<Bits>(values) & 0x7fffffffU);
}

// Bit i is set if all bits of lane i are.
inline unsigned SetLanes(std::int32_t __attribute__((vector_size(16))) lanes)
{
#ifdef __SSE__
  return static_cast<unsigned>(__builtin_ia32_movmskps(reinterpret_cast<Floats>(lanes)));
#else
  unsigned bits = 0;
  for (unsigned i = 0; i < 4; ++i)
    bits |= lanes[i] != 0 ? 1U << i : 0U;
  return bits;
#endif
}

// A line for a walk, in single precision.
struct WalkLine
{
  // Boxes are taken as `reach` larger on all sides. What lies before the parameter `from` is left
  // out; minus infinity for the whole line.
  WalkLine(const gp_XYZ& origin, const gp_XYZ& direction, double reach, float from);

  // The origin as seen from the planes that the line comes to first, and from the others.
  std::array<Floats, 3> nearOrigin, farOrigin;
  std::array<Floats, 3> inverse;
  std::array<bool, 3> runsDown;
  float from;
};

class WideBoxTree
{
public:
  // Of no box.
  WideBoxTree() = default;
  // A box that is void or not finite is in no leaf.
  explicit WideBoxTree(const std::vector<BoxLimits>& boxes);

  // The boxes in the leaves, from left to right, as places among those given. Callers that keep
  // what is in the boxes in this order find what a walk visits close together.
  const std::vector<std::uint32_t>& Order() const
  {
    return order;
  }
  // The same, for callers that have put their own things in order; the tree forgets it.
  std::vector<std::uint32_t> TakeOrder()
  {
    return std::move(order);
  }

  // Calls visit(i) for places i of the order whose boxes the line meets between `line.from` and a
  // limit: the value that the last visit returned, infinity before. Near boxes come before far
  // ones, roughly. prefetch(i) is called for the first place of a leaf some time before.
  template <typename Visit, typename Prefetch>
  void Walk(const WalkLine& line, Visit&& visit, Prefetch&& prefetch) const;

private:
  struct alignas(64) Node
  {
    // Sides by axis, four boxes each.
    std::array<Floats, 3> min, max;
    // A leaf's first place in the order, or a node.
    std::array<std::uint32_t, 4> child;
    // Of a leaf; 0 for a node.
    std::array<std::uint8_t, 4> count;
    std::uint8_t used;
  };

  struct Pending
  {
    float near;
    std::uint32_t child;
    std::uint8_t count;
  };

  class Builder;

  // Deeper than Builder lets the tree become, three left over at each level.
  static constexpr std::size_t kStackSize = 256;

  static std::size_t MeetChildren(const Node& node, const WalkLine& line, float limit,
                                  std::array<Pending, 4>& met);

  std::vector<Node> nodes;
  std::vector<std::uint32_t> order;
};

inline std::size_t WideBoxTree::MeetChildren(const Node& node, const WalkLine& line, float limit,
                                             std::array<Pending, 4>& met)
{
  // Above what six roundings of a product of two can come to.
  static constexpr float kSlack = 1e-6F;
  Floats near = Floats{} + line.from, far = Floats{} + limit;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const Floats& first = line.runsDown[axis] ? node.max[axis] : node.min[axis];
    const Floats& last = line.runsDown[axis] ? node.min[axis] : node.max[axis];
    Floats in = (first - line.nearOrigin[axis]) * line.inverse[axis];
    Floats out = (last - line.farOrigin[axis]) * line.inverse[axis];
    in -= Absolute(in) * kSlack;
    out += Absolute(out) * kSlack;
    // What is no number is no limit.
    near = in > near ? in : near;
    far = out < far ? out : far;
  }
  std::size_t count = 0;
  for (unsigned left = SetLanes(near <= far) & ((1U << node.used) - 1); left != 0;
       left &= left - 1) {
    const auto i = static_cast<std::size_t>(std::countr_zero(left));
    const Pending added = {near[i], node.child[i], node.count[i]};
    std::size_t place = count++;
    for (; place > 0 && met[place - 1].near < added.near; --place)
      met[place] = met[place - 1];
    met[place] = added;
  }
  return count;
}

template <typename Visit, typename Prefetch>
void WideBoxTree::Walk(const WalkLine& line, Visit&& visit, Prefetch&& prefetch) const
{
  if (nodes.empty())
    return;
  float limit = std::numeric_limits<float>::infinity();
  std::array<Pending, kStackSize> stack;
  std::size_t depth = 0;
  stack[depth++] = {line.from, 0, 0};
  while (depth > 0) {
    const Pending next = stack[--depth];
    if (next.near > limit)
      continue;
    for (std::uint32_t i = next.child; i < next.child + next.count; ++i)
      limit = visit(i);
    if (next.count > 0)
      continue;
    std::array<Pending, 4> met;
    const std::size_t count = MeetChildren(nodes[next.child], line, limit, met);
    for (std::size_t i = 0; i < count; ++i) {
      stack[depth++] = met[i];
      if (met[i].count > 0) {
        prefetch(met[i].child);
      } else {
        __builtin_prefetch(&nodes[met[i].child].min);
        __builtin_prefetch(&nodes[met[i].child].child);
      }
    }
  }
}

} // namespace Orvex
