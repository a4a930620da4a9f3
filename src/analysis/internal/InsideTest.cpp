#include "analysis/internal/InsideTest.h"

#include "analysis/internal/FaceSampling.h"

#include <BRep_Tool.hxx>
#include <TopExp_Explorer.hxx>

namespace Orvex {

namespace {

constexpr double kOnSurface = 1e-7;

bool HasMatterInside(const TopoDS_Shape& solid)
{
  BRepClass3d_SolidClassifier classifier(solid);
  classifier.PerformInfinitePoint(kOnSurface);
  return classifier.State() == TopAbs_OUT;
}

// Each face bounds the solid from one side.
bool IsClosed(const TopoDS_Shape& solid)
{
  for (TopExp_Explorer shells(solid, TopAbs_SHELL); shells.More(); shells.Next())
    if (!BRep_Tool::IsClosed(shells.Current()))
      return false;
  for (TopExp_Explorer faces(solid, TopAbs_FACE); faces.More(); faces.Next())
    if (faces.Current().Orientation() != TopAbs_FORWARD &&
        faces.Current().Orientation() != TopAbs_REVERSED)
      return false;
  return true;
}

} // namespace

bool IsMadeOfClosedSolids(const TopoDS_Shape& shape)
{
  TopExp_Explorer solids(shape, TopAbs_SOLID);
  if (!solids.More() || TopExp_Explorer(shape, TopAbs_FACE, TopAbs_SOLID).More())
    return false;
  for (; solids.More(); solids.Next())
    if (!IsClosed(solids.Current()) || !HasMatterInside(solids.Current()))
      return false;
  return true;
}

InsideTest::InsideTest(const TopoDS_Shape& tested, FaceRays& raysOfShape, bool isMadeOfClosedSolids)
    : shape(tested), rays(raysOfShape), rayTells(isMadeOfClosedSolids)
{}

bool InsideTest::Holds(const gp_Pnt& point, const gp_Dir& side)
{
  // Off the side and off the axes, so that a ray seldom runs within a face or along an edge.
  const gp_XYZ tilts[] = {{0.31, 0.17, 0.23}, {-0.29, 0.37, -0.13}, {0.11, -0.41, 0.19}};
  if (rayTells)
    for (const gp_XYZ& tilt : tilts)
      if (const auto inside = ByRay(point, gp_Dir(side.XYZ() + tilt)))
        return *inside;
  return ByKernel(point);
}

std::optional<bool> InsideTest::ByRay(const gp_Pnt& point, const gp_Dir& direction)
{
  const gp_Lin ray(point, direction);
  const auto crossing = rays.FirstCrossing(ray, kOnSurface);
  if (crossing && !crossing->isClear)
    return std::nullopt;
  if (crossing && crossing->isLeaving)
    return true;
  return rays.Nearest(ray, -kOnSurface, kOnSurface).has_value();
}

bool InsideTest::ByKernel(const gp_Pnt& point)
{
  if (!classifier)
    classifier.emplace().Load(shape);
  classifier->Perform(point, kOnSurface);
  return classifier->State() == TopAbs_IN || classifier->State() == TopAbs_ON;
}

} // namespace Orvex
