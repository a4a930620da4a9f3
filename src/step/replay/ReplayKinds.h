// Kinds of curves and surfaces in replay records, with the texts that documents carry.
#pragma once

#include "foundation/Export.h"

namespace Orvex {

enum ReplayCurveKind : int {
  kUnknownCurve = 0,
  kLineCurve = 1,
  kCircleCurve = 2,
  kEllipseCurve = 3,
  kHyperbolaCurve = 4,
  kParabolaCurve = 5,
  kBezierCurve = 6,
  kBSplineCurve = 7,
  kOffsetCurve = 8,
  kOtherCurve = 9
};

enum ReplaySurfaceKind : int {
  kUnknownSurface = 0,
  kPlaneSurface = 1,
  kCylinderSurface = 2,
  kConeSurface = 3,
  kSphereSurface = 4,
  kTorusSurface = 5,
  kBezierSurface = 6,
  kBSplineSurface = 7,
  kRevolutionSurface = 8,
  kExtrusionSurface = 9,
  kOffsetSurface = 10,
  kOtherSurface = 11
};

// "line", "circle", ...; "unknown_curve" and "unknown_surface" for any other value.
ORVEX_API const char* ToString(ReplayCurveKind kind);
ORVEX_API const char* ToString(ReplaySurfaceKind kind);

} // namespace Orvex
