#include "picking/internal/WideBoxTree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace Orvex {

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::uint32_t kMaxLeafSize = 4;
constexpr std::size_t kBins = 16;
// Below this, ranges are halved by count, which ends in time for the walk's stack.
constexpr int kMaxUnevenDepth = 40;

float RoundedDown(double value)
{
  const float rounded = static_cast<float>(value);
  return rounded > value ? std::nextafter(rounded, -kInfinity) : rounded;
}

float RoundedUp(double value)
{
  return -RoundedDown(-value);
}

// Cheaper than the next number down, and never above it.
float Below(double value)
{
  static constexpr float kRounding = 1.2e-7F, kLeast = std::numeric_limits<float>::min();
  const float rounded = static_cast<float>(value);
  return rounded - (std::abs(rounded) * kRounding + kLeast);
}

} // namespace

WalkLine::WalkLine(const gp_XYZ& origin, const gp_XYZ& direction, double reach, float start)
    : from(start)
{
  static constexpr double kLeastComponent = 1e-30;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double o = origin.GetData()[axis], d = direction.GetData()[axis];
    runsDown[axis] = d < 0;
    const float below = Below(o - reach), above = -Below(-o - reach);
    nearOrigin[axis] = Floats{} + (runsDown[axis] ? below : above);
    farOrigin[axis] = Floats{} + (runsDown[axis] ? above : below);
    const double slope = std::copysign(std::max(std::abs(d), kLeastComponent), d < 0 ? -1.0 : 1.0);
    inverse[axis] = Floats{} + static_cast<float>(1 / slope);
  }
}

// Splits ranges of `order`, so that every node's boxes are one stretch of it.
class WideBoxTree::Builder
{
public:
  Builder(const std::vector<BoxLimits>& boxesToSort, std::vector<std::uint32_t>& orderToFill,
          std::vector<Node>& nodesToFill)
      : boxes(boxesToSort), order(orderToFill), nodes(nodesToFill)
  {}

  void Run()
  {
    for (std::uint32_t i = 0; i < boxes.size(); ++i)
      if (boxes[i].min[0] <= boxes[i].max[0])
        order.push_back(i);
    if (!order.empty())
      MakeNode(RangeOf(0, static_cast<std::uint32_t>(order.size()), 0));
  }

private:
  struct Range
  {
    std::uint32_t first, last;
    int depth;
    BoxLimits box;
    // Of the boxes' middles.
    BoxLimits middles;

    std::uint32_t Size() const
    {
      return last - first;
    }
  };

  struct Bin
  {
    BoxLimits box;
    std::uint32_t count = 0;
  };

  static double HalfArea(const BoxLimits& box)
  {
    if (box.IsVoid())
      return 0;
    const double x = box.Extent(0), y = box.Extent(1), z = box.Extent(2);
    return x * y + y * z + z * x;
  }

  Range RangeOf(std::uint32_t first, std::uint32_t last, int depth) const
  {
    Range range{first, last, depth, {}, {}};
    for (std::uint32_t i = first; i < last; ++i) {
      const BoxLimits& box = boxes[order[i]];
      range.box.Add(box);
      range.middles.Add(gp_XYZ(box.Middle(0), box.Middle(1), box.Middle(2)));
    }
    return range;
  }

  std::size_t BinOf(std::uint32_t item, const Range& range, std::size_t axis) const
  {
    const double place =
      (boxes[item].Middle(axis) - range.middles.min[axis]) / range.middles.Extent(axis);
    return std::min(kBins - 1, static_cast<std::size_t>(std::max(0.0, place * kBins)));
  }

  // The first bin behind the cheapest split on the axis, and its cost.
  std::pair<std::size_t, double> CheapestSplit(const Range& range, std::size_t axis) const
  {
    std::array<Bin, kBins> bins;
    for (std::uint32_t i = range.first; i < range.last; ++i) {
      Bin& bin = bins[BinOf(order[i], range, axis)];
      bin.box.Add(boxes[order[i]]);
      ++bin.count;
    }
    std::array<double, kBins> costBehind{};
    Bin sum;
    for (std::size_t i = kBins - 1; i > 0; --i) {
      sum.box.Add(bins[i].box);
      sum.count += bins[i].count;
      costBehind[i] = HalfArea(sum.box) * sum.count;
    }
    std::pair<std::size_t, double> best{0, BoxLimits::kNone};
    sum = {};
    for (std::size_t i = 1; i < kBins; ++i) {
      sum.box.Add(bins[i - 1].box);
      sum.count += bins[i - 1].count;
      const double cost = HalfArea(sum.box) * sum.count + costBehind[i];
      if (sum.count > 0 && sum.count < range.Size() && cost < best.second)
        best = {i, cost};
    }
    return best;
  }

  std::uint32_t MiddleOf(const Range& range)
  {
    double bestCost = BoxLimits::kNone;
    std::size_t bestAxis = 0, bestBin = 0;
    for (std::size_t axis = 0; axis < 3 && range.depth < kMaxUnevenDepth; ++axis) {
      if (!(range.middles.Extent(axis) > 0))
        continue;
      const auto [bin, cost] = CheapestSplit(range, axis);
      if (cost < bestCost)
        std::tie(bestCost, bestAxis, bestBin) = std::tuple(cost, axis, bin);
    }
    if (bestBin == 0)
      return range.first + range.Size() / 2;
    const auto middle =
      std::partition(order.begin() + range.first, order.begin() + range.last,
                     [&](std::uint32_t item) { return BinOf(item, range, bestAxis) < bestBin; });
    return static_cast<std::uint32_t>(middle - order.begin());
  }

  // Up to four parts of the range: the largest that is no leaf is split until there are as many.
  std::vector<Range> Parts(const Range& whole)
  {
    std::vector<Range> parts{whole};
    while (parts.size() < 4) {
      auto largest = parts.end();
      for (auto part = parts.begin(); part != parts.end(); ++part)
        if (part->Size() > kMaxLeafSize &&
            (largest == parts.end() || HalfArea(part->box) > HalfArea(largest->box)))
          largest = part;
      if (largest == parts.end())
        break;
      const Range split = *largest;
      const std::uint32_t middle = MiddleOf(split);
      *largest = RangeOf(split.first, middle, split.depth + 1);
      parts.push_back(RangeOf(middle, split.last, split.depth + 1));
    }
    return parts;
  }

  std::uint32_t MakeNode(const Range& range)
  {
    const auto made = static_cast<std::uint32_t>(nodes.size());
    nodes.emplace_back();
    const std::vector<Range> parts = Parts(range);
    nodes[made].used = static_cast<std::uint8_t>(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const bool isLeaf = parts[i].Size() <= kMaxLeafSize;
      const std::uint32_t child = isLeaf ? parts[i].first : MakeNode(parts[i]);
      Node& node = nodes[made];
      node.child[i] = child;
      node.count[i] = isLeaf ? static_cast<std::uint8_t>(parts[i].Size()) : std::uint8_t{0};
      for (std::size_t axis = 0; axis < 3; ++axis) {
        node.min[axis][i] = RoundedDown(parts[i].box.min[axis]);
        node.max[axis][i] = RoundedUp(parts[i].box.max[axis]);
      }
    }
    return made;
  }

  const std::vector<BoxLimits>& boxes;
  std::vector<std::uint32_t>& order;
  std::vector<Node>& nodes;
};

WideBoxTree::WideBoxTree(const std::vector<BoxLimits>& boxes)
{
  Builder(boxes, order, nodes).Run();
  nodes.shrink_to_fit();
}

} // namespace Orvex
