#include "kernel/internal/CurveShapes.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Geom_Curve.hxx>
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

bool IsFarOut(const TopoDS_Shape& vertex)
{
  constexpr double kFarOut = 4e8;
  const gp_Pnt place = BRep_Tool::Pnt(TopoDS::Vertex(vertex));
  return std::max({std::abs(place.X()), std::abs(place.Y()), std::abs(place.Z())}) > kFarOut;
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

bool IsTooLargeToFollow(const TopoDS_Shape& shape)
{
  const std::vector<TopoDS_Edge> edges = EdgesOf(shape);
  if (std::none_of(edges.begin(), edges.end(), &IsCurved))
    return false;
  TopExp_Explorer vertex(shape, TopAbs_VERTEX);
  while (vertex.More() && !IsFarOut(vertex.Current()))
    vertex.Next();
  return vertex.More();
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
