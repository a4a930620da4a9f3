#include "collision/internal/TriBVHTests.h"

#include <cstdint>

namespace Orvex {

namespace {

enum class Walk { GoOn, End };

// Hands node pairs to `isDropped`, and pairs of leaves that are not dropped to `atLeaves`, which
// tells whether to go on; `mayGoOn` is asked before each visit.
template <typename MayGoOn, typename IsDropped, typename AtLeaves>
void WalkNodePairs(const TriBVH& a, const TriBVH& b, MayGoOn&& mayGoOn, IsDropped&& isDropped,
                   AtLeaves&& atLeaves)
{
  std::vector<std::pair<int, int>> stack;
  stack.reserve(64);
  stack.emplace_back(a.Root(), b.Root());
  while (!stack.empty() && mayGoOn()) {
    const auto [first, second] = stack.back();
    stack.pop_back();
    const TriBVH::Node& nodeA = a.At(first);
    const TriBVH::Node& nodeB = b.At(second);
    if (isDropped(nodeA.box, nodeB.box))
      continue;
    if (!nodeB.IsLeaf()) {
      stack.emplace_back(first, nodeB.left);
      stack.emplace_back(first, nodeB.right);
    } else if (!nodeA.IsLeaf()) {
      stack.emplace_back(nodeA.left, second);
      stack.emplace_back(nodeA.right, second);
    } else if (atLeaves(nodeA, nodeB) == Walk::End) {
      return;
    }
  }
}

// Calls `test` with the corners of each triangle of the one leaf and of the other until it is true.
template <typename Test>
bool AnyTrianglePair(const TriBVH& a, const TriBVH::Node& leafA, const TriBVH& b,
                     const TriBVH::Node& leafB, Test&& test)
{
  for (int i = leafA.firstTriangle; i < leafA.firstTriangle + leafA.triangleCount; ++i) {
    const TriangleCorners p = a.Corners(i);
    for (int j = leafB.firstTriangle; j < leafB.firstTriangle + leafB.triangleCount; ++j)
      if (test(p, b.Corners(j)))
        return true;
  }
  return false;
}

template <typename AtLeaves>
void WalkOverlappingLeaves(const TriBVH& a, const TriBVH& b, double tolerance, AtLeaves&& atLeaves)
{
  WalkNodePairs(
    a, b, [] { return true; },
    [tolerance](const BoxLimits& p, const BoxLimits& q) { return !MayOverlap(p, q, tolerance); },
    atLeaves);
}

// Finds the least distance by and by.
class DistanceSearch
{
public:
  DistanceSearch(const TriBVH& a_, const TriBVH& b_, double tolerance,
                 const MeshDistanceLimits& limits)
      : a(a_), b(b_), tolerance2(tolerance * tolerance),
        mostVisits(limits.maxNodePairVisits < 1 ? MeshDistanceLimits().maxNodePairVisits
                                                : limits.maxNodePairVisits)
  {
    const double factor = limits.farFactor > 0 ? limits.farFactor : MeshDistanceLimits().farFactor;
    far2 = factor * tolerance * factor * tolerance;
  }

  MeshDistance Run()
  {
    WalkNodePairs(
      a, b, [this] { return MayGoOn(); },
      [this](const BoxLimits& p, const BoxLimits& q) { return SquaredDistance(p, q) > best; },
      [this](const TriBVH::Node& p, const TriBVH::Node& q) { return Compare(p, q); });
    if (best == BoxLimits::kNone)
      return {};
    return {true, std::sqrt(best), tolerance2 >= best};
  }

private:
  bool MayGoOn()
  {
    if (++visits > mostVisits)
      return false;
    // The first leaves are so far apart that nothing near is expected. Once the best is below, it
    // stays there.
    return best == BoxLimits::kNone || !(best > far2 && best > tolerance2);
  }

  Walk Compare(const TriBVH::Node& leafA, const TriBVH::Node& leafB)
  {
    const auto isWithin = [this](const TriangleCorners& p, const TriangleCorners& q) {
      if (SquaredDistance(BoxOf(p), BoxOf(q)) < best)
        best = std::min(best, SquaredTriangleDistance(p, q));
      return tolerance2 >= best;
    };
    return AnyTrianglePair(a, leafA, b, leafB, isWithin) ? Walk::End : Walk::GoOn;
  }

  const TriBVH& a;
  const TriBVH& b;
  double tolerance2;
  double far2;
  std::int64_t mostVisits;
  std::int64_t visits = 0;
  double best = BoxLimits::kNone;
};

// The triangles of both parts by the cell that their centre is in.
class TriangleGrid
{
public:
  TriangleGrid(const TriBVH& a, const TriBVH& b, double tolerance)
  {
    BoxLimits box;
    for (const TriBVH* tree : {&a, &b})
      for (const gp_XYZ& vertex : tree->vertices)
        box.Add(vertex);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      origin[axis] = box.min[axis] - std::abs(tolerance);
      size = std::max(size, box.Extent(axis) + 2 * std::abs(tolerance));
    }
    cell = size / Resolution(a.triangles.size() + b.triangles.size());
    Enter(a, 0);
    Enter(b, 1);
    std::sort(entries.begin(), entries.end());
  }

  // Calls `atPair` with a triangle of each part that share a cell until it is true.
  template <typename AtPair>
  void WalkPairs(AtPair&& atPair) const
  {
    for (std::size_t first = 0; first < entries.size();) {
      std::size_t middle = first, last = first;
      for (; last < entries.size() && entries[last].key == entries[first].key; ++last)
        middle += entries[last].part == 0;
      for (std::size_t i = first; i < middle; ++i)
        for (std::size_t j = middle; j < last; ++j)
          if (atPair(entries[i].triangle, entries[j].triangle))
            return;
      first = last;
    }
  }

private:
  struct Entry
  {
    std::array<std::int64_t, 3> key;
    int part;
    int triangle;

    bool operator<(const Entry& other) const
    {
      return std::tie(key, part, triangle) < std::tie(other.key, other.part, other.triangle);
    }
  };

  static double Resolution(std::size_t triangles)
  {
    return std::clamp(std::trunc(std::cbrt(static_cast<double>(triangles) / 10.0)), 8.0, 128.0);
  }

  void Enter(const TriBVH& tree, int part)
  {
    for (int i = 0; i < static_cast<int>(tree.triangles.size()); ++i) {
      const TriangleCorners corners = tree.Corners(i);
      const gp_XYZ centre = (corners[0] + corners[1] + corners[2]) / 3.0;
      Entry entry{{}, part, i};
      for (std::size_t axis = 0; axis < 3; ++axis)
        entry.key[axis] = CellNumber((centre.GetData()[axis] - origin[axis]) / cell);
      entries.push_back(entry);
    }
  }

  static std::int64_t CellNumber(double position)
  {
    // Inside the box of all vertices; only what is no number lies outside of the grid.
    return std::isfinite(position) ? static_cast<std::int64_t>(std::floor(position)) : -1;
  }

  std::array<double, 3> origin;
  double size = 1.0;
  double cell;
  std::vector<Entry> entries;
};

} // namespace

bool LeavesMayOverlap(const TriBVH& a, const TriBVH& b, double tolerance)
{
  bool found = false;
  WalkOverlappingLeaves(a, b, tolerance, [&found](const TriBVH::Node&, const TriBVH::Node&) {
    found = true;
    return Walk::End;
  });
  return found;
}

bool MeshesMeet(const TriBVH& a, const TriBVH& b, double tolerance)
{
  bool found = false;
  WalkOverlappingLeaves(a, b, tolerance, [&](const TriBVH::Node& p, const TriBVH::Node& q) {
    found = AnyTrianglePair(a, p, b, q, [&](const TriangleCorners& s, const TriangleCorners& t) {
      return TrianglesMeet(s, t, tolerance);
    });
    return found ? Walk::End : Walk::GoOn;
  });
  return found;
}

MeshDistance DistanceOf(const TriBVH& a, const TriBVH& b, double tolerance,
                        const MeshDistanceLimits& limits)
{
  const double apart = std::sqrt(SquaredDistance(a.At(a.Root()).box, b.At(b.Root()).box));
  if (apart > 10 * tolerance)
    return {true, apart, false};
  return DistanceSearch(a, b, tolerance, limits).Run();
}

MeshDistance DistanceInGrid(const TriBVH& a, const TriBVH& b, double tolerance)
{
  double best = BoxLimits::kNone;
  bool meets = false;
  TriangleGrid(a, b, tolerance).WalkPairs([&](int i, int j) {
    const TriangleCorners p = a.Corners(i), q = b.Corners(j);
    meets = TrianglesMeet(p, q, tolerance);
    best = std::min(best, meets ? 0.0 : SquaredTriangleDistance(p, q));
    return meets;
  });
  if (best == BoxLimits::kNone)
    return {};
  return {true, std::sqrt(best), meets || tolerance * tolerance >= best};
}

} // namespace Orvex
