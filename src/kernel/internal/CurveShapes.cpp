#include "kernel/internal/CurveShapes.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom_Curve.hxx>
#include <Precision.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex {

namespace {

bool IsCurved(const TopoDS_Edge& edge)
{
  return HasCurve(edge) && BRepAdaptor_Curve(edge).GetType() != GeomAbs_Line;
}

bool HasCurvedEdge(const TopoDS_Shape& shape)
{
  const std::vector<TopoDS_Edge> edges = EdgesOf(shape);
  return std::any_of(edges.begin(), edges.end(), &IsCurved);
}

bool IsEndless(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  BRep_Tool::Range(edge, first, last);
  return Precision::IsInfinite(first) || Precision::IsInfinite(last);
}

bool ReachesFarOut(const TopoDS_Shape& shape)
{
  constexpr double kFarOut = 4e8;
  const std::vector<TopoDS_Edge> edges = EdgesOf(shape);
  if (std::any_of(edges.begin(), edges.end(), &IsEndless))
    return true;
  Bnd_Box box;
  BRepBndLib::Add(shape, box, false);
  if (box.IsVoid())
    return false;
  const gp_Pnt low = box.CornerMin(), high = box.CornerMax();
  return std::max({-low.X(), -low.Y(), -low.Z(), high.X(), high.Y(), high.Z()}) > kFarOut;
}

} // namespace

TopoDS_Edge ToEdge(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  const TopExp_Explorer first(shape, TopAbs_EDGE);
  return first.More() ? TopoDS::Edge(first.Current()) : TopoDS_Edge();
}

TopoDS_Wire WireOfCurve(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  if (shape.ShapeType() == TopAbs_WIRE)
    return TopoDS::Wire(shape);
  if (shape.ShapeType() != TopAbs_EDGE)
    return {};
  BRepBuilderAPI_MakeWire wire(TopoDS::Edge(shape));
  return wire.IsDone() ? wire.Wire() : TopoDS_Wire();
}

TopoDS_Wire ToWire(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  if (shape.ShapeType() == TopAbs_WIRE || shape.ShapeType() == TopAbs_EDGE)
    return WireOfCurve(shape);
  if (shape.ShapeType() == TopAbs_FACE)
    return BRepTools::OuterWire(TopoDS::Face(shape));
  BRepBuilderAPI_MakeWire wire;
  for (const TopoDS_Edge& edge : EdgesOf(shape))
    wire.Add(edge);
  return wire.IsDone() ? wire.Wire() : TopoDS_Wire();
}

std::vector<TopoDS_Edge> EdgesOf(const TopoDS_Shape& shape)
{
  std::vector<TopoDS_Edge> edges;
  if (!shape.IsNull())
    for (TopExp_Explorer edge(shape, TopAbs_EDGE); edge.More(); edge.Next())
      edges.push_back(TopoDS::Edge(edge.Current()));
  return edges;
}

bool HasCurve(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  return !BRep_Tool::Curve(edge, first, last).IsNull();
}

bool PassesAnEdgeTwice(const TopoDS_Wire& wire)
{
  TopTools_MapOfShape passed;
  const std::vector<TopoDS_Edge> edges = EdgesOf(wire);
  return !std::all_of(edges.begin(), edges.end(),
                      [&](const TopoDS_Edge& edge) { return passed.Add(edge); });
}

bool AreTooLargeToFollow(std::initializer_list<TopoDS_Shape> shapes)
{
  return std::any_of(shapes.begin(), shapes.end(), &HasCurvedEdge) &&
         std::any_of(shapes.begin(), shapes.end(), &ReachesFarOut);
}

bool IsSameShape(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  return !first.IsNull() && first.IsSame(second);
}

bool HasDuplicates(const std::vector<TopoDS_Shape>& shapes)
{
  for (std::size_t i = 1; i < shapes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (IsSameShape(shapes[i], shapes[j]))
        return true;
  return false;
}

} // namespace Orvex
