// The list, the boxes and the tests behind OCCPickingSystem.
//
// A pick looks only at shapes whose box the line meets, and in those only at vertices, edges and
// faces whose box it meets; the boxes of sub-shapes are made at the first pick that needs them.
// Boxes are those of the time of SetShapes: what is moved in place after that is looked for where
// it was. A copy has boxes of its own, so that it may serve another thread.
#pragma once

#include "foundation/Export.h"
#include "picking/PickResult.h"
#include "picking/PickingLevel.h"

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Lin.hxx>

#include <cstddef>
#include <memory>
#include <vector>

class ORVEX_API OCCPickingSystemImpl
{
public:
  // Of an edge pick before SetPickingTolerance: as far as the default linear deflection of a
  // display mesh lets the line that a user sees lie off its edge.
  static constexpr double kDefaultTolerance = 0.1;

  OCCPickingSystemImpl();
  ~OCCPickingSystemImpl();
  OCCPickingSystemImpl(const OCCPickingSystemImpl&);
  OCCPickingSystemImpl(OCCPickingSystemImpl&&) noexcept;
  OCCPickingSystemImpl& operator=(const OCCPickingSystemImpl&);
  OCCPickingSystemImpl& operator=(OCCPickingSystemImpl&&) noexcept;

  // Makes a box for each shape, from its triangulation where there is one. The shapes' vertices,
  // edges and faces are collected at the first pick of their level and kept: a shape that is
  // changed in place afterwards has to be set again.
  void SetShapes(const std::vector<TopoDS_Shape>& shapes);
  // None before, so that nothing is picked.
  void SetPickingLevel(PickingLevel level);
  // Units: model units. How far from the line an edge may lie; no other level uses it. A line that
  // misses a shape's box hits none of its edges, however large this is.
  void SetPickingTolerance(double tolerance);

  // Returns: the hits by their distance from the line's location, to either side; at the same
  // distance in the order of the list and of its shapes' parts. Empty for a line with a number that
  // is not finite. A part that stands in a shape twice is reported twice.
  // Errors: exceptions of the kernel pass, and the hits before them are lost.
  std::vector<PickResult> PickShapes(const gp_Lin& ray);

private:
  class ShapeBoxes;

  PickResult PickVertex(std::size_t index, const TopoDS_Vertex& vertex, const gp_Lin& ray);
  PickResult PickEdge(std::size_t index, const TopoDS_Edge& edge, const gp_Lin& ray);
  PickResult PickFace(std::size_t index, const TopoDS_Face& face, const gp_Lin& ray);
  PickResult PickSolid(std::size_t index, const TopoDS_Shape& shape, const gp_Lin& ray);

  void PickShape(std::size_t index, const gp_Lin& ray, std::vector<PickResult>& results);
  PickResult PickTimedFace(std::size_t index, const TopoDS_Face& face, const gp_Lin& ray);

  std::vector<TopoDS_Shape> shapes;
  std::unique_ptr<ShapeBoxes> boxes;
  PickingLevel level = PickingLevel::None;
  double tolerance = kDefaultTolerance;
};
