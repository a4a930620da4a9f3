// The process's one spatial index over shapes: the list of the shapes handed in, and a tree over
// them.
//
// The tree mirrors the list as it was at the last AddShapes, the only operation that rebuilds it;
// until the next one, even of nothing, queries answer for the shapes of then.
//
// Caveat: no lock but for the making of the instance. One thread at a time.
#pragma once

#include "foundation/Export.h"
#include "picking/OrvexShapeOctree.h"

#include <memory>
#include <vector>

class ORVEX_API OrvexShapeOctreeManager
{
public:
  static OrvexShapeOctreeManager& GetInstance();

  void AddShape(const TopoDS_Shape& shape);
  // Appends all, and makes the tree anew.
  void AddShapes(const std::vector<TopoDS_Shape>& added);
  // Takes every entry equal to the shape out of the list: same TShape, location and orientation.
  void RemoveShape(const TopoDS_Shape& shape);
  void RemoveShapes(const std::vector<TopoDS_Shape>& removed);
  void UpdateShape(const TopoDS_Shape& oldShape, const TopoDS_Shape& newShape);
  void ClearShapes();

  // A copy of the list.
  std::vector<TopoDS_Shape> GetAllShapes() const;

  // As the tree has them (OrvexShapeOctree); empty without a tree.
  std::vector<TopoDS_Shape> GetCandidateShapes(const gp_Lin& ray, double tolerance) const;
  std::vector<TopoDS_Shape> GetNearestShapes(const gp_Pnt& point, double radius) const;
  std::vector<TopoDS_Shape> GetShapesInBox(const Bnd_Box& box) const;

  bool IsNeedRebuild() const;

private:
  OrvexShapeOctreeManager() = default;

  void RebuildOctreeIfNeeded();

  std::unique_ptr<OrvexShapeOctree> octree;
  std::vector<TopoDS_Shape> shapes;
  bool needRebuild = true;
};
