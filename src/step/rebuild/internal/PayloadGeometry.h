// Curves and surfaces of the kernel from their payloads.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <Geom2d_Curve.hxx>
#include <Geom_Curve.hxx>
#include <Geom_Surface.hxx>
#include <gp_Pnt.hxx>

namespace Orvex {

inline gp_Pnt PlaceOf(const ReplayPoint& point)
{
  return gp_Pnt(point.x, point.y, point.z);
}

inline gp_Pnt2d PlaceOf(const ReplayUv& uv)
{
  return gp_Pnt2d(uv.u, uv.v);
}

// Null for a kind whose payload holds no geometry ("other_curve", "hyperbola", ...), and for one
// whose numbers do not make up what its kind says.
// Errors: the kernel's exceptions, also for degrees, knots and poles that do not fit.
Handle(Geom_Curve) CurveOf(const ReplayCurvePayload& payload);
// A conic turns counter-clockwise unless it is told otherwise: its payload does not say.
Handle(Geom2d_Curve) CurveOf(const ReplayPcurvePayload& payload, bool clockwise = false);

// The same, of the whole surface. `mirrored` takes the left-handed frame, which the payload of an
// analytic surface does not tell from the right-handed one.
Handle(Geom_Surface) SurfaceOf(const ReplaySurfacePayload& payload, bool mirrored = false);

// Whether a left-handed frame would give another surface.
bool CanBeMirrored(const ReplaySurfacePayload& payload);

} // namespace Orvex
