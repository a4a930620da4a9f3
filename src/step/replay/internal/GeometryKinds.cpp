#include "step/replay/internal/GeometryKinds.h"

namespace Orvex {

namespace {

struct CurveRow
{
  GeomAbs_CurveType type;
  ReplayCurveKind kind;
};
constexpr CurveRow kCurves[] = {
  {GeomAbs_Line, kLineCurve},
  {GeomAbs_Circle, kCircleCurve},
  {GeomAbs_Ellipse, kEllipseCurve},
  {GeomAbs_Hyperbola, kHyperbolaCurve},
  {GeomAbs_Parabola, kParabolaCurve},
  {GeomAbs_BezierCurve, kBezierCurve},
  {GeomAbs_BSplineCurve, kBSplineCurve},
  {GeomAbs_OffsetCurve, kOffsetCurve},
};

struct SurfaceRow
{
  GeomAbs_SurfaceType type;
  ReplaySurfaceKind kind;
  const char* payloadText;
};
constexpr SurfaceRow kOther = {GeomAbs_OtherSurface, kOtherSurface, "other_surface"};
constexpr SurfaceRow kSurfaces[] = {
  {GeomAbs_Plane, kPlaneSurface, "plane"},
  {GeomAbs_Cylinder, kCylinderSurface, "cylinder_surface"},
  {GeomAbs_Cone, kConeSurface, "cone_surface"},
  {GeomAbs_Sphere, kSphereSurface, "sphere"},
  {GeomAbs_Torus, kTorusSurface, "torus_surface"},
  {GeomAbs_BezierSurface, kBezierSurface, "bezier_surface"},
  {GeomAbs_BSplineSurface, kBSplineSurface, "b_spline_surface"},
  {GeomAbs_SurfaceOfRevolution, kRevolutionSurface, "surface_of_revolution"},
  {GeomAbs_SurfaceOfExtrusion, kExtrusionSurface, "surface_of_extrusion"},
  {GeomAbs_OffsetSurface, kOffsetSurface, "other_surface"},
};

const SurfaceRow& RowOf(GeomAbs_SurfaceType type)
{
  for (const SurfaceRow& row : kSurfaces)
    if (row.type == type)
      return row;
  return kOther;
}

} // namespace

ReplayCurveKind KindOf(GeomAbs_CurveType type)
{
  for (const CurveRow& row : kCurves)
    if (row.type == type)
      return row.kind;
  return kOtherCurve;
}

ReplaySurfaceKind KindOf(GeomAbs_SurfaceType type)
{
  return RowOf(type).kind;
}

const char* PayloadTextOf(GeomAbs_SurfaceType type)
{
  return RowOf(type).payloadText;
}

} // namespace Orvex
