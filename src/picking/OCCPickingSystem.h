// What a line hits among a list of shapes: vertices, edges, faces or whole solids, nearest first.
//
//   OCCPickingSystem picking;
//   picking.SetShapesToPick(shapes);
//   picking.SetPickingLevel(PickingLevel::Face);
//   for (const PickResult& result : picking.PickShapes(line))
//     Mark(result.subShape);
//
// Caveat: vertices, edges and faces are picked along the whole line, on both sides of its location.
// The pick of solids looks from the location against the line's direction, and nowhere else.
// Caveat: solids are picked on triangles that are kept for the life of the process
// (OrvexFaceTriangulationPicker.h).
// Caveat: no lock. A picking system, and all picks of solids, belong to one thread at a time.
#pragma once

#include "foundation/Export.h"
#include "picking/PickResult.h"
#include "picking/PickingLevel.h"

#include <TopoDS_Shape.hxx>
#include <gp_Lin.hxx>

#include <memory>
#include <vector>

class OCCPickingSystemImpl;

class ORVEX_API OCCPickingSystem
{
public:
  OCCPickingSystem();
  ~OCCPickingSystem();
  OCCPickingSystem(const OCCPickingSystem&) = delete;
  OCCPickingSystem& operator=(const OCCPickingSystem&) = delete;

  // All as OCCPickingSystemImpl has them.
  void SetShapesToPick(const std::vector<TopoDS_Shape>& shapes);
  void SetPickingLevel(PickingLevel level);
  void SetPickingTolerance(double tolerance);
  std::vector<PickResult> PickShapes(const gp_Lin& ray);

private:
  std::unique_ptr<OCCPickingSystemImpl> impl;
};
