#include "step/replay/internal/TrimReading.h"

#include "step/replay/internal/CurveReading.h"
#include "step/replay/internal/KernelGuard.h"
#include "step/replay/internal/VertexPlaces.h"
#include "step/replay/internal/WireWalk.h"

#include <BRepTools.hxx>
#include <BRep_Tool.hxx>

namespace Orvex {

namespace {

// Returns: false, and the record empty, if the read fails.
template <typename Payload, typename Read>
bool ReadOrReset(Payload& payload, Read&& read)
{
  const bool succeeded = SucceedsInKernel(read);
  if (!succeeded)
    payload = {};
  return succeeded;
}

class TrimReading
{
public:
  TrimReading(const TopoDS_Face& trimmed, const ReplayIdIndex& ids)
      : face(trimmed), index(ids), walk(trimmed), places(trimmed)
  {}

  ReplayLoopPayload LoopOf(const TopoDS_Wire& wire, bool isOuter) const
  {
    ReplayLoopPayload loop;
    loop.isOuter = isOuter;
    // Coedges are large, and the caches keep them.
    loop.coedges.reserve(static_cast<std::size_t>(wire.NbChildren()));
    walk.Along(
      wire, [&](const TopoDS_Edge& edge, bool) { ReadCoedge(edge, loop.coedges.emplace_back()); });
    return loop;
  }

private:
  void ReadCoedge(const TopoDS_Edge& edge, ReplayCoedgePayload& coedge) const
  {
    coedge.edgeId = ReplayIdIndex::IdIn(index.edges, edge);
    coedge.isDegenerated = BRep_Tool::Degenerated(edge);
    coedge.isSeam = BRep_Tool::IsClosed(edge, face);
    coedge.orientation = edge.Orientation() != TopAbs_REVERSED;
    ReadCurves(edge, coedge);
    ReadEnds(edge, coedge);
  }

  void ReadCurves(const TopoDS_Edge& edge, ReplayCoedgePayload& coedge) const
  {
    coedge.hasCurve3d = ReadOrReset(coedge.curve3d, [&] {
      ReadCurve(edge, coedge.curve3d);
      return true;
    });
    coedge.curve3d.id = coedge.edgeId;
    coedge.hasPcurve =
      ReadOrReset(coedge.pcurve, [&] { return ReadPcurve(edge, face, coedge.pcurve); });
    coedge.hasSecondaryPcurve = coedge.isSeam && ReadOrReset(coedge.secondaryPcurve, [&] {
                                  return ReadSecondaryPcurve(edge, coedge.secondaryPcurve);
                                });
  }

  void ReadEnds(const TopoDS_Edge& edge, ReplayCoedgePayload& coedge) const
  {
    TopoDS_Vertex start;
    TopoDS_Vertex end;
    TopExp::Vertices(edge, start, end, false);
    coedge.startVertexId = ReplayIdIndex::IdIn(index.vertices, start);
    coedge.endVertexId = ReplayIdIndex::IdIn(index.vertices, end);
    coedge.hasStartVertexPoint = !start.IsNull();
    coedge.hasEndVertexPoint = !end.IsNull();
    if (!start.IsNull())
      coedge.hasStartVertexUv = ReadVertex(start, coedge.startVertexPoint, coedge.startVertexUv);
    if (!end.IsNull())
      coedge.hasEndVertexUv = ReadVertex(end, coedge.endVertexPoint, coedge.endVertexUv);
  }

  // Returns: whether it has a place on the surface.
  bool ReadVertex(const TopoDS_Vertex& vertex, ReplayPoint& point, ReplayUv& uv) const
  {
    point = PointOf(BRep_Tool::Pnt(vertex));
    const auto place = places.Of(vertex);
    uv = place.value_or(ReplayUv());
    return place.has_value();
  }

  const TopoDS_Face& face;
  const ReplayIdIndex& index;
  const WireWalk walk;
  VertexPlaces places;
};

} // namespace

void ReadTrim(const TopoDS_Face& face, const ReplayIdIndex& index, ReplayFaceTrimPayload& payload)
{
  payload.sameSense = face.Orientation() != TopAbs_REVERSED;
  const TopoDS_Wire outer = BRepTools::OuterWire(face);
  const TrimReading reading(face, index);
  for (TopExp_Explorer wires(face, TopAbs_WIRE); wires.More(); wires.Next()) {
    const bool isOuter = !outer.IsNull() && wires.Current().IsSame(outer);
    payload.loops.push_back(reading.LoopOf(TopoDS::Wire(wires.Current()), isOuter));
  }
}

} // namespace Orvex
