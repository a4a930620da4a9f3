#include "operations/internal/LoftSections.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/internal/AttemptLadder.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <Bnd_Box.hxx>
#include <TopoDS.hxx>
#include <gp_Trsf.hxx>

#include <algorithm>
#include <optional>

namespace Orvex {

namespace {

std::optional<gp_Pnt> GuidePoint(const TopoDS_Shape& guide, double t)
{
  const TopoDS_Edge edge = ToEdge(guide);
  if (edge.IsNull())
    return {};
  const BRepAdaptor_Curve curve(edge);
  const double first = curve.FirstParameter(), last = curve.LastParameter();
  if (!IsFinite(first) || !IsFinite(last) || !(last - first >= 1e-12))
    return {};
  const gp_Pnt point = curve.Value(first + std::clamp(t, 0.0, 1.0) * (last - first));
  if (!IsFinite(point.X()) || !IsFinite(point.Y()) || !IsFinite(point.Z()))
    return {};
  return point;
}

std::vector<gp_Pnt> GuidePoints(const std::vector<TopoDS_Shape>& guides, double t)
{
  std::vector<gp_Pnt> points;
  for (const TopoDS_Shape& guide : guides)
    if (const std::optional<gp_Pnt> point = GuidePoint(guide, t))
      points.push_back(*point);
  return points;
}

gp_Pnt AverageOf(const std::vector<gp_Pnt>& points)
{
  gp_XYZ sum(0, 0, 0);
  for (const gp_Pnt& point : points)
    sum += point.XYZ();
  return sum / static_cast<double>(points.size());
}

gp_Vec SoftMove(const TopoDS_Wire& wire, const gp_Pnt& target)
{
  Bnd_Box box;
  BRepBndLib::Add(wire, box, true);
  if (box.IsVoid())
    throw AttemptFailure("a section has no extent");
  const gp_XYZ centre = (box.CornerMin().XYZ() + box.CornerMax().XYZ()) / 2;
  return gp_Vec((target.XYZ() - centre) / 2);
}

gp_Vec StrictMove(const TopoDS_Wire& wire, const gp_Pnt& target, double tolerance)
{
  const BRepExtrema_DistShapeShape distance(BRepBuilderAPI_MakeVertex(target).Vertex(), wire);
  if (!distance.IsDone() || distance.NbSolution() < 1)
    throw AttemptFailure("the distance of a section to its guides can't be found");
  if (!IsFinite(distance.Value()) || distance.Value() > tolerance * 50 + 1e-4)
    throw AttemptFailure("a section is too far from its guides");
  return gp_Vec(distance.PointOnShape2(1), target);
}

TopoDS_Wire MovedBy(const gp_Vec& move, const TopoDS_Wire& wire)
{
  gp_Trsf translation;
  translation.SetTranslation(move);
  const TopoDS_Shape moved = BRepBuilderAPI_Transform(wire, translation, true).Shape();
  const bool isWire = !moved.IsNull() && moved.ShapeType() == TopAbs_WIRE;
  return isWire ? TopoDS::Wire(moved) : wire;
}

} // namespace

bool IsValidGuide(const TopoDS_Shape& guide)
{
  if (guide.IsNull())
    return false;
  return guide.ShapeType() == TopAbs_EDGE || !ToWire(TopologyCopier().Copy(guide)).IsNull();
}

int CountValidGuides(const std::vector<TopoDS_Shape>& guides)
{
  return static_cast<int>(std::count_if(guides.begin(), guides.end(), &IsValidGuide));
}

TopoDS_Wire MovedByGuides(const TopoDS_Wire& wire, const std::vector<TopoDS_Shape>& guides,
                          double t, const AdvancedLoftOptions& options)
{
  const std::vector<gp_Pnt> points = GuidePoints(guides, t);
  if (points.empty())
    return wire;
  const gp_Pnt target = AverageOf(points);
  if (options.guideMode == 1)
    return MovedBy(SoftMove(wire, target), wire);
  if (points.size() < guides.size())
    throw AttemptFailure("a guide has no point for a section");
  return MovedBy(StrictMove(wire, target, options.tolerance), wire);
}

} // namespace Orvex
