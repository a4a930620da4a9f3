#include "step/replay/internal/SurfaceReading.h"

#include "step/replay/internal/CurveReading.h"
#include "step/replay/internal/GeometryKinds.h"
#include "step/replay/internal/KernelGuard.h"

#include <BRepAdaptor_Surface.hxx>
#include <GeomAdaptor_Curve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_BezierSurface.hxx>
#include <gp_Cone.hxx>
#include <gp_Cylinder.hxx>
#include <gp_Pln.hxx>
#include <gp_Sphere.hxx>
#include <gp_Torus.hxx>

#include <initializer_list>

namespace Orvex {

namespace {

template <typename Quadric>
void ReadQuadric(const Quadric& quadric, std::initializer_list<double> sizes,
                 ReplaySurfacePayload& payload)
{
  AppendFrameTo(payload.analyticParameters, quadric.Position());
  payload.analyticParameters.insert(payload.analyticParameters.end(), sizes);
}

void ReadPlane(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Pln plane = surface.Plane();
  AppendTo(payload.analyticParameters, plane.Location());
  AppendTo(payload.analyticParameters, plane.Axis().Direction());
}

void ReadCylinder(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Cylinder cylinder = surface.Cylinder();
  ReadQuadric(cylinder, {cylinder.Radius()}, payload);
}

void ReadCone(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Cone cone = surface.Cone();
  ReadQuadric(cone, {cone.RefRadius(), cone.SemiAngle()}, payload);
}

void ReadSphere(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Sphere sphere = surface.Sphere();
  ReadQuadric(sphere, {sphere.Radius()}, payload);
}

void ReadTorus(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Torus torus = surface.Torus();
  ReadQuadric(torus, {torus.MajorRadius(), torus.MinorRadius()}, payload);
}

// Calls visit(row, column) with U outside and V inside.
template <typename Visit>
void EachPole(const ReplaySurfacePayload& payload, Visit&& visit)
{
  for (int row = 1; row <= payload.poleRows; ++row)
    for (int column = 1; column <= payload.poleCols; ++column)
      visit(row, column);
}

template <typename Spline>
void ReadPoles(const Spline& spline, ReplaySurfacePayload& payload)
{
  payload.degreeU = spline.UDegree();
  payload.degreeV = spline.VDegree();
  payload.poleRows = spline.NbUPoles();
  payload.poleCols = spline.NbVPoles();
  payload.controlPoints.reserve(static_cast<std::size_t>(payload.poleRows) *
                                static_cast<std::size_t>(payload.poleCols));
  EachPole(payload, [&](int row, int column) {
    payload.controlPoints.push_back(PointOf(spline.Pole(row, column)));
  });
}

void ReadBezier(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  ReadPoles(*surface.Bezier(), payload);
}

void ReadBSpline(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const Handle(Geom_BSplineSurface) spline = surface.BSpline();
  ReadPoles(*spline, payload);
  for (int i = 1; i <= spline->NbUKnots(); ++i) {
    payload.uKnots.push_back(spline->UKnot(i));
    payload.uMultiplicities.push_back(spline->UMultiplicity(i));
  }
  for (int i = 1; i <= spline->NbVKnots(); ++i) {
    payload.vKnots.push_back(spline->VKnot(i));
    payload.vMultiplicities.push_back(spline->VMultiplicity(i));
  }
  if (!spline->IsURational() && !spline->IsVRational())
    return;
  payload.weights.reserve(payload.controlPoints.size());
  EachPole(payload,
           [&](int row, int column) { payload.weights.push_back(spline->Weight(row, column)); });
}

void ReadBasisCurve(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  payload.basisCurve.id = payload.id;
  payload.hasBasisCurve = SucceedsInKernel([&] {
    const auto basis = Handle(GeomAdaptor_Curve)::DownCast(surface.BasisCurve());
    if (basis.IsNull())
      return false;
    ReadCurve(*basis, payload.basisCurve);
    return true;
  });
  if (!payload.hasBasisCurve)
    payload.basisCurve = {};
}

void ReadRevolution(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  const gp_Ax1 axis = surface.AxeOfRevolution();
  AppendTo(payload.analyticParameters, axis.Location());
  AppendTo(payload.analyticParameters, axis.Direction());
  ReadBasisCurve(surface, payload);
}

void ReadExtrusion(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload)
{
  AppendTo(payload.analyticParameters, surface.Direction());
  ReadBasisCurve(surface, payload);
}

struct Row
{
  GeomAbs_SurfaceType type;
  void (*read)(const BRepAdaptor_Surface& surface, ReplaySurfacePayload& payload);
};
constexpr Row kRows[] = {
  {GeomAbs_Plane, ReadPlane},
  {GeomAbs_Cylinder, ReadCylinder},
  {GeomAbs_Cone, ReadCone},
  {GeomAbs_Sphere, ReadSphere},
  {GeomAbs_Torus, ReadTorus},
  {GeomAbs_BezierSurface, ReadBezier},
  {GeomAbs_BSplineSurface, ReadBSpline},
  {GeomAbs_SurfaceOfRevolution, ReadRevolution},
  {GeomAbs_SurfaceOfExtrusion, ReadExtrusion},
};

} // namespace

void ReadSurface(const TopoDS_Face& face, ReplaySurfacePayload& payload)
{
  // Restriction would compute the bounds once more and change nothing that is read here.
  const BRepAdaptor_Surface surface(face, false);
  const GeomAbs_SurfaceType type = surface.GetType();
  payload.kind = PayloadTextOf(type);
  for (const Row& row : kRows)
    if (row.type == type)
      row.read(surface, payload);
}

} // namespace Orvex
