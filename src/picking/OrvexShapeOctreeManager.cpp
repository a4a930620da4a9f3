#include "picking/OrvexShapeOctreeManager.h"

#include <BRepBndLib.hxx>

#include <algorithm>

namespace {

constexpr int kMaxDepth = 6;
constexpr int kMaxShapesPerNode = 128;

} // namespace

OrvexShapeOctreeManager& OrvexShapeOctreeManager::GetInstance()
{
  static OrvexShapeOctreeManager instance;
  return instance;
}

void OrvexShapeOctreeManager::AddShape(const TopoDS_Shape& shape)
{
  shapes.push_back(shape);
  needRebuild = true;
}

void OrvexShapeOctreeManager::AddShapes(const std::vector<TopoDS_Shape>& added)
{
  shapes.insert(shapes.end(), added.begin(), added.end());
  RebuildOctreeIfNeeded();
  needRebuild = true;
}

void OrvexShapeOctreeManager::RemoveShape(const TopoDS_Shape& shape)
{
  const TopoDS_Shape removed = shape;
  shapes.erase(std::remove_if(shapes.begin(), shapes.end(),
                              [&](const TopoDS_Shape& listed) { return listed.IsEqual(removed); }),
               shapes.end());
  needRebuild = true;
}

void OrvexShapeOctreeManager::RemoveShapes(const std::vector<TopoDS_Shape>& removed)
{
  for (const TopoDS_Shape& shape : removed)
    RemoveShape(shape);
}

void OrvexShapeOctreeManager::UpdateShape(const TopoDS_Shape& oldShape,
                                          const TopoDS_Shape& newShape)
{
  RemoveShape(oldShape);
  AddShape(newShape);
}

void OrvexShapeOctreeManager::ClearShapes()
{
  shapes.clear();
  octree.reset();
  needRebuild = true;
}

std::vector<TopoDS_Shape> OrvexShapeOctreeManager::GetAllShapes() const
{
  return shapes;
}

std::vector<TopoDS_Shape> OrvexShapeOctreeManager::GetCandidateShapes(const gp_Lin& ray,
                                                                      double tolerance) const
{
  return octree == nullptr ? std::vector<TopoDS_Shape>()
                           : octree->GetCandidateShapes(ray, tolerance);
}

std::vector<TopoDS_Shape> OrvexShapeOctreeManager::GetNearestShapes(const gp_Pnt& point,
                                                                    double radius) const
{
  return octree == nullptr ? std::vector<TopoDS_Shape>() : octree->GetNearestShapes(point, radius);
}

std::vector<TopoDS_Shape> OrvexShapeOctreeManager::GetShapesInBox(const Bnd_Box& box) const
{
  return octree == nullptr ? std::vector<TopoDS_Shape>() : octree->GetShapesInBox(box);
}

bool OrvexShapeOctreeManager::IsNeedRebuild() const
{
  return needRebuild;
}

void OrvexShapeOctreeManager::RebuildOctreeIfNeeded()
{
  if (!needRebuild && octree != nullptr)
    return;
  Bnd_Box box;
  for (const TopoDS_Shape& shape : shapes) {
    Bnd_Box shapeBox;
    BRepBndLib::Add(shape, shapeBox, true);
    box.Add(shapeBox);
  }
  octree = std::make_unique<OrvexShapeOctree>(box, kMaxDepth, kMaxShapesPerNode);
  octree->InsertShapes(shapes);
  needRebuild = false;
}
