#include "step/rebuild/internal/PrimitiveRebuild.h"

#include "step/rebuild/internal/PayloadGeometry.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <gp_Ax2.hxx>

#include <array>
#include <cmath>
#include <map>

namespace Orvex {

namespace {

// The ends of the edges that meet at the first corner.
std::vector<gp_Vec> EdgesAtFirstCorner(const std::vector<ReplayFacePayload>& faces, gp_Pnt& corner)
{
  std::map<ReplayId, gp_Vec> edges;
  ReplayId first = 0;
  for (const ReplayFacePayload& face : faces)
    for (const ReplayLoopPayload& loop : face.trim.loops)
      for (const ReplayCoedgePayload& coedge : loop.coedges) {
        const gp_Pnt start = PlaceOf(coedge.startVertexPoint);
        const gp_Pnt end = PlaceOf(coedge.endVertexPoint);
        if (first == 0) {
          first = coedge.startVertexId;
          corner = start;
        }
        if (coedge.startVertexId == first)
          edges[coedge.edgeId] = gp_Vec(corner, end);
        else if (coedge.endVertexId == first)
          edges[coedge.edgeId] = gp_Vec(corner, start);
      }
  std::vector<gp_Vec> ways;
  for (const auto& [id, way] : edges)
    ways.push_back(way);
  return ways;
}

TopoDS_Solid BoxOf(const std::vector<ReplayFacePayload>& faces, std::string& failure)
{
  constexpr double kSquare = 1e-4;
  gp_Pnt corner;
  std::vector<gp_Vec> ways = EdgesAtFirstCorner(faces, corner);
  const auto meetsSquare = [&](std::size_t one, std::size_t other) {
    return std::abs(ways[one].Dot(ways[other])) <=
           kSquare * ways[one].Magnitude() * ways[other].Magnitude();
  };
  if (ways.size() != 3 || !meetsSquare(0, 1) || !meetsSquare(1, 2) || !meetsSquare(2, 0)) {
    failure = "its edges do not meet at right angles";
    return {};
  }
  if (ways[0].Crossed(ways[1]).Dot(ways[2]) < 0)
    std::swap(ways[0], ways[1]);
  const gp_Ax2 frame(corner, gp_Dir(ways[2]), gp_Dir(ways[0]));
  return BRepPrimAPI_MakeBox(frame, ways[0].Magnitude(), ways[1].Magnitude(), ways[2].Magnitude())
    .Solid();
}

gp_Ax2 FrameAt(const std::vector<double>& values, double along)
{
  const gp_Dir axis(values[3], values[4], values[5]);
  const gp_Pnt place(values[0], values[1], values[2]);
  return gp_Ax2(place.Translated(gp_Vec(axis) * along), axis,
                gp_Dir(values[6], values[7], values[8]));
}

TopoDS_Solid CylinderOf(const ReplaySurfacePayload& surface)
{
  const std::vector<double>& values = surface.analyticParameters;
  return BRepPrimAPI_MakeCylinder(FrameAt(values, surface.vMin), values[9],
                                  surface.vMax - surface.vMin)
    .Solid();
}

// A radius this much smaller than the other one is the tip.
double Tipped(double radius, double other)
{
  constexpr double kTip = 1e-5;
  return std::abs(radius) < kTip * std::abs(other) ? 0 : radius;
}

TopoDS_Solid ConeOf(const ReplaySurfacePayload& surface)
{
  const std::vector<double>& values = surface.analyticParameters;
  const double slope = values[10];
  const double low = values[9] + surface.vMin * std::sin(slope);
  const double high = values[9] + surface.vMax * std::sin(slope);
  return BRepPrimAPI_MakeCone(FrameAt(values, surface.vMin * std::cos(slope)), Tipped(low, high),
                              Tipped(high, low), (surface.vMax - surface.vMin) * std::cos(slope))
    .Solid();
}

TopoDS_Solid SphereOf(const ReplaySurfacePayload& surface)
{
  const std::vector<double>& values = surface.analyticParameters;
  return BRepPrimAPI_MakeSphere(FrameAt(values, 0), values[9]).Solid();
}

TopoDS_Solid TorusOf(const ReplaySurfacePayload& surface)
{
  const std::vector<double>& values = surface.analyticParameters;
  return BRepPrimAPI_MakeTorus(FrameAt(values, 0), values[9], values[10]).Solid();
}

struct RoundRow
{
  const char* strategy;
  const char* surface;
  std::size_t numbers;
  TopoDS_Solid (*make)(const ReplaySurfacePayload&);
};

constexpr RoundRow kRound[] = {
  {"primitive_cylinder", "cylinder_surface", 10, CylinderOf},
  {"primitive_cone", "cone_surface", 11, ConeOf},
  {"primitive_sphere", "sphere", 10, SphereOf},
  {"primitive_torus", "torus_surface", 11, TorusOf},
};

} // namespace

TopoDS_Solid PrimitiveOf(const std::string& kind, const std::vector<ReplayFacePayload>& faces,
                         std::string& failure)
{
  if (kind == "primitive_box")
    return BoxOf(faces, failure);
  for (const RoundRow& row : kRound) {
    if (kind != row.strategy)
      continue;
    for (const ReplayFacePayload& face : faces)
      if (face.surface.kind == row.surface && face.surface.analyticParameters.size() == row.numbers)
        return row.make(face.surface);
    failure = std::string("none of its faces is a ").append(row.surface);
    return {};
  }
  failure = std::string("\"").append(kind).append("\" is no primitive");
  return {};
}

} // namespace Orvex
