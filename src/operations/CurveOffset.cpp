// The offset of CurveOp.
#include "operations/CurveOp.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepOffsetAPI_MakeOffset.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_MapOfOrientedShape.hxx>
#include <TopoDS.hxx>
#include <gp_Circ.hxx>

#include <optional>

namespace {

// A wire that goes along an edge twice is not always survived by the kernel.
bool IsSound(const TopoDS_Wire& wire)
{
  if (wire.IsNull() || !Orvex::HasFinitePlaces(wire) || Orvex::HasTornEdge(wire))
    return false;
  TopTools_MapOfOrientedShape seen;
  for (TopExp_Explorer edge(wire, TopAbs_EDGE); edge.More(); edge.Next())
    if (!seen.Add(edge.Current()))
      return false;
  return true;
}

// The circle that a wire is, if it is a whole one.
std::optional<gp_Circ> CircleOf(const TopoDS_Wire& wire)
{
  if (wire.NbChildren() != 1)
    return std::nullopt;
  const TopoDS_Edge edge = TopoDS::Edge(TopExp_Explorer(wire, TopAbs_EDGE).Current());
  const BRepAdaptor_Curve curve(edge);
  if (curve.GetType() != GeomAbs_Circle || !curve.IsClosed())
    return std::nullopt;
  return curve.Circle();
}

TopoDS_Shape Offset(const TopoDS_Wire& wire, double distance)
{
  constexpr double kAltitude = 0;
  BRepOffsetAPI_MakeOffset offset(wire, GeomAbs_Arc, false);
  offset.Perform(distance, kAltitude);
  return offset.IsDone() ? offset.Shape() : TopoDS_Shape();
}

TopoDS_Shape Scaled(const TopoDS_Shape& shape, const gp_Pnt& center, double factor)
{
  gp_Trsf scaling;
  scaling.SetScale(center, factor);
  return BRepBuilderAPI_Transform(shape, scaling, true).Shape();
}

// The kernel does not survive the inward offset of a circle whose radius is 1 or less.
TopoDS_Shape OffsetOfSmall(const gp_Circ& circle, const TopoDS_Wire& wire, double distance)
{
  constexpr double kSafeRadius = 2;
  const double factor = kSafeRadius / circle.Radius();
  const TopoDS_Shape large = Scaled(wire, circle.Location(), factor);
  const TopoDS_Shape offset = Offset(TopoDS::Wire(large), distance * factor);
  return offset.IsNull() ? offset : Scaled(offset, circle.Location(), 1 / factor);
}

} // namespace

TopoDS_Shape CurveOp::OffsetCurve(const TopoDS_Shape& curve, double distance)
{
  constexpr double kFatalRadius = 1.001;
  // Of a copy: as part of a wire an edge loses a mark, and offsetting writes on the edges.
  const TopoDS_Wire wire = Orvex::WireOfCurve(Orvex::TopologyCopier().Copy(curve));
  if (!IsSound(wire) || !Orvex::IsFinite(distance))
    return {};
  const std::optional<gp_Circ> circle = CircleOf(wire);
  return circle && circle->Radius() < kFatalRadius ? OffsetOfSmall(*circle, wire, distance)
                                                   : Offset(wire, distance);
}
