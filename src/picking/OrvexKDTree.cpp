#include "picking/OrvexKDTree.h"

#include "kernel/internal/BoxLimits.h"
#include "picking/internal/LineBox.h"
#include "picking/internal/RayTriangle.h"
#include "picking/internal/WideBoxTree.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>

using namespace Orvex;

namespace {

constexpr std::size_t kMaxLeafSize = 32;
constexpr int kMaxDepth = 20;
constexpr std::uint32_t kMaxFace = 0x7fffffff;
constexpr std::size_t kMaxTriangles = kMaxFace;
constexpr std::uint32_t kRanksPerHint = 16;
constexpr SlabRule kMeeting = {1e-10, true};
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
// Of the condition below.
constexpr double kThin = 1e7;

struct StoredTriangle
{
  TriangleXYZ corners;
  std::uint32_t face : 31;
  // Whether its barycentric terms are too inexact to be judged before the exact test.
  std::uint32_t isThin : 1;
  // Its place among the triangles of all leaves from left to right.
  std::uint32_t rank;
};

BoxLimits BoxOf(const TriangleXYZ& corners)
{
  BoxLimits box;
  for (const gp_XYZ& corner : corners)
    box.Add(corner);
  return box;
}

TriangleXYZ CornersOf(const OrvexTriangleData& triangle)
{
  return {triangle.A.XYZ(), triangle.B.XYZ(), triangle.C.XYZ()};
}

// X unless another side is longer than both others.
std::size_t SplitAxis(const BoxLimits& box)
{
  const double dx = box.Extent(0), dy = box.Extent(1), dz = box.Extent(2);
  if (dy > dx && dy > dz)
    return 1;
  return dz > dx && dz > dy ? 2 : 0;
}

bool Meets(const gp_XYZ& origin, const gp_XYZ& direction, const BoxLimits& box)
{
  const auto span = SpanInBox(origin, direction, box, kMeeting);
  return span && !(span->to < 0);
}

// How ill a triangle's barycentric terms are determined: 1 for a right angle at the first corner.
double ConditionOf(const TriangleSides& sides)
{
  return sides.d00 * sides.d11 / std::abs(sides.determinant);
}

// The same with the sides' lengths: a short side's term bears the roundings of the long one.
double SkewOf(const TriangleSides& sides)
{
  return ConditionOf(sides) *
         std::sqrt(std::max(sides.d00, sides.d11) / std::min(sides.d00, sides.d11));
}

// A box outside of which no point is found to be in the triangle, roundings included. Void for a
// triangle that no ray strikes.
BoxLimits StruckBox(const TriangleXYZ& corners)
{
  const TriangleSides sides(corners);
  if (!sides.CanBeStruck() || !IsFinite(sides.normal))
    return {};
  const double length = std::sqrt(std::max(sides.d00, sides.d11));
  const double margin = length * (4 * kStruckMargin + 64 * kEpsilon * ConditionOf(sides));
  BoxLimits box = BoxOf(corners);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.min[axis] -= margin;
    box.max[axis] += margin;
  }
  return box;
}

} // namespace

struct OrvexKDTree::Node
{
  BoxLimits box;
  // The ranks of the node's triangles.
  std::uint32_t first;
  std::uint32_t count;
  // Null in leaves.
  std::unique_ptr<Node> left;
  std::unique_ptr<Node> right;

  bool IsLeaf() const
  {
    return left == nullptr;
  }
};

// What picks need of a leaf, side by side.
struct Leaf
{
  BoxLimits box;
  std::uint32_t firstRank;
};

struct OrvexKDTree::Contents
{
  explicit Contents(const std::vector<OrvexTriangleData>& given);

  void BuildLeaves(const std::vector<OrvexTriangleData>& given);
  std::unique_ptr<Node> Build(const std::vector<BoxLimits>& boxes, std::uint32_t first,
                              std::uint32_t count, int depth);
  void Split(const std::vector<BoxLimits>& boxes, Node& node, int depth);
  std::vector<std::uint32_t> BuildWalkTree(const std::vector<OrvexTriangleData>& given);
  void Store(const std::vector<OrvexTriangleData>& given, const std::vector<std::uint32_t>& order);

  // The rank behind the last one of the leaf.
  std::uint32_t EndOf(std::size_t leaf) const
  {
    return leaf + 1 < leaves.size() ? leaves[leaf + 1].firstRank
                                    : static_cast<std::uint32_t>(places.size());
  }
  bool IsCandidate(std::uint32_t rank, const gp_XYZ& origin, const gp_XYZ& direction) const;
  OrvexTriangleData Copy(std::uint32_t rank) const;

  // Calls visit(leaf) for the leaves that a ray meets, left before right.
  template <typename Visit>
  void ForLeavesOn(const gp_XYZ& origin, const gp_XYZ& direction, const Visit& visit) const
  {
    if (IsFinite(origin) && IsFinite(direction))
      ForLeavesBelow(root.get(), origin, direction, visit);
  }
  template <typename Visit>
  void ForLeavesBelow(const Node* node, const gp_XYZ& origin, const gp_XYZ& direction,
                      const Visit& visit) const
  {
    if (node == nullptr || !Meets(origin, direction, node->box))
      return;
    if (node->IsLeaf())
      return visit(*node);
    ForLeavesBelow(node->left.get(), origin, direction, visit);
    ForLeavesBelow(node->right.get(), origin, direction, visit);
  }

  std::unique_ptr<Node> root;
  // From left to right.
  std::vector<Leaf> leaves;
  // For every kRanksPerHint-th rank the number of its leaf.
  std::vector<std::uint32_t> leafHints;
  // By rank: the triangle's place among those given, and among those stored.
  std::vector<std::uint32_t> places;
  std::vector<std::uint32_t> storedAt;

  WideBoxTree walkTree;
  // In the order of the walk's tree; those that no ray strikes at the end.
  std::vector<StoredTriangle> triangles;
  std::vector<TopoDS_Shape> faces;
  // Larger than any number that the tests of these triangles come across, but for the origin's.
  double scale = 0;
};

OrvexKDTree::Contents::Contents(const std::vector<OrvexTriangleData>& given)
{
  if (given.size() > kMaxTriangles)
    throw std::length_error("more triangles than an OrvexKDTree holds");
  if (given.empty())
    return;
  BuildLeaves(given);
  Store(given, BuildWalkTree(given));
}

void OrvexKDTree::Contents::BuildLeaves(const std::vector<OrvexTriangleData>& given)
{
  std::vector<BoxLimits> boxes;
  boxes.reserve(given.size());
  for (const OrvexTriangleData& triangle : given)
    boxes.push_back(BoxOf(CornersOf(triangle)));
  places.resize(given.size());
  std::iota(places.begin(), places.end(), 0U);
  root = Build(boxes, 0, static_cast<std::uint32_t>(given.size()), 0);
  leaves.shrink_to_fit();
  for (std::uint32_t leaf = 0; leaf < leaves.size(); ++leaf)
    while (leafHints.size() * kRanksPerHint < EndOf(leaf))
      leafHints.push_back(leaf);
  for (std::size_t axis = 0; axis < 3; ++axis)
    scale = std::max({scale, std::abs(root->box.min[axis]), std::abs(root->box.max[axis]),
                      root->box.Extent(axis)});
}

std::unique_ptr<OrvexKDTree::Node> OrvexKDTree::Contents::Build(const std::vector<BoxLimits>& boxes,
                                                                std::uint32_t first,
                                                                std::uint32_t count, int depth)
{
  auto node = std::make_unique<Node>(Node{{}, first, count, nullptr, nullptr});
  for (std::uint32_t i = first; i < first + count; ++i)
    node->box.Add(boxes[places[i]]);
  if (count > kMaxLeafSize && depth < kMaxDepth)
    Split(boxes, *node, depth);
  if (node->IsLeaf())
    leaves.push_back({node->box, first});
  return node;
}

// Leaves the node a leaf if all its triangles would go to one side.
void OrvexKDTree::Contents::Split(const std::vector<BoxLimits>& boxes, Node& node, int depth)
{
  const std::size_t axis = SplitAxis(node.box);
  const double value = (node.box.min[axis] + node.box.max[axis]) * 0.5;
  const auto begin = places.begin() + node.first, end = begin + node.count;
  const auto middle = std::stable_partition(begin, end, [&](std::uint32_t place) {
    return (boxes[place].min[axis] + boxes[place].max[axis]) * 0.5 <= value;
  });
  if (middle == begin || middle == end)
    return;
  const auto leftCount = static_cast<std::uint32_t>(middle - begin);
  node.left = Build(boxes, node.first, leftCount, depth + 1);
  node.right = Build(boxes, node.first + leftCount, node.count - leftCount, depth + 1);
}

// Returns: the places of the given triangles in the order in which they are to be stored.
std::vector<std::uint32_t>
OrvexKDTree::Contents::BuildWalkTree(const std::vector<OrvexTriangleData>& given)
{
  std::vector<BoxLimits> boxes;
  boxes.reserve(given.size());
  for (const OrvexTriangleData& triangle : given)
    boxes.push_back(StruckBox(CornersOf(triangle)));
  walkTree = WideBoxTree(boxes);
  std::vector<std::uint32_t> order = walkTree.TakeOrder();
  order.reserve(given.size());
  for (std::uint32_t place = 0; place < given.size(); ++place)
    if (!(boxes[place].min[0] <= boxes[place].max[0]))
      order.push_back(place);
  return order;
}

void OrvexKDTree::Contents::Store(const std::vector<OrvexTriangleData>& given,
                                  const std::vector<std::uint32_t>& order)
{
  std::vector<std::uint32_t> rankOf(given.size()), faceOf(given.size());
  for (std::uint32_t place = 0; place < given.size(); ++place) {
    rankOf[places[place]] = place;
    if (faces.empty() || !faces.back().IsEqual(given[place].face))
      faces.push_back(given[place].face);
    faceOf[place] = static_cast<std::uint32_t>(faces.size() - 1);
  }
  faces.shrink_to_fit();
  storedAt.resize(given.size());
  triangles.reserve(given.size());
  for (const std::uint32_t place : order) {
    const TriangleXYZ corners = CornersOf(given[place]);
    const bool isThin = !(SkewOf(TriangleSides(corners)) < kThin);
    storedAt[rankOf[place]] = static_cast<std::uint32_t>(triangles.size());
    triangles.push_back({corners, faceOf[place] & kMaxFace, isThin, rankOf[place]});
  }
}

bool OrvexKDTree::Contents::IsCandidate(std::uint32_t rank, const gp_XYZ& origin,
                                        const gp_XYZ& direction) const
{
  std::size_t leaf = leafHints[rank / kRanksPerHint];
  while (leaf + 1 < leaves.size() && leaves[leaf + 1].firstRank <= rank)
    ++leaf;
  return Meets(origin, direction, leaves[leaf].box);
}

OrvexTriangleData OrvexKDTree::Contents::Copy(std::uint32_t rank) const
{
  const StoredTriangle& triangle = triangles[storedAt[rank]];
  OrvexTriangleData copy{
    triangle.corners[0], triangle.corners[1], triangle.corners[2], faces[triangle.face], {}};
  for (const gp_XYZ& corner : triangle.corners)
    copy.box.Add(gp_Pnt(corner));
  return copy;
}

namespace {

// The triangles that a walk meets, tested one after the other.
class NearestSearch
{
public:
  NearestSearch(const gp_XYZ& rayOrigin, const gp_XYZ& rayDirection, double scale)
      : origin(rayOrigin), direction(rayDirection),
        rounding(
          32 * kEpsilon *
          (scale + std::max({std::abs(origin.X()), std::abs(origin.Y()), std::abs(origin.Z())}))),
        productRounding(rounding * scale)
  {}

  // Above what the roundings of a point on the ray come to.
  double Rounding() const
  {
    return rounding;
  }

  // False only for what the exact test does not find struck either.
  bool MayStrike(const TriangleXYZ& corners) const
  {
    static constexpr double kMargin = 1e-5;
    const gp_XYZ e1 = corners[1] - corners[0], e2 = corners[2] - corners[0];
    const gp_XYZ p = direction.Crossed(e2), s = origin - corners[0];
    const double volume = e1.Dot(p), sign = volume < 0 ? -1 : 1;
    const double margin = kMargin * sign * volume + productRounding;
    const double u = sign * s.Dot(p), v = sign * direction.Dot(s.Crossed(e1));
    return !(u < -margin || v < -margin || u + v > sign * volume + 2 * margin);
  }

  // Takes the triangle if it is struck nearer than any before, or as near and stands before it,
  // and isCandidate().
  template <typename IsCandidate>
  void Try(const StoredTriangle& triangle, std::uint32_t itsSlot, const IsCandidate& isCandidate)
  {
    const auto struck = RayTriangleIntersect(origin, direction, triangle.corners);
    if (!struck)
      return;
    const double reached = gp_Pnt(origin).Distance(gp_Pnt(*struck));
    const bool isBetter = reached < distance || (reached == distance && triangle.rank < rank);
    if (!isBetter || !isCandidate())
      return;
    rank = triangle.rank;
    slot = itsSlot;
    distance = reached;
    point = *struck;
    limit = static_cast<float>((distance + rounding) * (1 + 1e-6));
  }

  // Farther boxes need not be walked through.
  float Limit() const
  {
    return limit;
  }

  // No triangle has been struck while this is the largest double.
  double distance = std::numeric_limits<double>::max();
  gp_XYZ point;
  std::uint32_t slot = 0;

private:
  gp_XYZ origin, direction;
  double rounding, productRounding;
  std::uint32_t rank = 0;
  float limit = std::numeric_limits<float>::infinity();
};

} // namespace

OrvexKDTree::OrvexKDTree(const std::vector<OrvexTriangleData>& triangles)
    : contents(std::make_unique<Contents>(triangles))
{}

OrvexKDTree::~OrvexKDTree() = default;

std::vector<OrvexTriangleData> OrvexKDTree::Query(const gp_Pnt& origin,
                                                  const gp_Dir& direction) const
{
  std::vector<OrvexTriangleData> candidates;
  contents->ForLeavesOn(origin.XYZ(), direction.XYZ(), [&](const Node& leaf) {
    for (std::uint32_t i = leaf.first; i < leaf.first + leaf.count; ++i)
      candidates.push_back(contents->Copy(i));
  });
  return candidates;
}

std::size_t OrvexKDTree::CountCandidates(const gp_Pnt& origin, const gp_Dir& direction) const
{
  std::size_t count = 0;
  contents->ForLeavesOn(origin.XYZ(), direction.XYZ(),
                        [&](const Node& leaf) { count += leaf.count; });
  return count;
}

std::optional<OrvexKDTree::Hit> OrvexKDTree::NearestHit(const gp_Pnt& origin,
                                                        const gp_Dir& direction) const
{
  const gp_XYZ &o = origin.XYZ(), &d = direction.XYZ();
  if (!IsFinite(o) || !IsFinite(d))
    return std::nullopt;
  NearestSearch search(o, d, contents->scale);
  const std::vector<StoredTriangle>& triangles = contents->triangles;
  const auto visit = [&](std::uint32_t slot) {
    const StoredTriangle& triangle = triangles[slot];
    if (triangle.isThin || search.MayStrike(triangle.corners))
      search.Try(triangle, slot, [&] { return contents->IsCandidate(triangle.rank, o, d); });
    return search.Limit();
  };
  const auto prefetch = [&](std::uint32_t slot) { __builtin_prefetch(&triangles[slot]); };
  contents->walkTree.Walk(WalkLine(o, d, search.Rounding(), 0), visit, prefetch);
  if (search.distance == std::numeric_limits<double>::max())
    return std::nullopt;
  return Hit{search.point, search.distance, &contents->faces[triangles[search.slot].face]};
}

std::vector<OrvexTriangleData> OrvexKDTree::Triangles() const
{
  std::vector<OrvexTriangleData> copies(contents->places.size());
  for (std::uint32_t rank = 0; rank < copies.size(); ++rank)
    copies[contents->places[rank]] = contents->Copy(rank);
  return copies;
}

std::vector<std::vector<std::size_t>> OrvexKDTree::Leaves() const
{
  std::vector<std::vector<std::size_t>> leaves;
  for (std::size_t leaf = 0; leaf < contents->leaves.size(); ++leaf)
    leaves.emplace_back(contents->places.begin() + contents->leaves[leaf].firstRank,
                        contents->places.begin() + contents->EndOf(leaf));
  return leaves;
}
