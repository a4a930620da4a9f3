#include "picking/OrvexKDTree.h"

#include "kernel/internal/BoxLimits.h"
#include "picking/internal/LineBox.h"
#include "picking/internal/RayTriangle.h"
#include "picking/internal/WideBoxTree.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

using namespace Orvex;

namespace {

constexpr std::size_t kMaxLeafSize = 32;
constexpr int kMaxDepth = 20;
constexpr std::uint32_t kMaxFace = 0x7fffffff;
constexpr std::size_t kMaxTriangles = kMaxFace;
constexpr SlabRule kMeeting = {1e-10, true};
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
// Of the condition below.
constexpr double kThin = 1e8;

struct StoredTriangle
{
  TriangleXYZ corners;
  std::uint32_t face : 31;
  // Whether its barycentric terms are too inexact to be judged before the exact test.
  std::uint32_t isThin : 1;
  // Among the triangles given.
  std::uint32_t place;
};

BoxLimits BoxOf(const TriangleXYZ& corners)
{
  BoxLimits box;
  for (const gp_XYZ& corner : corners)
    box.Add(corner);
  return box;
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
  // The node's triangles are one stretch of those stored.
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

struct OrvexKDTree::Contents
{
  explicit Contents(const std::vector<OrvexTriangleData>& given);

  std::unique_ptr<Node> Build(std::uint32_t first, std::uint32_t count, int depth);
  void Split(Node& node, int depth);
  void BuildWalkTree();
  bool IsCandidate(std::uint32_t triangle, const gp_XYZ& origin, const gp_XYZ& direction) const;
  OrvexTriangleData Copy(const StoredTriangle& triangle) const;

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

  // In the order of the leaves, so that a triangle's place is its rank among candidates.
  std::vector<StoredTriangle> triangles;
  std::vector<TopoDS_Shape> faces;
  std::unique_ptr<Node> root;
  // The leaves by their first triangle.
  std::vector<const Node*> leaves;
  WideBoxTree walkTree;
  // Larger than any number that the tests of these triangles come across, but for the origin's.
  double scale = 0;
};

OrvexKDTree::Contents::Contents(const std::vector<OrvexTriangleData>& given)
{
  if (given.size() > kMaxTriangles)
    throw std::length_error("more triangles than an OrvexKDTree holds");
  triangles.resize(given.size());
  for (std::uint32_t i = 0; i < given.size(); ++i) {
    const OrvexTriangleData& triangle = given[i];
    if (faces.empty() || !faces.back().IsEqual(triangle.face))
      faces.push_back(triangle.face);
    triangles[i] = {{triangle.A.XYZ(), triangle.B.XYZ(), triangle.C.XYZ()},
                    static_cast<std::uint32_t>(faces.size() - 1) & kMaxFace,
                    0,
                    i};
  }
  faces.shrink_to_fit();
  if (given.empty())
    return;
  root = Build(0, static_cast<std::uint32_t>(given.size()), 0);
  leaves.shrink_to_fit();
  BuildWalkTree();
}

std::unique_ptr<OrvexKDTree::Node>
OrvexKDTree::Contents::Build(std::uint32_t first, std::uint32_t count, int depth)
{
  auto node = std::make_unique<Node>(Node{{}, first, count, nullptr, nullptr});
  for (std::uint32_t i = first; i < first + count; ++i)
    node->box.Add(BoxOf(triangles[i].corners));
  if (count > kMaxLeafSize && depth < kMaxDepth)
    Split(*node, depth);
  if (node->IsLeaf())
    leaves.push_back(node.get());
  return node;
}

// Leaves the node a leaf if all its triangles would go to one side.
void OrvexKDTree::Contents::Split(Node& node, int depth)
{
  const std::size_t axis = SplitAxis(node.box);
  const double value = (node.box.min[axis] + node.box.max[axis]) * 0.5;
  const auto begin = triangles.begin() + node.first, end = begin + node.count;
  const auto middle = std::stable_partition(begin, end, [&](const StoredTriangle& triangle) {
    const BoxLimits box = BoxOf(triangle.corners);
    return (box.min[axis] + box.max[axis]) * 0.5 <= value;
  });
  if (middle == begin || middle == end)
    return;
  const auto leftCount = static_cast<std::uint32_t>(middle - begin);
  node.left = Build(node.first, leftCount, depth + 1);
  node.right = Build(node.first + leftCount, node.count - leftCount, depth + 1);
}

void OrvexKDTree::Contents::BuildWalkTree()
{
  std::vector<BoxLimits> boxes;
  boxes.reserve(triangles.size());
  for (StoredTriangle& triangle : triangles) {
    boxes.push_back(StruckBox(triangle.corners));
    triangle.isThin = !(ConditionOf(TriangleSides(triangle.corners)) < kThin);
  }
  walkTree = WideBoxTree(boxes);
  for (std::size_t axis = 0; axis < 3; ++axis)
    scale = std::max({scale, std::abs(root->box.min[axis]), std::abs(root->box.max[axis]),
                      root->box.Extent(axis)});
}

bool OrvexKDTree::Contents::IsCandidate(std::uint32_t triangle, const gp_XYZ& origin,
                                        const gp_XYZ& direction) const
{
  const auto behind =
    std::upper_bound(leaves.begin(), leaves.end(), triangle,
                     [](std::uint32_t place, const Node* leaf) { return place < leaf->first; });
  return Meets(origin, direction, (*std::prev(behind))->box);
}

OrvexTriangleData OrvexKDTree::Contents::Copy(const StoredTriangle& triangle) const
{
  OrvexTriangleData copy{triangle.corners[0], triangle.corners[1], triangle.corners[2],
                         faces[triangle.face],
                         {}};
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
        rounding(32 * kEpsilon *
                 (scale + std::max({std::abs(origin.X()), std::abs(origin.Y()),
                                    std::abs(origin.Z())}))),
        productRounding(rounding * scale)
  {
  }

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
  void Try(const TriangleXYZ& corners, std::uint32_t triangle, const IsCandidate& isCandidate)
  {
    const auto struck = RayTriangleIntersect(origin, direction, corners);
    if (!struck)
      return;
    const double reached = gp_Pnt(origin).Distance(gp_Pnt(*struck));
    const bool isBetter = reached < distance || (reached == distance && triangle < best);
    if (!isBetter || !isCandidate())
      return;
    best = triangle;
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
  std::uint32_t best = 0;
  gp_XYZ point;

private:
  gp_XYZ origin, direction;
  double rounding, productRounding;
  float limit = std::numeric_limits<float>::infinity();
};

} // namespace

OrvexKDTree::OrvexKDTree(const std::vector<OrvexTriangleData>& triangles)
    : contents(std::make_unique<Contents>(triangles))
{
}

OrvexKDTree::~OrvexKDTree() = default;

std::vector<OrvexTriangleData> OrvexKDTree::Query(const gp_Pnt& origin,
                                                  const gp_Dir& direction) const
{
  std::vector<OrvexTriangleData> candidates;
  contents->ForLeavesOn(origin.XYZ(), direction.XYZ(), [&](const Node& leaf) {
    for (std::uint32_t i = leaf.first; i < leaf.first + leaf.count; ++i)
      candidates.push_back(contents->Copy(contents->triangles[i]));
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
  contents->walkTree.Walk(WalkLine(o, d, search.Rounding(), 0), [&](std::uint32_t i) {
    const StoredTriangle& triangle = contents->triangles[i];
    if (triangle.isThin || search.MayStrike(triangle.corners))
      search.Try(triangle.corners, i, [&] { return contents->IsCandidate(i, o, d); });
    return search.Limit();
  });
  if (search.distance == std::numeric_limits<double>::max())
    return std::nullopt;
  return Hit{search.point, search.distance,
             contents->faces[contents->triangles[search.best].face]};
}

std::vector<OrvexTriangleData> OrvexKDTree::Triangles() const
{
  std::vector<OrvexTriangleData> copies(contents->triangles.size());
  for (const StoredTriangle& triangle : contents->triangles)
    copies[triangle.place] = contents->Copy(triangle);
  return copies;
}

std::vector<std::vector<std::size_t>> OrvexKDTree::Leaves() const
{
  std::vector<std::vector<std::size_t>> places;
  for (const Node* leaf : contents->leaves) {
    places.emplace_back();
    for (std::uint32_t i = leaf->first; i < leaf->first + leaf->count; ++i)
      places.back().push_back(contents->triangles[i].place);
  }
  return places;
}
