#include "kernel/internal/KernelLimits.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace {

bool IsTorn(const TopoDS_Edge& edge)
{
  const BRepAdaptor_Curve curve(edge);
  return curve.IsPeriodic() &&
         curve.LastParameter() - curve.FirstParameter() >
           curve.Period() - Precision::PConfusion() &&
         !TopExp::FirstVertex(edge).IsSame(TopExp::LastVertex(edge));
}

} // namespace

bool Orvex::HasFinitePlaces(const TopoDS_Shape& shape)
{
  constexpr double kFarthest = 1e50;
  const auto isFar = [](double coordinate) { return !(std::abs(coordinate) <= kFarthest); };
  for (TopExp_Explorer vertex(shape, TopAbs_VERTEX); vertex.More(); vertex.Next()) {
    const gp_Pnt place = BRep_Tool::Pnt(TopoDS::Vertex(vertex.Current()));
    if (isFar(place.X()) || isFar(place.Y()) || isFar(place.Z()))
      return false;
  }
  return true;
}

bool Orvex::HasTornEdge(const TopoDS_Shape& shape)
{
  for (TopExp_Explorer edge(shape, TopAbs_EDGE); edge.More(); edge.Next())
    if (IsTorn(TopoDS::Edge(edge.Current())))
      return true;
  return false;
}
