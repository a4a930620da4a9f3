#include "collision/internal/RoiOctree.h"

#include "collision/internal/ShapeMeshing.h"
#include "kernel/internal/BoxLimits.h"

#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace Orvex {

namespace {

constexpr std::size_t kMaxNodes = 500000;
constexpr int kMaxDepth = 6;
constexpr std::size_t kMaxTrianglesPerLeaf = 32;
constexpr std::size_t kMaxPairsTriedWithoutTree = 200000;

class RoiOctree
{
public:
  RoiOctree(const std::vector<TriBBox>& a_, const std::vector<TriBBox>& b_, double gap_,
            const Bnd_Box& overall)
      : a(a_), b(b_), gap(gap_)
  {
    nodes.reserve(std::min(a.size() + b.size() + 64, kMaxNodes));
    nodes.push_back({overall, {}, {}, {}, true, 0});
    for (std::size_t i = 0; i < a.size(); ++i)
      Insert(0, a[i].box, static_cast<int>(i), &Node::trianglesA);
    for (std::size_t i = 0; i < b.size(); ++i)
      Insert(0, b[i].box, static_cast<int>(i), &Node::trianglesB);
  }

  Bnd_Box Region() const
  {
    Bnd_Box region;
    std::vector<int> stack{0};
    while (!stack.empty()) {
      const Node& node = nodes[static_cast<std::size_t>(stack.back())];
      stack.pop_back();
      if (node.trianglesA.empty() || node.trianglesB.empty())
        continue;
      if (node.isLeaf || node.depth >= kMaxDepth)
        AddMeetingPairs(node, region);
      else
        stack.insert(stack.end(), node.children.begin(), node.children.end());
    }
    return region;
  }

private:
  struct Node
  {
    Bnd_Box box;
    std::vector<int> trianglesA;
    std::vector<int> trianglesB;
    std::array<int, 8> children{-1, -1, -1, -1, -1, -1, -1, -1};
    bool isLeaf = true;
    int depth = 0;
  };
  using List = std::vector<int> Node::*;

  void Insert(int number, const Bnd_Box& box, int triangle, List list)
  {
    const auto at = static_cast<std::size_t>(number);
    Bnd_Box wide = box;
    wide.SetGap(gap);
    if (wide.IsOut(nodes[at].box))
      return;
    (nodes[at].*list).push_back(triangle);
    if (MustSplit(nodes[at]))
      Split(number);
    else if (!nodes[at].isLeaf)
      InsertIntoChildren(number, box, triangle, list);
  }

  void InsertIntoChildren(int number, const Bnd_Box& box, int triangle, List list)
  {
    for (std::size_t child = 0; child < 8; ++child)
      Insert(nodes[static_cast<std::size_t>(number)].children[child], box, triangle, list);
  }

  bool MustSplit(const Node& node) const
  {
    return node.isLeaf && node.depth < kMaxDepth && nodes.size() + 8 <= kMaxNodes &&
           node.trianglesA.size() + node.trianglesB.size() > kMaxTrianglesPerLeaf;
  }

  void Split(int number)
  {
    const auto at = static_cast<std::size_t>(number);
    const BoxLimits whole = LimitsOf(nodes[at].box).value_or(BoxLimits());
    for (std::size_t child = 0; child < 8; ++child) {
      BoxLimits part = whole;
      for (std::size_t axis = 0; axis < 3; ++axis)
        ((child >> axis & 1) != 0 ? part.min : part.max)[axis] = whole.Middle(axis);
      Node node;
      node.box.Update(part.min[0], part.min[1], part.min[2], part.max[0], part.max[1], part.max[2]);
      node.depth = nodes[at].depth + 1;
      nodes[at].children[child] = static_cast<int>(nodes.size());
      nodes.push_back(std::move(node));
    }
    nodes[at].isLeaf = false;
    // Copies of the lists: the nodes may move.
    const Node split = nodes[at];
    for (const int i : split.trianglesA)
      InsertIntoChildren(number, a[static_cast<std::size_t>(i)].box, i, &Node::trianglesA);
    for (const int i : split.trianglesB)
      InsertIntoChildren(number, b[static_cast<std::size_t>(i)].box, i, &Node::trianglesB);
  }

  void AddMeetingPairs(const Node& node, Bnd_Box& region) const
  {
    for (const int i : node.trianglesA)
      for (const int j : node.trianglesB) {
        const Bnd_Box& boxA = a[static_cast<std::size_t>(i)].box;
        const Bnd_Box& boxB = b[static_cast<std::size_t>(j)].box;
        if (boxA.IsOut(boxB))
          continue;
        region.Add(boxA);
        region.Add(boxB);
      }
  }

  const std::vector<TriBBox>& a;
  const std::vector<TriBBox>& b;
  double gap;
  std::vector<Node> nodes;
};

Bnd_Box RegionOfAllPairs(const std::vector<TriBBox>& a, const std::vector<TriBBox>& b, double gap)
{
  Bnd_Box region;
  for (const TriBBox& first : a) {
    Bnd_Box wide = first.box;
    wide.SetGap(gap);
    for (const TriBBox& second : b) {
      Bnd_Box other = second.box;
      other.SetGap(gap);
      if (wide.IsOut(other))
        continue;
      region.Add(first.box);
      region.Add(second.box);
    }
  }
  return region;
}

void AppendFace(const TopoDS_Face& face, std::vector<TriBBox>& triangles)
{
  TopLoc_Location location;
  const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
  if (mesh.IsNull())
    return;
  const gp_Trsf placing = location.Transformation();
  std::vector<gp_Pnt> nodes;
  for (int i = 1; i <= mesh->NbNodes(); ++i)
    nodes.push_back(mesh->Node(i).Transformed(placing));
  for (int i = 1; i <= mesh->NbTriangles(); ++i) {
    std::array<int, 3> corners;
    mesh->Triangle(i).Get(corners[0], corners[1], corners[2]);
    TriBBox triangle;
    for (const int corner : corners) {
      const gp_Pnt& point = nodes[static_cast<std::size_t>(corner - 1)];
      triangle.box.Add(point);
      triangle.centre.ChangeCoord() += point.XYZ() / 3.0;
    }
    triangles.push_back(triangle);
  }
}

} // namespace

std::vector<TriBBox> CollectTriangles(const TopoDS_Shape& shape, double deflection)
{
  constexpr double kAngle = 0.5;
  MeshShape(shape, {deflection, false, kAngle});
  std::vector<TriBBox> triangles;
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    AppendFace(TopoDS::Face(face.Current()), triangles);
  return triangles;
}

Bnd_Box ComputeRoiBoxOctree(const std::vector<TriBBox>& a, const std::vector<TriBBox>& b,
                            double gap, const Bnd_Box& overall)
{
  const Bnd_Box region = RoiOctree(a, b, gap, overall).Region();
  if (region.IsVoid() && a.size() * b.size() <= kMaxPairsTriedWithoutTree)
    return RegionOfAllPairs(a, b, gap);
  return region;
}

} // namespace Orvex
