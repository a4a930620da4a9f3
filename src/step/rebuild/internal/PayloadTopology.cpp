#include "step/rebuild/internal/PayloadTopology.h"

#include "step/rebuild/internal/PayloadGeometry.h"

#include <BRepLib.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom_Plane.hxx>
#include <Precision.hxx>
#include <ShapeFix_Edge.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <stdexcept>

namespace Orvex {

namespace {

const double kTolerance = Precision::Confusion();
// Parameters that differ by less than this part of their range differ by their rounding alone.
constexpr double kRounding = 2e-5;

// Its payload does not tell which way round it turns.
bool IsConic(const ReplayPcurvePayload& pcurve)
{
  return pcurve.kind == "circle" || pcurve.kind == "ellipse";
}

// Calls visit(place on the surface, place in space) along the curves of the loops that have both.
template <typename Visit>
void EachPlace(const ReplayFaceTrimPayload& trim, Visit&& visit)
{
  // Where a mirrored surface does not meet the curves by chance.
  constexpr double kPlaces[] = {0.13, 0.37, 0.61};
  for (const ReplayLoopPayload& loop : trim.loops)
    for (const ReplayCoedgePayload& coedge : loop.coedges) {
      const Handle(Geom_Curve) curve = CurveOf(coedge.curve3d);
      const Handle(Geom2d_Curve) pcurve = CurveOf(coedge.pcurve);
      if (coedge.isDegenerated || IsConic(coedge.pcurve) || curve.IsNull() || pcurve.IsNull())
        continue;
      for (const double place : kPlaces) {
        const auto valueAt = [&](const auto& along, const auto& payload) {
          return along->Value(payload.firstParameter +
                              place * (payload.lastParameter - payload.firstParameter));
        };
        visit(valueAt(pcurve, coedge.pcurve), valueAt(curve, coedge.curve3d));
      }
    }
}

double MissOf(const Handle(Geom_Surface) & surface, const ReplayFaceTrimPayload& trim)
{
  double miss = 0;
  EachPlace(trim, [&](const gp_Pnt2d& uv, const gp_Pnt& point) {
    miss += surface->Value(uv.X(), uv.Y()).Distance(point);
  });
  return miss;
}

// The plane whose axes bring the curves on it to where they are in space: its payload tells only
// where it lies. The angle of the axes is the one of least squares.
Handle(Geom_Surface)
  TurnedPlane(const gp_Pln& plane, const ReplayFaceTrimPayload& trim, bool mirrored)
{
  const double sense = mirrored ? -1 : 1;
  const gp_Ax3& given = plane.Position();
  double along = 0;
  double across = 0;
  EachPlace(trim, [&](const gp_Pnt2d& uv, const gp_Pnt& point) {
    const gp_Vec way(given.Location(), point);
    const double x = way.Dot(gp_Vec(given.XDirection()));
    const double y = way.Dot(gp_Vec(given.YDirection()));
    along += uv.X() * x + sense * uv.Y() * y;
    across += uv.X() * y - sense * uv.Y() * x;
  });
  gp_Ax3 axes = given.Rotated(given.Axis(), std::atan2(across, along));
  if (mirrored)
    axes.YReverse();
  return new Geom_Plane(axes);
}

// Lines and conics on a plane tell nothing that the edges in space do not; a spline may be another
// approximation of what both stand for.
bool HasSplinePcurve(const ReplayFaceTrimPayload& trim)
{
  return std::any_of(trim.loops.begin(), trim.loops.end(), [](const ReplayLoopPayload& loop) {
    return std::any_of(loop.coedges.begin(), loop.coedges.end(),
                       [](const ReplayCoedgePayload& coedge) {
                         return coedge.hasPcurve && !coedge.pcurve.controlPoints.empty();
                       });
  });
}

// Twice the area that the loop encloses, as a vector across it: Newell's sum over places along its
// edges.
gp_Vec DoubleAreaOf(const ReplayLoopPayload& loop)
{
  constexpr int kPieces = 8;
  std::vector<gp_Pnt> places;
  for (const ReplayCoedgePayload& coedge : loop.coedges) {
    const Handle(Geom_Curve) curve = CurveOf(coedge.curve3d);
    for (int piece = 0; piece < kPieces && !curve.IsNull(); ++piece) {
      const double part = double(coedge.orientation ? piece : kPieces - piece) / kPieces;
      places.push_back(
        curve->Value(coedge.curve3d.firstParameter +
                     part * (coedge.curve3d.lastParameter - coedge.curve3d.firstParameter)));
    }
  }
  gp_Vec sum;
  for (std::size_t at = 0; at + 2 < places.size(); ++at)
    sum += gp_Vec(places[0], places[at + 1]).Crossed(gp_Vec(places[0], places[at + 2]));
  return sum;
}

// On a plane the loop around the largest area: the flag of the payload comes from boxes, which lie
// too wide around the poles of splines.
const ReplayLoopPayload* OuterLoopOf(const ReplayFacePayload& payload)
{
  const std::vector<ReplayLoopPayload>& loops = payload.trim.loops;
  const auto best =
    payload.surface.kind == "plane"
      ? std::max_element(loops.begin(), loops.end(),
                         [](const auto& one, const auto& other) {
                           return DoubleAreaOf(one).SquareMagnitude() <
                                  DoubleAreaOf(other).SquareMagnitude();
                         })
      : std::find_if(loops.begin(), loops.end(), [](const auto& loop) { return loop.isOuter; });
  return best == loops.end() ? nullptr : &*best;
}

// The axis of a plane with left-handed axes is not the side that it faces: its outer loop runs the
// other way round.
bool IsMirrored(const gp_Pln& plane, const ReplayFacePayload& payload)
{
  const ReplayLoopPayload* outer = OuterLoopOf(payload);
  if (outer == nullptr)
    return false;
  const double turn = DoubleAreaOf(*outer).Dot(gp_Vec(plane.Axis().Direction()));
  return payload.trim.sameSense ? turn < 0 : turn > 0;
}

struct Support
{
  Handle(Geom_Surface) surface;
  // Whether the payload's curves on the surface belong to it.
  bool hasPcurves = true;
};

// How far the loops reach, summed like their misses.
double ReachOf(const ReplayFaceTrimPayload& trim)
{
  std::optional<gp_Pnt> first;
  double reach = 0;
  EachPlace(trim, [&](const gp_Pnt2d&, const gp_Pnt& point) {
    first = first.value_or(point);
    reach += first->Distance(point);
  });
  return reach;
}

// The other surface only where it clearly fits better: to loops that are all in line, either does.
Handle(Geom_Surface) Fitting(const ReplayFaceTrimPayload& trim, const Handle(Geom_Surface) & one,
                             const Handle(Geom_Surface) & other)
{
  constexpr double kClearly = 1e-3;
  return MissOf(other, trim) + kClearly * ReachOf(trim) < MissOf(one, trim) ? other : one;
}

// The kernel loops for ever over numbers that are none, or far too large.
void RefuseUnsound(const std::vector<double>& numbers)
{
  constexpr double kFar = 1e10;
  for (const double number : numbers)
    if (!(std::abs(number) <= kFar))
      throw std::invalid_argument("its payload holds a number beyond all sizes");
}

template <typename Curve>
void RefuseUnsoundCurve(const Curve& curve)
{
  RefuseUnsound({curve.firstParameter, curve.lastParameter});
  RefuseUnsound(curve.analyticParameters);
  RefuseUnsound(curve.knots);
  RefuseUnsound(curve.weights);
}

void RefuseUnsound(const ReplayFacePayload& payload)
{
  const ReplaySurfacePayload& surface = payload.surface;
  for (const auto& numbers :
       {surface.analyticParameters, surface.uKnots, surface.vKnots, surface.weights})
    RefuseUnsound(numbers);
  for (const ReplayPoint& point : surface.controlPoints)
    RefuseUnsound({point.x, point.y, point.z});
  RefuseUnsoundCurve(surface.basisCurve);
  for (const ReplayLoopPayload& loop : payload.trim.loops)
    for (const ReplayCoedgePayload& coedge : loop.coedges) {
      RefuseUnsoundCurve(coedge.curve3d);
      RefuseUnsoundCurve(coedge.pcurve);
      for (const ReplayPoint& point : coedge.curve3d.controlPoints)
        RefuseUnsound({point.x, point.y, point.z});
      for (const ReplayPoint& point : {coedge.startVertexPoint, coedge.endVertexPoint})
        RefuseUnsound({point.x, point.y, point.z});
    }
}

Support SupportOf(const ReplayFacePayload& payload)
{
  const Handle(Geom_Surface) surface = SurfaceOf(payload.surface);
  if (surface.IsNull())
    throw std::invalid_argument(std::string("the payload of its surface, of kind \"")
                                  .append(payload.surface.kind)
                                  .append("\", holds no geometry"));
  if (CanBeMirrored(payload.surface))
    return {Fitting(payload.trim, surface, SurfaceOf(payload.surface, true))};
  const Handle(Geom_Plane) plane = Handle(Geom_Plane)::DownCast(surface);
  if (plane.IsNull())
    return {surface};
  const bool mirrored = IsMirrored(plane->Pln(), payload);
  if (HasSplinePcurve(payload.trim))
    return {TurnedPlane(plane->Pln(), payload.trim, mirrored)};
  return {mirrored ? new Geom_Plane(plane->Location(), plane->Axis().Direction().Reversed())
                   : Handle(Geom_Surface)(surface),
          false};
}

struct Range
{
  double first;
  double last;
};

// The range that the curve really has: rounding may have left its ends a little outside, or a full
// turn a little off.
template <typename Curve>
Range RangeOf(const opencascade::handle<Curve>& curve, double first, double last)
{
  if (!curve->IsPeriodic())
    return {std::max(first, curve->FirstParameter()), std::min(last, curve->LastParameter())};
  const bool isFullTurn = last - first > curve->Period() * (1 - kRounding);
  return {first, isFullTurn ? first + curve->Period() : last};
}

TopoDS_Edge BareEdge(const ReplayCoedgePayload& coedge)
{
  const BRep_Builder builder;
  TopoDS_Edge edge;
  const Handle(Geom_Curve) curve =
    coedge.hasCurve3d && !coedge.isDegenerated ? CurveOf(coedge.curve3d) : Handle(Geom_Curve)();
  if (curve.IsNull()) {
    builder.MakeEdge(edge);
    builder.Degenerated(edge, coedge.isDegenerated);
    return edge;
  }
  builder.MakeEdge(edge, curve, kTolerance);
  const Range range = RangeOf(curve, coedge.curve3d.firstParameter, coedge.curve3d.lastParameter);
  if (range.first < range.last)
    builder.Range(edge, range.first, range.last);
  return edge;
}

// A conic is taken the way round that follows the edge.
Handle(Geom2d_Curve) FittingPcurveOf(const ReplayPcurvePayload& payload, const TopoDS_Edge& edge,
                                     const Handle(Geom_Surface) & surface)
{
  const Handle(Geom2d_Curve) pcurve = CurveOf(payload);
  double first = 0;
  double last = 0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (pcurve.IsNull() || curve.IsNull() || !IsConic(payload))
    return pcurve;
  // Not halfway: a full turn is there at the same time either way round.
  const double place =
    payload.firstParameter + 0.37 * (payload.lastParameter - payload.firstParameter);
  const auto miss = [&](const Handle(Geom2d_Curve) & tried) {
    const gp_Pnt2d uv = tried->Value(place);
    return surface->Value(uv.X(), uv.Y()).SquareDistance(curve->Value(place));
  };
  const Handle(Geom2d_Curve) clockwise = CurveOf(payload, true);
  return miss(clockwise) < miss(pcurve) ? clockwise : pcurve;
}

// The coedges of one edge on one face: two of a seam, by the sense that they have on the face
// taken forward.
struct Uses
{
  const ReplayCoedgePayload* forward = nullptr;
  const ReplayCoedgePayload* reversed = nullptr;
};

void SetPcurves(const TopoDS_Edge& edge, const Uses& uses, const Handle(Geom_Surface) & surface)
{
  const BRep_Builder builder;
  const TopLoc_Location nowhere;
  const auto pcurveOf = [&](const ReplayCoedgePayload* coedge) {
    return coedge != nullptr && coedge->hasPcurve ? FittingPcurveOf(coedge->pcurve, edge, surface)
                                                  : Handle(Geom2d_Curve)();
  };
  const Handle(Geom2d_Curve) forward = pcurveOf(uses.forward);
  const Handle(Geom2d_Curve) reversed = pcurveOf(uses.reversed);
  const ReplayPcurvePayload& told =
    uses.forward != nullptr ? uses.forward->pcurve : uses.reversed->pcurve;
  if (!forward.IsNull() && !reversed.IsNull())
    builder.UpdateEdge(edge, forward, reversed, surface, nowhere, kTolerance);
  else if (!forward.IsNull() || !reversed.IsNull())
    builder.UpdateEdge(edge, forward.IsNull() ? reversed : forward, surface, nowhere, kTolerance);
  else
    return;
  const Range range =
    RangeOf(forward.IsNull() ? reversed : forward, told.firstParameter, told.lastParameter);
  if (BRep_Tool::Degenerated(edge)) {
    builder.Range(edge, surface, nowhere, range.first, range.last);
    return;
  }
  double first = 0;
  double last = 0;
  BRep_Tool::Range(edge, first, last);
  const double near = kRounding * (last - first);
  if (std::abs(range.first - first) > near || std::abs(range.last - last) > near) {
    builder.Range(edge, surface, nowhere, range.first, range.last);
    builder.SameRange(edge, false);
  }
  builder.SameParameter(edge, false);
}

bool IsPlane(const TopoDS_Face& face)
{
  return BRep_Tool::Surface(face)->IsKind(STANDARD_TYPE(Geom_Plane));
}

// The kernel takes an edge without a curve on a plane for one in the plane, within its tolerance.
void CoverMiss(const TopoDS_Edge& edge, const TopoDS_Face& face)
{
  constexpr int kPlaces = 16;
  constexpr double kMargin = 1.1;
  const Handle(Geom_Plane) plane = Handle(Geom_Plane)::DownCast(BRep_Tool::Surface(face));
  double first = 0;
  double last = 0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (plane.IsNull() || curve.IsNull())
    return;
  double miss = 0;
  for (int at = 0; at <= kPlaces; ++at)
    miss =
      std::max(miss, plane->Pln().Distance(curve->Value(first + (last - first) * at / kPlaces)));
  BRep_Builder().UpdateEdge(edge, kMargin * miss);
}

} // namespace

PayloadTopology::PayloadTopology(const std::vector<ReplayFacePayload>& payloads)
{
  std::set<ReplayId> seen;
  for (const ReplayFacePayload& payload : payloads) {
    if (!seen.insert(payload.faceId).second)
      continue;
    BuiltFace& built = faces.emplace_back();
    built.id = payload.faceId;
    try {
      MakeFace(payload, built);
    } catch (const Standard_Failure& failure) {
      built = {payload.faceId, {}, {}, failure.GetMessageString()};
    } catch (const std::invalid_argument& refusal) {
      built = {payload.faceId, {}, {}, refusal.what()};
    }
  }
  // Whatever completes an edge may set its tolerance anew, so they are covered last.
  for (const auto step : {&PayloadTopology::Complete, &PayloadTopology::CoverEdges})
    for (const BuiltFace& built : faces)
      if (!built.face.IsNull())
        (this->*step)(built.face);
}

TopoDS_Edge PayloadTopology::Edge(ReplayId id) const
{
  const auto found = edges.find(id);
  return found == edges.end() ? TopoDS_Edge() : found->second;
}

void PayloadTopology::MakeFace(const ReplayFacePayload& payload, BuiltFace& built)
{
  RefuseUnsound(payload);
  const Support support = SupportOf(payload);
  const BRep_Builder builder;
  builder.MakeFace(built.face, support.surface, kTolerance);
  const ReplayLoopPayload* outer = OuterLoopOf(payload);
  std::map<ReplayId, Uses> uses;
  for (const ReplayLoopPayload& loop : payload.trim.loops) {
    const TopoDS_Wire wire = LoopOf(loop, payload.trim.sameSense);
    builder.Add(built.face, wire);
    if (&loop != outer)
      built.innerLoops.push_back(wire);
    for (const ReplayCoedgePayload& coedge : loop.coedges) {
      Uses& use = uses[coedge.edgeId];
      (coedge.orientation == payload.trim.sameSense ? use.forward : use.reversed) = &coedge;
    }
  }
  if (support.hasPcurves)
    for (const auto& [id, use] : uses)
      SetPcurves(edges.at(id), use, support.surface);
  if (!payload.trim.sameSense)
    built.face.Orientation(TopAbs_REVERSED);
}

TopoDS_Wire PayloadTopology::LoopOf(const ReplayLoopPayload& loop, bool sameSense)
{
  const BRep_Builder builder;
  TopoDS_Wire wire;
  builder.MakeWire(wire);
  for (const ReplayCoedgePayload& coedge : loop.coedges) {
    const bool forward = coedge.orientation == sameSense;
    builder.Add(wire, EdgeOf(coedge).Oriented(forward ? TopAbs_FORWARD : TopAbs_REVERSED));
  }
  wire.Closed(BRep_Tool::IsClosed(wire));
  return wire;
}

TopoDS_Edge PayloadTopology::EdgeOf(const ReplayCoedgePayload& coedge)
{
  const auto [place, isNew] = edges.try_emplace(coedge.edgeId);
  TopoDS_Edge& edge = place->second;
  if (!isNew)
    return edge;
  edge = BareEdge(coedge);
  const BRep_Builder builder;
  const TopoDS_Vertex start =
    VertexOf(coedge.startVertexId, coedge.hasStartVertexPoint, coedge.startVertexPoint);
  const TopoDS_Vertex end =
    VertexOf(coedge.endVertexId, coedge.hasEndVertexPoint, coedge.endVertexPoint);
  if (!start.IsNull())
    builder.Add(edge, start.Oriented(TopAbs_FORWARD));
  if (!end.IsNull())
    builder.Add(edge, end.Oriented(TopAbs_REVERSED));
  return edge;
}

TopoDS_Vertex PayloadTopology::VertexOf(ReplayId id, bool hasPoint, const ReplayPoint& point)
{
  if (!hasPoint)
    return {};
  const auto [place, isNew] = vertices.try_emplace(id);
  if (isNew)
    BRep_Builder().MakeVertex(place->second, PlaceOf(point), kTolerance);
  return place->second;
}

// Gives edges what their payloads left out.
void PayloadTopology::Complete(const TopoDS_Face& face)
{
  ShapeFix_Edge repair;
  for (TopExp_Explorer at(face.Oriented(TopAbs_FORWARD), TopAbs_EDGE); at.More(); at.Next()) {
    const TopoDS_Edge edge = TopoDS::Edge(at.Current());
    const bool bent = !BRep_Tool::Degenerated(edge);
    double first = 0;
    double last = 0;
    if (bent && BRep_Tool::Curve(edge, first, last).IsNull())
      BRepLib::BuildCurve3d(edge, kTolerance);
    if (!IsPlane(face) && BRep_Tool::CurveOnSurface(edge, face, first, last).IsNull())
      repair.FixAddPCurve(edge, face, false, kTolerance);
    if (bent && !BRep_Tool::SameParameter(edge)) {
      BRepLib::SameRange(edge, kTolerance);
      repair.FixSameParameter(edge);
    }
  }
}

// Tolerances that hold what has to meet there.
void PayloadTopology::CoverEdges(const TopoDS_Face& face)
{
  ShapeFix_Edge repair;
  for (TopExp_Explorer at(face.Oriented(TopAbs_FORWARD), TopAbs_EDGE); at.More(); at.Next()) {
    const TopoDS_Edge edge = TopoDS::Edge(at.Current());
    if (!BRep_Tool::Degenerated(edge))
      CoverMiss(edge, face);
    repair.FixVertexTolerance(edge, face);
    repair.FixVertexTolerance(edge);
  }
}

} // namespace Orvex
