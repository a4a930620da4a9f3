#include "operations/internal/SurfaceFill.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/AdvancedSurfaceOp.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepOffsetAPI_MakeFilling.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_BezierSurface.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <locale>
#include <sstream>

using namespace Orvex;

namespace {

using Orders = std::vector<GeomAbs_Shape>;
using Points = std::vector<gp_Pnt>;

// What differs between fillings; the kernel's defaults for the rest.
struct FillingSettings
{
  int degree = 3;
  int iterations = 2;
  double tolerance = 1e-4;
};

GeomAbs_Shape OrderOf(int continuity)
{
  return continuity == 1 ? GeomAbs_G1 : continuity == 2 ? GeomAbs_G2 : GeomAbs_C0;
}

// Numbers of the constraint records, position for what is out of range.
GeomAbs_Shape OrderOf(SurfaceContinuityLevel level)
{
  return OrderOf(static_cast<int>(level));
}

bool IsAllPosition(const Orders& orders)
{
  return std::all_of(orders.begin(), orders.end(),
                     [](GeomAbs_Shape order) { return order == GeomAbs_C0; });
}

std::string TextOf(const Orders& orders)
{
  std::string text = "levels ";
  for (const GeomAbs_Shape order : orders)
    text.append(order == GeomAbs_C0 ? "0" : order == GeomAbs_G1 ? "1" : "2");
  return text;
}

// The surface that the kernel holds a level against: the first that the edge has a curve on.
Handle(Geom_Surface) FirstSurfaceOf(const TopoDS_Edge& edge)
{
  Handle(Geom2d_Curve) curve;
  Handle(Geom_Surface) surface;
  TopLoc_Location location;
  double first = 0, last = 0;
  BRep_Tool::CurveOnSurface(edge, curve, surface, location, first, last);
  return surface;
}

// Against planes, cylinders and all others that are no splines the kernel raises in nine cases of
// ten, and else crashes as often as not.
void CheckLevel(const TopoDS_Edge& edge, GeomAbs_Shape order)
{
  if (order == GeomAbs_C0)
    return;
  const Handle(Geom_Surface) surface = FirstSurfaceOf(edge);
  if (surface.IsNull())
    throw AttemptFailure("an edge with a level lies on no face");
  if (!surface->IsKind(STANDARD_TYPE(Geom_BSplineSurface)) &&
      !surface->IsKind(STANDARD_TYPE(Geom_BezierSurface)))
    throw AttemptFailure("an edge with a level lies on a surface that is no spline");
}

TopoDS_Shape Filled(const FillingSettings& settings, const TopoDS_Wire& wire, const Orders& orders,
                    const Points& points)
{
  if (AreTooLargeToFollow({wire}))
    throw AttemptFailure("curved edges of this size take the kernel for ever");
  BRepOffsetAPI_MakeFilling filling(settings.degree, 15, settings.iterations, false, 1e-5,
                                    settings.tolerance, 0.01, 0.1, 8, 9);
  const std::vector<TopoDS_Edge> edges = EdgesOf(TopologyCopier().Copy(wire));
  for (std::size_t i = 0; i < edges.size(); ++i) {
    CheckLevel(edges[i], orders[i]);
    filling.Add(edges[i], orders[i], true);
  }
  for (const gp_Pnt& point : points)
    filling.Add(point);
  filling.Build();
  return ShapeIfDone(filling);
}

TopoDS_Shape FaceUnder(const TopoDS_Wire& wire)
{
  BRepBuilderAPI_MakeFace face(TopoDS::Wire(TopologyCopier().Copy(wire)), false);
  return ShapeIfDone(face);
}

Orders OrdersFor(std::size_t edges, const std::vector<FillHoleEdgeConstraint>& constraints,
                 SurfaceContinuityLevel level)
{
  Orders orders(edges, OrderOf(level));
  for (std::size_t i = 0; i < edges; ++i) {
    const int number = static_cast<int>(i) + 1;
    const auto found = std::find_if(constraints.begin(), constraints.end(),
                                    [&](const auto& each) { return each.index == number; });
    if (found != constraints.end())
      orders[i] = OrderOf(found->continuity);
  }
  return orders;
}

// The same levels are not tried twice.
std::vector<Attempt> HoleAttempts(const std::string& what, const TopoDS_Wire& wire,
                                  const Orders& orders)
{
  const auto fillWith = [&](const Orders& tried) {
    return Attempt{what + TextOf(tried), [wire, tried] { return Filled({}, wire, tried, {}); }};
  };
  std::vector<Attempt> attempts = {fillWith(orders)};
  if (!IsAllPosition(orders))
    attempts.push_back(fillWith(Orders(orders.size(), GeomAbs_C0)));
  attempts.push_back({what + "a surface under the wire", [wire] { return FaceUnder(wire); }});
  return attempts;
}

FillingSettings SettingsFor(double quality)
{
  FillingSettings settings;
  settings.degree = quality <= 0 ? 2 : quality >= 2 ? 5 : 3;
  settings.iterations = quality >= 1.5 ? 4 : 2;
  settings.tolerance = quality >= 1 ? 0.01 : 1e-4;
  return settings;
}

std::string TextOf(const FillingSettings& settings, const Orders& orders)
{
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "degree " << settings.degree << ", " << settings.iterations << " iterations, tolerance "
       << settings.tolerance << ", " << TextOf(orders);
  return std::move(text).str();
}

bool IsFinitePoint(const gp_Pnt& point)
{
  return IsFinite(point.X()) && IsFinite(point.Y()) && IsFinite(point.Z());
}

const char* ReasonToRefuse(const TopoDS_Wire& wire)
{
  if (wire.IsNull())
    return "there is no wire";
  if (!HasFinitePlaces(wire))
    return "the wire has a vertex at no finite place";
  return EdgesOf(wire).empty() ? "the wire has no edges" : nullptr;
}

TopoDS_Face Patch(const TopoDS_Wire& wire, const Points& points, double quality, int continuity,
                  OperationReport& report)
{
  const char* reason = ReasonToRefuse(wire);
  if (reason == nullptr && !std::all_of(points.begin(), points.end(), &IsFinitePoint))
    reason = "a point is at no finite place";
  if (reason != nullptr)
    return TopoDS::Face(Refused(report, reason));
  const std::size_t edges = EdgesOf(wire).size();
  const auto patchWith = [&](const FillingSettings& settings, const Orders& orders) {
    return Attempt{TextOf(settings, orders), [&wire, &points, settings, orders] {
                     return Filled(settings, wire, orders, points);
                   }};
  };
  const Orders wanted(edges, OrderOf(std::clamp(continuity, 0, 2)));
  const FillingSettings plain = {3, 2, 1e-3};
  return TopoDS::Face(FirstBuilt(
    {patchWith(SettingsFor(quality), wanted), patchWith(plain, Orders(edges, GeomAbs_C0))},
    report));
}

} // namespace

TopoDS_Face Orvex::FilledHole(const std::string& what, const TopoDS_Wire& wire,
                              const std::vector<FillHoleEdgeConstraint>& constraints,
                              SurfaceContinuityLevel level, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(wire))
    return TopoDS::Face(Refused(report, reason));
  const Orders orders = OrdersFor(EdgesOf(wire).size(), constraints, level);
  return TopoDS::Face(FirstBuilt(HoleAttempts(what, wire, orders), report));
}

TopoDS_Face AdvancedSurfaceOp::BuildPatchSurface(const TopoDS_Wire& wire,
                                                 const std::vector<gp_Pnt>& points, double quality,
                                                 int continuity)
{
  return BuildPatchSurface(wire, points, quality, continuity, nullptr);
}

TopoDS_Face AdvancedSurfaceOp::BuildPatchSurface(const TopoDS_Wire& wire,
                                                 const std::vector<gp_Pnt>& points, double quality,
                                                 int continuity, OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) {
    return Patch(wire, points, quality, continuity, written);
  });
}

TopoDS_Face AdvancedSurfaceOp::FillHole(const TopoDS_Wire& wire,
                                        const std::vector<FillHoleEdgeConstraint>& constraints,
                                        SurfaceContinuityLevel level)
{
  return FillHole(wire, constraints, level, nullptr);
}

TopoDS_Face AdvancedSurfaceOp::FillHole(const TopoDS_Wire& wire,
                                        const std::vector<FillHoleEdgeConstraint>& constraints,
                                        SurfaceContinuityLevel level, OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) {
    return FilledHole("", wire, constraints, level, written);
  });
}

TopoDS_Face AdvancedSurfaceOp::FillHole(const TopoDS_Wire& wire, SurfaceContinuityLevel level)
{
  return FillHole(wire, {}, level, nullptr);
}
