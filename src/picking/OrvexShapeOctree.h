// A tree of cells over whole shapes: which shapes does a line, a neighbourhood or a box reach?
//
// Shapes are told apart by their boxes alone, with the triangulation where there is one. Boxes are
// worked out anew by every insertion and by every query that reaches the shape, so that a shape
// changed in place answers with its new box, from the cells of its old one.
//
// Caveat: a shape stands in every leaf whose cell its box touches, and comes back once for each.
// Caveat: a shape whose box lies outside of the root cell, or is void, is held nowhere.
// Caveat: shapes as large as a cell stand in all of its children, so depth multiplies them by 8 at
// each level; keep the depth small.
#pragma once

#include "foundation/Export.h"

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Lin.hxx>
#include <gp_Pnt.hxx>

#include <array>
#include <memory>
#include <vector>

class ORVEX_API OrvexShapeOctree
{
public:
  // A root leaf that covers `box`. A leaf is split when it would hold more than `maxShapesPerNode`
  // shapes, unless its depth, of 0 for the root, has come to `maxDepth`.
  OrvexShapeOctree(const Bnd_Box& box, int maxDepth, int maxShapesPerNode);
  ~OrvexShapeOctree();
  OrvexShapeOctree(const OrvexShapeOctree&) = delete;
  OrvexShapeOctree& operator=(const OrvexShapeOctree&) = delete;

  void Insert(const TopoDS_Shape& shape);
  void InsertShapes(const std::vector<TopoDS_Shape>& shapes);

  // What the tree holds, in the order of the leaves.
  std::vector<TopoDS_Shape> GetAllShapes() const;
  const Bnd_Box& GetBoundingBox() const;

  // The shapes whose box, enlarged by `tolerance`, the infinite line runs through. Leaves are found
  // by their plain cells, and a line that only touches a box misses it.
  std::vector<TopoDS_Shape> GetCandidateShapes(const gp_Lin& ray, double tolerance) const;
  // The shapes whose box comes as near to `point` as `radius`, unordered.
  std::vector<TopoDS_Shape> GetNearestShapes(const gp_Pnt& point, double radius) const;
  // The shapes whose box is not out of `box`.
  std::vector<TopoDS_Shape> GetShapesInBox(const Bnd_Box& box) const;

private:
  struct Node;

  void InsertShapeRecursive(Node& node, const TopoDS_Shape& shape, const Bnd_Box& shapeBox,
                            int depth);
  void Split(Node& node, int depth);

  std::unique_ptr<Node> root;
  int maxDepth;
  int maxShapesPerNode;
};
