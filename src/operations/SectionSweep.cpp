// The sweeps of OrvexGeometryOp.
#include "operations/OrvexGeometryOp.h"

#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepSweep_Prism.hxx>
#include <Standard_ConstructionError.hxx>
#include <StdFail_NotDone.hxx>
#include <TopoDS.hxx>

#include <algorithm>

namespace {

// The wire becomes part of the result.
TopoDS_Shape PrismOf(const TopoDS_Wire& wire, const gp_Dir& direction, double length)
{
  // The kernel raises this for an infinite length. Of one that is no number it makes a solid that
  // nobody can measure: that never ends.
  if (!Orvex::IsFinite(length))
    throw Standard_ConstructionError("the length of a sweep is no finite number");
  if (!Orvex::HasFinitePlaces(wire) || Orvex::HasTornEdge(wire))
    throw StdFail_NotDone("the section does not close");
  BRepBuilderAPI_MakeFace face(wire, false);
  // The kernel gives a null face without a word, and does not survive the prism of one.
  if (!face.IsDone())
    throw StdFail_NotDone("the section bounds no face");
  const BRepPrimAPI_MakePrism prism(face.Face(), gp_Vec(direction) * length, false, true);
  return BRepSweep_Prism(prism.Prism()).Shape();
}

} // namespace

TopoDS_Shape OrvexGeometryOp::CreateShapeBySweep(std::vector<const TopoDS_Edge*> edges,
                                                 gp_Dir direction, double length)
{
  const auto isMissing = [](const TopoDS_Edge* edge) { return edge == nullptr || edge->IsNull(); };
  if (edges.empty() || std::any_of(edges.begin(), edges.end(), isMissing))
    return {};
  Orvex::TopologyCopier copier;
  BRepBuilderAPI_MakeWire wire;
  for (const TopoDS_Edge* edge : edges)
    wire.Add(TopoDS::Edge(copier.Copy(*edge)));
  return PrismOf(wire.Wire(), direction, length);
}

TopoDS_Shape OrvexGeometryOp::CreateShapeBySweep(std::vector<gp_Pnt> points, gp_Dir direction,
                                                 double length)
{
  if (points.size() < 2)
    return {};
  BRepBuilderAPI_MakeWire wire;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    wire.Add(BRepBuilderAPI_MakeEdge(points[i], points[i + 1]).Edge());
  return PrismOf(wire.Wire(), direction, length);
}

TopoDS_Shape OrvexGeometryOp::CreateShapeBySweep(TopoDS_Wire wire, gp_Dir direction, double length)
{
  if (wire.IsNull())
    return {};
  return PrismOf(TopoDS::Wire(Orvex::TopologyCopier().Copy(wire)), direction, length);
}
