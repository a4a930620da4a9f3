#include "kernel/internal/TopologyCopy.h"

#include <BRep_Builder.hxx>
#include <BRep_PointOnCurve.hxx>
#include <BRep_PointOnCurveOnSurface.hxx>
#include <BRep_PointOnSurface.hxx>
#include <BRep_TFace.hxx>
#include <BRep_TVertex.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_Curve.hxx>
#include <Geom_Surface.hxx>
#include <TopoDS_Iterator.hxx>

namespace Orvex {

namespace {

using TShape = Handle(TopoDS_TShape);
using Point = Handle(BRep_PointRepresentation);

TopoDS_Shape ShapeOf(const TShape& tshape)
{
  TopoDS_Shape shape;
  shape.TShape(tshape);
  return shape;
}

Point CopyOf(const Point& point)
{
  if (point->IsPointOnCurve())
    return new BRep_PointOnCurve(point->Parameter(), point->Curve(), point->Location());
  if (point->IsPointOnCurveOnSurface())
    return new BRep_PointOnCurveOnSurface(point->Parameter(), point->PCurve(), point->Surface(),
                                          point->Location());
  return new BRep_PointOnSurface(point->Parameter(), point->Parameter2(), point->Surface(),
                                 point->Location());
}

// The kernel's EmptyCopy leaves these out.
void CopyWhatEmptyCopyLeavesOut(const TShape& original, const TShape& copy)
{
  if (original->ShapeType() == TopAbs_VERTEX)
    for (const Point& point : Handle(BRep_TVertex)::DownCast(original)->Points())
      Handle(BRep_TVertex)::DownCast(copy)->ChangePoints().Append(CopyOf(point));
  else if (original->ShapeType() == TopAbs_FACE)
    Handle(BRep_TFace)::DownCast(copy)->NaturalRestriction(
      Handle(BRep_TFace)::DownCast(original)->NaturalRestriction());
}

void CopyFlags(const TShape& original, const TShape& copy)
{
  copy->Modified(original->Modified());
  copy->Checked(original->Checked());
  copy->Orientable(original->Orientable());
  copy->Closed(original->Closed());
  copy->Infinite(original->Infinite());
  copy->Convex(original->Convex());
}

} // namespace

TopoDS_Shape TopologyCopier::Copy(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return shape;
  TopoDS_Shape copy = ShapeOf(CopyOf(shape.TShape()));
  copy.Location(shape.Location());
  copy.Orientation(shape.Orientation());
  return copy;
}

TShape TopologyCopier::CopyOf(const TShape& original)
{
  const auto found = copies.find(original.get());
  if (found != copies.end())
    return found->second;
  TShape copy = MakeCopy(original);
  copies.emplace(original.get(), copy);
  return copy;
}

TShape TopologyCopier::MakeCopy(const TShape& original)
{
  TShape copy = original->EmptyCopy();
  TopoDS_Shape holder = ShapeOf(copy);
  for (TopoDS_Iterator part(ShapeOf(original), false, false); part.More(); part.Next())
    BRep_Builder().Add(holder, Copy(part.Value()));
  CopyWhatEmptyCopyLeavesOut(original, copy);
  CopyFlags(original, copy);
  return copy;
}

} // namespace Orvex
