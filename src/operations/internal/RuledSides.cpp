#include "operations/internal/RuledSides.h"

#include "kernel/internal/CurveShapes.h"
#include "operations/internal/AttemptLadder.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRep_Tool.hxx>
#include <GeomFill.hxx>
#include <Geom_Surface.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <Precision.hxx>

namespace Orvex {

namespace {

Handle(Geom_TrimmedCurve) CurveOf(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (curve.IsNull())
    throw AttemptFailure("an edge has no curve");
  return new Geom_TrimmedCurve(curve, first, last);
}

bool RunsAgainst(const Geom_Curve& one, const Geom_Curve& other)
{
  const gp_Pnt oneFirst = one.Value(one.FirstParameter()), oneLast = one.Value(one.LastParameter());
  const gp_Pnt otherFirst = other.Value(other.FirstParameter());
  const gp_Pnt otherLast = other.Value(other.LastParameter());
  return oneFirst.Distance(otherLast) + oneLast.Distance(otherFirst) <
         oneFirst.Distance(otherFirst) + oneLast.Distance(otherLast);
}

TopoDS_Shape RuledFace(const TopoDS_Edge& first, const TopoDS_Edge& second)
{
  const Handle(Geom_TrimmedCurve) one = CurveOf(first), other = CurveOf(second);
  if (RunsAgainst(*one, *other))
    other->Reverse();
  BRepBuilderAPI_MakeFace face(GeomFill::Surface(one, other), Precision::Confusion());
  return ShapeIfDone(face);
}

} // namespace

TopoDS_Shape RuledBetween(const TopoDS_Wire& first, const TopoDS_Wire& second)
{
  const std::vector<TopoDS_Edge> edges = EdgesOf(first), partners = EdgesOf(second);
  if (edges.empty() || edges.size() != partners.size())
    throw AttemptFailure("the wires have different numbers of edges");
  std::vector<TopoDS_Shape> faces;
  for (std::size_t i = 0; i < edges.size(); ++i)
    faces.push_back(RuledFace(edges[i], partners[i]));
  return Sewn(faces);
}

TopoDS_Shape Sewn(const std::vector<TopoDS_Shape>& shapes)
{
  BRepBuilderAPI_Sewing sewing(1e-6, true, true, true, false);
  for (const TopoDS_Shape& shape : shapes)
    sewing.Add(shape);
  sewing.Perform();
  return sewing.SewedShape();
}

} // namespace Orvex
