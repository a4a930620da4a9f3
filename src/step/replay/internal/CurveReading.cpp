#include "step/replay/internal/CurveReading.h"

#include "step/replay/internal/GeometryKinds.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_BezierCurve.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_Surface.hxx>
#include <gp_Circ.hxx>
#include <gp_Circ2d.hxx>
#include <gp_Elips.hxx>
#include <gp_Elips2d.hxx>

namespace Orvex {

namespace {

template <typename Spline, typename Payload>
void ReadPoles(const Spline& spline, Payload& payload)
{
  payload.degree = spline.Degree();
  const int count = spline.NbPoles();
  payload.controlPoints.reserve(static_cast<std::size_t>(count));
  for (int i = 1; i <= count; ++i)
    payload.controlPoints.push_back(PointOf(spline.Pole(i)));
  if (!spline.IsRational())
    return;
  payload.weights.reserve(static_cast<std::size_t>(count));
  for (int i = 1; i <= count; ++i)
    payload.weights.push_back(spline.Weight(i));
}

template <typename Spline, typename Payload>
void ReadKnots(const Spline& spline, Payload& payload)
{
  const int count = spline.NbKnots();
  payload.knots.reserve(static_cast<std::size_t>(count));
  payload.multiplicities.reserve(static_cast<std::size_t>(count));
  for (int i = 1; i <= count; ++i) {
    payload.knots.push_back(spline.Knot(i));
    payload.multiplicities.push_back(spline.Multiplicity(i));
  }
}

void AppendShape(std::vector<double>& values, const gp_Circ& circle)
{
  AppendFrameTo(values, circle.Position());
  values.push_back(circle.Radius());
}

void AppendShape(std::vector<double>& values, const gp_Elips& ellipse)
{
  AppendFrameTo(values, ellipse.Position());
  values.insert(values.end(), {ellipse.MajorRadius(), ellipse.MinorRadius()});
}

void AppendShape(std::vector<double>& values, const gp_Circ2d& circle)
{
  AppendTo(values, circle.Location());
  AppendTo(values, circle.XAxis().Direction());
  values.push_back(circle.Radius());
}

void AppendShape(std::vector<double>& values, const gp_Elips2d& ellipse)
{
  AppendTo(values, ellipse.Location());
  AppendTo(values, ellipse.XAxis().Direction());
  values.insert(values.end(), {ellipse.MajorRadius(), ellipse.MinorRadius()});
}

template <typename Adaptor, typename Payload>
void ReadLine(const Adaptor& curve, Payload& payload)
{
  payload.analyticParameters.reserve(6);
  AppendTo(payload.analyticParameters, curve.Value(payload.firstParameter));
  AppendTo(payload.analyticParameters, curve.Value(payload.lastParameter));
}

template <typename Conic, typename Payload>
void ReadConic(const Conic& conic, Payload& payload)
{
  auto& values = payload.analyticParameters;
  values.reserve(13);
  AppendShape(values, conic);
  values.insert(values.end(), {payload.firstParameter, payload.lastParameter});
}

// The same for curves in space and in the plane.
template <typename Adaptor, typename Payload>
void Read(const Adaptor& curve, Payload& payload)
{
  payload.firstParameter = curve.FirstParameter();
  payload.lastParameter = curve.LastParameter();
  const ReplayCurveKind kind = KindOf(curve.GetType());
  payload.kind = ToString(kind);
  if (kind == kLineCurve)
    ReadLine(curve, payload);
  else if (kind == kCircleCurve)
    ReadConic(curve.Circle(), payload);
  else if (kind == kEllipseCurve)
    ReadConic(curve.Ellipse(), payload);
  else if (kind == kBezierCurve)
    ReadPoles(*curve.Bezier(), payload);
  else if (kind == kBSplineCurve) {
    const auto spline = curve.BSpline();
    ReadPoles(*spline, payload);
    ReadKnots(*spline, payload);
  }
}

bool Read(const Handle(Geom2d_Curve) & pcurve, double first, double last,
          ReplayPcurvePayload& payload)
{
  if (pcurve.IsNull())
    return false;
  Read(Geom2dAdaptor_Curve(pcurve, first, last), payload);
  return true;
}

} // namespace

void AppendFrameTo(std::vector<double>& values, const gp_Ax3& frame)
{
  AppendTo(values, frame.Location());
  AppendTo(values, frame.Direction());
  AppendTo(values, frame.XDirection());
}

void ReadCurve(const Adaptor3d_Curve& curve, ReplayCurvePayload& payload)
{
  Read(curve, payload);
}

void ReadCurve(const TopoDS_Edge& edge, ReplayCurvePayload& payload)
{
  Read(BRepAdaptor_Curve(edge), payload);
}

bool ReadPcurve(const TopoDS_Edge& edge, const TopoDS_Face& face, ReplayPcurvePayload& payload)
{
  double first = 0;
  double last = 0;
  const auto pcurve = BRep_Tool::CurveOnSurface(edge, face, first, last);
  return Read(pcurve, first, last, payload);
}

bool ReadSecondaryPcurve(const TopoDS_Edge& edge, ReplayPcurvePayload& payload)
{
  Handle(Geom2d_Curve) pcurve;
  Handle(Geom_Surface) surface;
  TopLoc_Location location;
  double first = 0;
  double last = 0;
  BRep_Tool::CurveOnSurface(edge, pcurve, surface, location, first, last, 2);
  return Read(pcurve, first, last, payload);
}

} // namespace Orvex
