#include "collision/internal/TriBVH.h"

#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <algorithm>

using Orvex::BoxLimits;

namespace {

using TriBVH = OrvexCollisionEngine::TriBVH;

struct Item
{
  BoxLimits box;
  int triangle;
};

class Builder
{
public:
  explicit Builder(TriBVH& tree_) : tree(tree_)
  {
    items.reserve(tree.triangles.size());
    for (int i = 0; i < static_cast<int>(tree.triangles.size()); ++i)
      items.push_back({Orvex::BoxOf(tree.Corners(i)), i});
    // Halves down to five triangles at least: two nodes for every five at most.
    tree.nodes.reserve(items.size() / 2 + 1);
  }

  // Leaves are built from the first to the last, so that the items end in leaf order.
  void Build()
  {
    Build(0, static_cast<int>(items.size()));
    std::vector<TriBVH::Triangle> inLeafOrder;
    inLeafOrder.reserve(items.size());
    for (const Item& item : items)
      inLeafOrder.push_back(tree.triangles[static_cast<std::size_t>(item.triangle)]);
    tree.triangles = std::move(inLeafOrder);
    tree.nodes.shrink_to_fit();
  }

private:
  int Build(int begin, int end)
  {
    TriBVH::Node node;
    for (int i = begin; i < end; ++i)
      node.box.Add(items[static_cast<std::size_t>(i)].box);
    if (end - begin <= TriBVH::kMaxTrianglesPerLeaf) {
      node.firstTriangle = begin;
      node.triangleCount = end - begin;
    } else {
      const int middle = (begin + end) / 2;
      Halve(begin, middle, end, node.box.LongestAxis());
      node.left = Build(begin, middle);
      node.right = Build(middle, end);
    }
    tree.nodes.push_back(node);
    return tree.Root();
  }

  void Halve(int begin, int middle, int end, std::size_t axis)
  {
    std::nth_element(items.begin() + begin, items.begin() + middle, items.begin() + end,
                     [axis](const Item& a, const Item& b) {
                       return Orvex::SortKey(a.box.Middle(axis)) <
                              Orvex::SortKey(b.box.Middle(axis));
                     });
  }

  TriBVH& tree;
  std::vector<Item> items;
};

void AppendFace(const TopoDS_Face& face, std::vector<gp_XYZ>& vertices,
                std::vector<TriBVH::Triangle>& triangles)
{
  TopLoc_Location location;
  const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
  if (mesh.IsNull())
    return;
  const int offset = static_cast<int>(vertices.size()) - 1;
  const gp_Trsf placing = location.Transformation();
  for (int i = 1; i <= mesh->NbNodes(); ++i) {
    gp_XYZ point = mesh->Node(i).XYZ();
    if (!location.IsIdentity())
      placing.Transforms(point);
    vertices.push_back(point);
  }
  for (int i = 1; i <= mesh->NbTriangles(); ++i) {
    TriBVH::Triangle corners;
    mesh->Triangle(i).Get(corners[0], corners[1], corners[2]);
    for (int& corner : corners)
      corner += offset;
    triangles.push_back(corners);
  }
}

} // namespace

Orvex::TriangleCorners OrvexCollisionEngine::TriBVH::Corners(int triangle) const
{
  const Triangle& corners = triangles[static_cast<std::size_t>(triangle)];
  const auto at = [this](int corner) { return vertices[static_cast<std::size_t>(corner)]; };
  return {at(corners[0]), at(corners[1]), at(corners[2])};
}

std::size_t OrvexCollisionEngine::TriBVH::Bytes() const
{
  return vertices.capacity() * sizeof(gp_XYZ) + triangles.capacity() * sizeof(Triangle) +
         nodes.capacity() * sizeof(Node);
}

std::shared_ptr<const TriBVH> OrvexCollisionEngine::TriBVH::Of(const TopoDS_Shape& shape)
{
  std::vector<gp_XYZ> vertices;
  std::vector<Triangle> triangles;
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    AppendFace(TopoDS::Face(face.Current()), vertices, triangles);
  vertices.shrink_to_fit();
  return Of(std::move(vertices), std::move(triangles));
}

std::shared_ptr<const TriBVH> OrvexCollisionEngine::TriBVH::Of(std::vector<gp_XYZ> vertices,
                                                               std::vector<Triangle> triangles)
{
  if (triangles.empty())
    return nullptr;
  auto tree = std::make_shared<TriBVH>();
  tree->vertices = std::move(vertices);
  tree->triangles = std::move(triangles);
  Builder(*tree).Build();
  return tree;
}
