#include "step/rebuild/internal/PayloadGeometry.h"

#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_BezierCurve.hxx>
#include <Geom2d_Circle.hxx>
#include <Geom2d_Ellipse.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_BezierSurface.hxx>
#include <Geom_Circle.hxx>
#include <Geom_ConicalSurface.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <Geom_Ellipse.hxx>
#include <Geom_Line.hxx>
#include <Geom_Plane.hxx>
#include <Geom_SphericalSurface.hxx>
#include <Geom_SurfaceOfLinearExtrusion.hxx>
#include <Geom_SurfaceOfRevolution.hxx>
#include <Geom_ToroidalSurface.hxx>
#include <Precision.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <gp_Ax2.hxx>
#include <gp_Ax22d.hxx>
#include <gp_Ax3.hxx>

#include <numeric>

namespace Orvex {

namespace {

using Numbers = std::vector<double>;

gp_Pnt PointAt(const Numbers& values, std::size_t at)
{
  return gp_Pnt(values[at], values[at + 1], values[at + 2]);
}

gp_Dir DirectionAt(const Numbers& values, std::size_t at)
{
  return gp_Dir(values[at], values[at + 1], values[at + 2]);
}

gp_Pnt2d UvAt(const Numbers& values, std::size_t at)
{
  return gp_Pnt2d(values[at], values[at + 1]);
}

// Location, axis and X direction, which six digits leave a little off the right angle.
gp_Ax2 FrameOf(const Numbers& values)
{
  return gp_Ax2(PointAt(values, 0), DirectionAt(values, 3), DirectionAt(values, 6));
}

gp_Ax3 SurfaceFrameOf(const Numbers& values, bool mirrored)
{
  gp_Ax3 frame(FrameOf(values));
  if (mirrored)
    frame.YReverse();
  return frame;
}

gp_Ax22d UvFrameOf(const Numbers& values, bool clockwise)
{
  return gp_Ax22d(UvAt(values, 0), gp_Dir2d(values[2], values[3]), !clockwise);
}

TColStd_Array1OfReal ArrayOf(const Numbers& values)
{
  TColStd_Array1OfReal array(1, static_cast<int>(values.size()));
  std::copy(values.begin(), values.end(), array.begin());
  return array;
}

TColStd_Array1OfInteger ArrayOf(const std::vector<std::int32_t>& values)
{
  TColStd_Array1OfInteger array(1, static_cast<int>(values.size()));
  std::copy(values.begin(), values.end(), array.begin());
  return array;
}

template <typename Array, typename Point>
Array PolesOf(const std::vector<Point>& points)
{
  Array array(1, static_cast<int>(points.size()));
  for (std::size_t at = 0; at < points.size(); ++at)
    array.SetValue(static_cast<int>(at) + 1, PlaceOf(points[at]));
  return array;
}

// The payload does not say it: the multiplicities of an open spline are one more than its poles and
// its degree together.
bool IsPeriodic(const std::vector<std::int32_t>& multiplicities, std::size_t poles, int degree)
{
  const int sum = std::accumulate(multiplicities.begin(), multiplicities.end(), 0);
  return sum != static_cast<int>(poles) + degree + 1;
}

template <typename Curve, typename Spline, typename Bezier, typename Array, typename Payload>
opencascade::handle<Curve> SplineOf(const Payload& payload)
{
  const auto poles = PolesOf<Array>(payload.controlPoints);
  const bool rational = payload.weights.size() == payload.controlPoints.size();
  if (payload.kind == "bezier_curve")
    return rational ? new Bezier(poles, ArrayOf(payload.weights)) : new Bezier(poles);
  const auto knots = ArrayOf(payload.knots);
  const auto multiplicities = ArrayOf(payload.multiplicities);
  const bool periodic =
    IsPeriodic(payload.multiplicities, payload.controlPoints.size(), payload.degree);
  return rational ? new Spline(poles, ArrayOf(payload.weights), knots, multiplicities,
                               payload.degree, periodic)
                  : new Spline(poles, knots, multiplicities, payload.degree, periodic);
}

bool IsSpline(const std::string& kind, std::size_t poles)
{
  return (kind == "bezier_curve" || kind == "b_spline_curve") && poles >= 2;
}

// A straight line whose parameters at the two given points are those of the payload.
template <typename Line, typename Vector, typename Direction, typename Point>
opencascade::handle<Line> LineThrough(const Point& start, const Point& end, double first)
{
  const Vector way(start, end);
  if (way.Magnitude() < gp::Resolution())
    return {};
  return new Line(start.Translated(way.Normalized() * -first), Direction(way));
}

} // namespace

Handle(Geom_Curve) CurveOf(const ReplayCurvePayload& payload)
{
  const Numbers& values = payload.analyticParameters;
  if (payload.kind == "line" && values.size() == 6)
    return LineThrough<Geom_Line, gp_Vec, gp_Dir>(PointAt(values, 0), PointAt(values, 3),
                                                  payload.firstParameter);
  if (payload.kind == "circle" && values.size() == 12)
    return new Geom_Circle(FrameOf(values), values[9]);
  if (payload.kind == "ellipse" && values.size() == 13)
    return new Geom_Ellipse(FrameOf(values), values[9], values[10]);
  if (!IsSpline(payload.kind, payload.controlPoints.size()))
    return {};
  return SplineOf<Geom_Curve, Geom_BSplineCurve, Geom_BezierCurve, TColgp_Array1OfPnt>(payload);
}

Handle(Geom2d_Curve) CurveOf(const ReplayPcurvePayload& payload, bool clockwise)
{
  const Numbers& values = payload.analyticParameters;
  if (payload.kind == "line" && values.size() == 4)
    return LineThrough<Geom2d_Line, gp_Vec2d, gp_Dir2d>(UvAt(values, 0), UvAt(values, 2),
                                                        payload.firstParameter);
  if (payload.kind == "circle" && values.size() == 7)
    return new Geom2d_Circle(UvFrameOf(values, clockwise), values[4]);
  if (payload.kind == "ellipse" && values.size() == 8)
    return new Geom2d_Ellipse(UvFrameOf(values, clockwise), values[4], values[5]);
  if (!IsSpline(payload.kind, payload.controlPoints.size()))
    return {};
  return SplineOf<Geom2d_Curve, Geom2d_BSplineCurve, Geom2d_BezierCurve, TColgp_Array1OfPnt2d>(
    payload);
}

namespace {

// Of whole surfaces only: rows and columns that are not told leave nothing to build.
template <typename Array, typename ValueAt>
Array GridOf(const ReplaySurfacePayload& payload, ValueAt&& valueAt)
{
  Array grid(1, payload.poleRows, 1, payload.poleCols);
  std::size_t at = 0;
  for (int row = 1; row <= payload.poleRows; ++row)
    for (int column = 1; column <= payload.poleCols; ++column)
      grid.SetValue(row, column, valueAt(at++));
  return grid;
}

bool HasPoles(const ReplaySurfacePayload& payload)
{
  return payload.poleRows >= 2 && payload.poleCols >= 2 &&
         payload.controlPoints.size() ==
           static_cast<std::size_t>(payload.poleRows) * static_cast<std::size_t>(payload.poleCols);
}

Handle(Geom_Surface) SplineSurfaceOf(const ReplaySurfacePayload& payload)
{
  const auto poles = GridOf<TColgp_Array2OfPnt>(
    payload, [&](std::size_t at) { return PlaceOf(payload.controlPoints[at]); });
  if (payload.kind == "bezier_surface")
    return new Geom_BezierSurface(poles);
  const auto uKnots = ArrayOf(payload.uKnots);
  const auto vKnots = ArrayOf(payload.vKnots);
  const auto uTimes = ArrayOf(payload.uMultiplicities);
  const auto vTimes = ArrayOf(payload.vMultiplicities);
  const bool uPeriodic = IsPeriodic(payload.uMultiplicities,
                                    static_cast<std::size_t>(payload.poleRows), payload.degreeU);
  const bool vPeriodic = IsPeriodic(payload.vMultiplicities,
                                    static_cast<std::size_t>(payload.poleCols), payload.degreeV);
  if (payload.weights.size() != payload.controlPoints.size())
    return new Geom_BSplineSurface(poles, uKnots, vKnots, uTimes, vTimes, payload.degreeU,
                                   payload.degreeV, uPeriodic, vPeriodic);
  const auto weights =
    GridOf<TColStd_Array2OfReal>(payload, [&](std::size_t at) { return payload.weights[at]; });
  return new Geom_BSplineSurface(poles, weights, uKnots, vKnots, uTimes, vTimes, payload.degreeU,
                                 payload.degreeV, uPeriodic, vPeriodic);
}

Handle(Geom_Surface) SweptSurfaceOf(const ReplaySurfacePayload& payload)
{
  const Numbers& values = payload.analyticParameters;
  const Handle(Geom_Curve) basis =
    payload.hasBasisCurve ? CurveOf(payload.basisCurve) : Handle(Geom_Curve)();
  if (basis.IsNull())
    return {};
  if (payload.kind == "surface_of_extrusion" && values.size() == 3)
    return new Geom_SurfaceOfLinearExtrusion(basis, DirectionAt(values, 0));
  if (payload.kind == "surface_of_revolution" && values.size() == 6)
    return new Geom_SurfaceOfRevolution(basis, gp_Ax1(PointAt(values, 0), DirectionAt(values, 3)));
  return {};
}

Handle(Geom_Surface) QuadricOf(const ReplaySurfacePayload& payload, bool mirrored)
{
  const Numbers& values = payload.analyticParameters;
  if (payload.kind == "cylinder_surface" && values.size() == 10)
    return new Geom_CylindricalSurface(SurfaceFrameOf(values, mirrored), values[9]);
  if (payload.kind == "cone_surface" && values.size() == 11)
    return new Geom_ConicalSurface(SurfaceFrameOf(values, mirrored), values[10], values[9]);
  if (payload.kind == "sphere" && values.size() == 10)
    return new Geom_SphericalSurface(SurfaceFrameOf(values, mirrored), values[9]);
  if (payload.kind == "torus_surface" && values.size() == 11)
    return new Geom_ToroidalSurface(SurfaceFrameOf(values, mirrored), values[9], values[10]);
  return {};
}

} // namespace

Handle(Geom_Surface) SurfaceOf(const ReplaySurfacePayload& payload, bool mirrored)
{
  const Numbers& values = payload.analyticParameters;
  if (payload.kind == "plane" && values.size() == 6)
    return new Geom_Plane(PointAt(values, 0), DirectionAt(values, 3));
  if (CanBeMirrored(payload))
    return QuadricOf(payload, mirrored);
  return HasPoles(payload) ? SplineSurfaceOf(payload) : SweptSurfaceOf(payload);
}

bool CanBeMirrored(const ReplaySurfacePayload& payload)
{
  return payload.kind == "cylinder_surface" || payload.kind == "cone_surface" ||
         payload.kind == "sphere" || payload.kind == "torus_surface";
}

} // namespace Orvex
