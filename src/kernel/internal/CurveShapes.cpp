#include "kernel/internal/CurveShapes.h"
#include <BRepBuilderAPI_MakeWire.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
TopoDS_Edge Orvex::ToEdge(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  const TopExp_Explorer first(shape, TopAbs_EDGE);
  return first.More() ? TopoDS::Edge(first.Current()) : TopoDS_Edge();
}
TopoDS_Wire Orvex::WireOfCurve(const TopoDS_Shape& shape)
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
