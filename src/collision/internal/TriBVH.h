// A tree of boxes over the triangles of one part's mesh, in world coordinates.
#pragma once

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/TriangleMath.h"
#include "kernel/internal/BoxLimits.h"

#include <TopoDS_Shape.hxx>

#include <array>
#include <memory>
#include <vector>

struct OrvexCollisionEngine::TriBVH
{
  static constexpr int kMaxTrianglesPerLeaf = 8;

  // Zero-based positions in `vertices`.
  using Triangle = std::array<int, 3>;

  struct Node
  {
    Orvex::BoxLimits box;
    int left = -1; // -1 in both: a leaf
    int right = -1;
    int firstTriangle = 0; // of a leaf
    int triangleCount = 0;

    bool IsLeaf() const
    {
      return left < 0;
    }
  };

  std::vector<gp_XYZ> vertices;
  // Those of a leaf are one stretch.
  std::vector<Triangle> triangles;
  // Children before their parents, so that the root is the last.
  std::vector<Node> nodes;

  int Root() const
  {
    return static_cast<int>(nodes.size()) - 1;
  }
  const Node& At(int node) const
  {
    return nodes[static_cast<std::size_t>(node)];
  }
  Orvex::TriangleCorners Corners(int triangle) const;
  std::size_t Bytes() const;

  // Over the triangulations that the faces of the shape have; null if there are none.
  static std::shared_ptr<const TriBVH> Of(const TopoDS_Shape& shape);
  // Null without triangles.
  static std::shared_ptr<const TriBVH> Of(std::vector<gp_XYZ> vertices,
                                          std::vector<Triangle> triangles);
};
