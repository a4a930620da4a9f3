// Curves in space and on surfaces, from the kernel into their records.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <Adaptor3d_Curve.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pnt2d.hxx>

namespace Orvex {

inline ReplayPoint PointOf(const gp_Pnt& point)
{
  return {point.X(), point.Y(), point.Z()};
}

inline ReplayUv PointOf(const gp_Pnt2d& point)
{
  return {point.X(), point.Y()};
}

// The two or three coordinates of a point or direction.
template <typename Place>
void AppendTo(std::vector<double>& values, const Place& place)
{
  values.insert(values.end(), {place.X(), place.Y()});
  if constexpr (requires { place.Z(); })
    values.push_back(place.Z());
}

// Location, axis and X direction.
void AppendFrameTo(std::vector<double>& values, const gp_Ax3& frame);

// Fills all but the id.
// Errors: the kernel's exceptions, also for an edge without any curve.
void ReadCurve(const Adaptor3d_Curve& curve, ReplayCurvePayload& payload);
void ReadCurve(const TopoDS_Edge& edge, ReplayCurvePayload& payload);

// Returns: false where the edge has no curve on the face, or no second curve on any surface.
// Errors: the kernel's exceptions.
bool ReadPcurve(const TopoDS_Edge& edge, const TopoDS_Face& face, ReplayPcurvePayload& payload);
bool ReadSecondaryPcurve(const TopoDS_Edge& edge, ReplayPcurvePayload& payload);

} // namespace Orvex
