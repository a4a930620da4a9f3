#include "step/replay/internal/VertexPlaces.h"

#include "step/replay/internal/CurveReading.h"
#include "step/replay/internal/KernelGuard.h"

#include <BRep_ListOfPointRepresentation.hxx>
#include <BRep_TVertex.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace Orvex {

namespace {

// Such a vertex may carry its place by itself, which comes before what its edges say.
bool HasPlacesOfItsOwn(const TopoDS_Vertex& vertex)
{
  return !static_cast<const BRep_TVertex*>(vertex.TShape().get())->Points().IsEmpty();
}

} // namespace

VertexPlaces::VertexPlaces(const TopoDS_Face& place) : face(place)
{
  for (TopExp_Explorer edges(face, TopAbs_EDGE); edges.More(); edges.Next())
    AddEndsOf(TopoDS::Edge(edges.Current()));
}

// The first edge at a vertex decides, and where both its ends are that vertex, its first end.
void VertexPlaces::AddEndsOf(const TopoDS_Edge& edge)
{
  TopoDS_Vertex first;
  TopoDS_Vertex last;
  TopExp::Vertices(edge, first, last);
  const bool firstIsNew = !first.IsNull() && !places.IsBound(first);
  const bool lastIsNew = !last.IsNull() && !places.IsBound(last);
  if (!firstIsNew && !lastIsNew)
    return;
  gp_Pnt2d start;
  gp_Pnt2d end;
  const bool found = SucceedsInKernel([&] {
    BRep_Tool::UVPoints(edge, face, start, end);
    return true;
  });
  if (lastIsNew)
    places.Bind(last, found ? std::optional(PointOf(end)) : std::nullopt);
  if (firstIsNew)
    places.Bind(first, found ? std::optional(PointOf(start)) : std::nullopt);
}

std::optional<ReplayUv> VertexPlaces::Of(const TopoDS_Vertex& vertex) const
{
  const auto* place = places.Seek(vertex);
  if (place != nullptr && !HasPlacesOfItsOwn(vertex))
    return *place;
  gp_Pnt2d point;
  const bool found = SucceedsInKernel([&] {
    point = BRep_Tool::Parameters(vertex, face);
    return true;
  });
  return found ? std::optional(PointOf(point)) : std::nullopt;
}

} // namespace Orvex
