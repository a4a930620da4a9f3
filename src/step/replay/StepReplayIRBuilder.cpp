#include "step/replay/StepReplayIRBuilder.h"

#include "step/replay/internal/GeometryKinds.h"
#include "step/replay/internal/KernelGuard.h"
#include "step/replay/internal/ReplayIdIndex.h"
#include "step/replay/internal/WireWalk.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_Curve.hxx>
#include <TopoDS.hxx>

namespace Orvex {

namespace {

// What a description left half done when the kernel threw counts for nothing but the kind.
template <typename Kind, typename Describe>
void KindOrUnknown(Kind& kind, Describe&& describe)
{
  const bool known = SucceedsInKernel([&] {
    describe();
    return true;
  });
  if (!known)
    kind = static_cast<Kind>(0);
}

template <typename Adaptor>
void CountPolesOf(const Adaptor& curve, ReplayCurveKind kind, std::int32_t& degree,
                  std::int32_t& poles, std::int32_t& knots)
{
  if (kind != kBezierCurve && kind != kBSplineCurve)
    return;
  degree = curve.Degree();
  poles = curve.NbPoles();
  if (kind == kBSplineCurve)
    knots = curve.NbKnots();
}

void Classify(const TopoDS_Edge& edge, ReplayCurveRecord& curve)
{
  KindOrUnknown(curve.kind, [&] {
    const BRepAdaptor_Curve adaptor(edge);
    curve.kind = KindOf(adaptor.GetType());
    CountPolesOf(adaptor, curve.kind, curve.degree, curve.poleCount, curve.knotCount);
  });
}

void Classify(const TopoDS_Face& face, ReplaySurfaceRecord& surface)
{
  KindOrUnknown(surface.kind, [&] {
    const BRepAdaptor_Surface adaptor(face, true);
    surface.kind = KindOf(adaptor.GetType());
    if (surface.kind != kBezierSurface && surface.kind != kBSplineSurface)
      return;
    surface.degreeU = adaptor.UDegree();
    surface.degreeV = adaptor.VDegree();
    surface.poleRows = adaptor.NbUPoles();
    surface.poleCols = adaptor.NbVPoles();
    if (surface.kind == kBSplineSurface) {
      surface.uKnotCount = adaptor.NbUKnots();
      surface.vKnotCount = adaptor.NbVKnots();
    }
  });
}

void ClassifyPcurve(const TopoDS_Edge& edge, const TopoDS_Face& face, ReplayCoedgeRecord& coedge)
{
  double first = 0;
  double last = 0;
  const auto pcurve = BRep_Tool::CurveOnSurface(edge, face, first, last);
  coedge.hasPcurve = !pcurve.IsNull();
  if (pcurve.IsNull())
    return;
  KindOrUnknown(coedge.pcurveKind, [&] {
    // The curve is at hand: BRepAdaptor_Curve2d would compute that of a plane a second time.
    const Geom2dAdaptor_Curve adaptor(pcurve, first, last);
    coedge.pcurveKind = KindOf(adaptor.GetType());
    CountPolesOf(adaptor, coedge.pcurveKind, coedge.pcurveDegree, coedge.pcurvePoleCount,
                 coedge.pcurveKnotCount);
  });
}

bool HasCurve3d(const TopoDS_Edge& edge)
{
  double first = 0;
  double last = 0;
  return !BRep_Tool::Curve(edge, first, last).IsNull();
}

class SummaryBuild
{
public:
  explicit SummaryBuild(const std::vector<TopoDS_Shape>& roots) : index(roots)
  {}

  ReplayIRSummary Run()
  {
    Each(index.vertices, summary.vertices, &SummaryBuild::FillVertex);
    Each(index.edges, summary.curves, &SummaryBuild::FillCurve);
    Each(index.faces, summary.surfaces, &SummaryBuild::FillSurface);
    Each(index.faces, summary.faces, &SummaryBuild::FillFace);
    Each(index.shells, summary.shells, &SummaryBuild::FillShell);
    Each(index.solids, summary.solids, &SummaryBuild::FillSolid);
    return std::move(summary);
  }

private:
  // A record for each shape, in the order of the ids.
  template <typename Record>
  void Each(const TopTools_IndexedMapOfShape& map, std::vector<Record>& records,
            void (SummaryBuild::*fill)(const TopoDS_Shape&, Record&))
  {
    records.resize(static_cast<std::size_t>(map.Extent()));
    for (std::size_t i = 0; i < records.size(); ++i) {
      records[i].id = i + 1;
      (this->*fill)(map(static_cast<int>(i) + 1), records[i]);
    }
  }

  void FillVertex(const TopoDS_Shape& shape, ReplayVertexRecord& vertex)
  {
    const gp_Pnt point = BRep_Tool::Pnt(TopoDS::Vertex(shape));
    vertex.x = point.X();
    vertex.y = point.Y();
    vertex.z = point.Z();
  }

  void FillCurve(const TopoDS_Shape& shape, ReplayCurveRecord& curve)
  {
    const TopoDS_Edge& edge = TopoDS::Edge(shape);
    Classify(edge, curve);
    FillEnds(edge, curve);
    ++summary.curveHistogram[ToString(curve.kind)];
  }

  void FillSurface(const TopoDS_Shape& shape, ReplaySurfaceRecord& surface)
  {
    Classify(TopoDS::Face(shape), surface);
    ++summary.surfaceHistogram[ToString(surface.kind)];
  }

  void FillFace(const TopoDS_Shape& shape, ReplayFaceRecord& record)
  {
    const TopoDS_Face& face = TopoDS::Face(shape);
    record.surfaceId = record.id;
    record.sameSense = face.Orientation() != TopAbs_REVERSED;
    const TopoDS_Wire outer = BRepTools::OuterWire(face);
    const WireWalk walk(face);
    for (TopExp_Explorer wires(face, TopAbs_WIRE); wires.More(); wires.Next()) {
      const bool isOuter = !outer.IsNull() && wires.Current().IsSame(outer);
      record.loopIds.push_back(
        AddLoop(TopoDS::Wire(wires.Current()), face, walk, record.id, isOuter));
    }
    record.boundCount = static_cast<std::int32_t>(record.loopIds.size());
    record.edgeIds = IdsIn(face, TopAbs_EDGE, index.edges);
    record.edgeCount = static_cast<std::int32_t>(record.edgeIds.size());
  }

  ReplayId AddLoop(const TopoDS_Wire& wire, const TopoDS_Face& face, const WireWalk& walk,
                   ReplayId faceId, bool isOuter)
  {
    ReplayLoopRecord loop;
    loop.id = summary.loops.size() + 1;
    loop.faceId = faceId;
    loop.isOuter = isOuter;
    walk.Along(wire, [&](const TopoDS_Edge& edge, bool isWalked) {
      ReplayCoedgeRecord coedge;
      coedge.id = summary.coedges.size() + 1;
      coedge.loopId = loop.id;
      FillCoedge(edge, coedge);
      if (isWalked)
        ClassifyPcurve(edge, face, coedge);
      loop.coedgeIds.push_back(coedge.id);
      summary.coedges.push_back(coedge);
    });
    loop.coedgeCount = static_cast<std::int32_t>(loop.coedgeIds.size());
    summary.loops.push_back(std::move(loop));
    return summary.loops.back().id;
  }

  void FillCoedge(const TopoDS_Edge& edge, ReplayCoedgeRecord& coedge)
  {
    coedge.edgeId = ReplayIdIndex::IdIn(index.edges, edge);
    coedge.orientation = edge.Orientation() != TopAbs_REVERSED;
    coedge.hasCurve3d = HasCurve3d(edge);
    FillEnds(edge, coedge);
  }

  template <typename Record>
  void FillEnds(const TopoDS_Edge& edge, Record& record)
  {
    TopoDS_Vertex first;
    TopoDS_Vertex last;
    TopExp::Vertices(edge, first, last, false);
    record.startVertexId = ReplayIdIndex::IdIn(index.vertices, first);
    record.endVertexId = ReplayIdIndex::IdIn(index.vertices, last);
  }

  void FillShell(const TopoDS_Shape& shape, ReplayShellRecord& shell)
  {
    shell.isClosed = shape.Closed();
    shell.faceIds = IdsIn(shape, TopAbs_FACE, index.faces);
  }

  void FillSolid(const TopoDS_Shape& shape, ReplaySolidRecord& solid)
  {
    solid.shellIds = IdsIn(shape, TopAbs_SHELL, index.shells);
  }

  // As often as the shape uses them.
  static std::vector<ReplayId> IdsIn(const TopoDS_Shape& shape, TopAbs_ShapeEnum type,
                                     const TopTools_IndexedMapOfShape& map)
  {
    std::vector<ReplayId> ids;
    for (TopExp_Explorer parts(shape, type); parts.More(); parts.Next())
      ids.push_back(ReplayIdIndex::IdIn(map, parts.Current()));
    return ids;
  }

  const ReplayIdIndex index;
  ReplayIRSummary summary;
};

} // namespace

ReplayIRSummary StepReplayIRBuilder::BuildSummary(const std::vector<TopoDS_Shape>& shapes,
                                                  const std::string& sourceName) const
{
  ReplayIRSummary summary = SummaryBuild(shapes).Run();
  summary.sourceName = sourceName;
  return summary;
}

ReplayIRSummary StepReplayIRBuilder::BuildSummary(const TopoDS_Shape& shape,
                                                  const std::string& sourceName) const
{
  return BuildSummary(RootsOf(shape), sourceName);
}

} // namespace Orvex
