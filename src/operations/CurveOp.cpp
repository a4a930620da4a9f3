#include "operations/CurveOp.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRep_Tool.hxx>
#include <GeomLib.hxx>
#include <Geom_BoundedCurve.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kNoLength = 1e-12;

bool IsSound(const TopoDS_Edge& edge)
{
  return !edge.IsNull() && Orvex::HasFinitePlaces(edge);
}

TopoDS_Shape EdgeOrNull(BRepBuilderAPI_MakeEdge&& edge)
{
  return edge.IsDone() ? edge.Edge() : TopoDS_Edge();
}

Handle(Geom_Curve) CurveOf(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  return BRep_Tool::Curve(edge, first, last);
}

TopoDS_Shape ExtendedLine(const BRepAdaptor_Curve& line, double distance, bool atEnd)
{
  gp_Pnt start = line.Value(line.FirstParameter()), end = line.Value(line.LastParameter());
  gp_Vec direction(start, end);
  if (direction.Magnitude() < kNoLength)
    return {};
  direction.Normalize();
  if (atEnd)
    end.Translate(direction * distance);
  else
    start.Translate(direction * -distance);
  return EdgeOrNull(BRepBuilderAPI_MakeEdge(start, end));
}

TopoDS_Shape ExtendedTo(const gp_Pnt& target, const TopoDS_Edge& edge, bool atEnd)
{
  constexpr int kContinuity = 1;
  const Handle(Geom_Curve) curve = CurveOf(edge);
  if (curve.IsNull())
    return {};
  auto bounded = Handle(Geom_BoundedCurve)::DownCast(curve->Copy());
  if (bounded.IsNull())
    return {};
  try {
    GeomLib::ExtendCurveToPoint(bounded, target, kContinuity, atEnd);
  } catch (const Standard_Failure&) {
    return {};
  }
  return EdgeOrNull(
    BRepBuilderAPI_MakeEdge(bounded, bounded->FirstParameter(), bounded->LastParameter()));
}

} // namespace

TopoDS_Shape CurveOp::ExtendCurve(const TopoDS_Shape& curve, double distance, bool atEnd)
{
  const TopoDS_Edge edge = Orvex::ToEdge(curve);
  if (!IsSound(edge) || !(distance > 0) || !Orvex::IsFinite(distance))
    return {};
  const BRepAdaptor_Curve adaptor(edge);
  if (adaptor.GetType() == GeomAbs_Line)
    return ExtendedLine(adaptor, distance, atEnd);
  gp_Pnt point;
  gp_Vec tangent;
  adaptor.D1(atEnd ? adaptor.LastParameter() : adaptor.FirstParameter(), point, tangent);
  if (tangent.Magnitude() < kNoLength)
    return {};
  tangent.Normalize();
  return ExtendedTo(point.Translated(tangent * (atEnd ? distance : -distance)), edge, atEnd);
}

TopoDS_Shape CurveOp::TrimCurve(const TopoDS_Shape& curve, double first, double last)
{
  constexpr double kNothing = 1e-7;
  const TopoDS_Edge edge = Orvex::ToEdge(curve);
  if (!IsSound(edge) || std::isnan(first) || std::isnan(last))
    return {};
  const BRepAdaptor_Curve adaptor(edge);
  const auto clamped = [&](double parameter) {
    return std::max(adaptor.FirstParameter(), std::min(parameter, adaptor.LastParameter()));
  };
  const double from = clamped(std::min(first, last)), to = clamped(std::max(first, last));
  if (to - from < kNothing)
    return {};
  const Handle(Geom_Curve) whole = CurveOf(edge);
  if (whole.IsNull())
    return {};
  return EdgeOrNull(BRepBuilderAPI_MakeEdge(new Geom_TrimmedCurve(whole, from, to, true, true)));
}
