#include "operations/internal/BlendSurfaceShape.h"

#include "operations/internal/AttemptLadder.h"

#include <BRep_Tool.hxx>
#include <GeomConvert.hxx>
#include <GeomFill_BSplineCurves.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_TrimmedCurve.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex {

namespace {

Handle(Geom_BSplineCurve) SplineOf(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (curve.IsNull())
    throw AttemptFailure("an edge has no curve");
  return GeomConvert::CurveToBSplineCurve(new Geom_TrimmedCurve(curve, first, last));
}

gp_Vec NormalOf(const gp_Vec& across, const gp_Vec& along)
{
  const gp_Vec normal = across.Crossed(along);
  return normal.Magnitude() > 1e-7 ? normal.Normalized() : gp_Vec(0, 0, 1);
}

gp_Vec TangentOfFirstRow(const Geom_BSplineSurface& surface, int u)
{
  const bool isLast = u == surface.NbUPoles();
  return isLast ? gp_Vec(surface.Pole(u - 1, 1), surface.Pole(u, 1))
                : gp_Vec(surface.Pole(u, 1), surface.Pole(u + 1, 1));
}

// Draws the inner poles across one row to the straight line between its ends by the strength, and
// lifts them by a parabola over it.
void ShapeRow(Geom_BSplineSurface& surface, int u, double strength)
{
  const int count = surface.NbVPoles();
  const gp_Pnt start = surface.Pole(u, 1);
  const gp_Vec across(start, surface.Pole(u, count));
  const gp_Vec normal = NormalOf(across, TangentOfFirstRow(surface, u));
  const double amplitude = (strength - 1) * 0.04 * std::max(1.0, across.Magnitude());
  for (int v = 2; v < count; ++v) {
    const double w = static_cast<double>(v - 1) / (count - 1);
    const gp_Pnt base = start.Translated(across * w);
    const gp_Vec off(base, surface.Pole(u, v));
    surface.SetPole(u, v, base.Translated(off * strength + normal * (amplitude * 4 * w * (1 - w))));
  }
}

} // namespace

Handle(Geom_BSplineSurface)
  BlendBetween(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2, double blendFactor)
{
  const GeomFill_BSplineCurves filling(SplineOf(edge1), SplineOf(edge2), GeomFill_CoonsStyle);
  const Handle(Geom_BSplineSurface) surface = filling.Surface();
  if (surface.IsNull())
    throw AttemptFailure("no surface runs between the curves");
  const double factor = std::isfinite(blendFactor) ? std::clamp(blendFactor, 0.0, 2.0) : 1.0;
  const double strength = 0.6 + 0.1 * factor;
  if (surface->NbVPoles() < 3)
    surface->InsertVKnot(0.5, 1, 1e-7, true);
  if (surface->NbVPoles() >= 3)
    for (int u = 1; u <= surface->NbUPoles(); ++u)
      ShapeRow(*surface, u, strength);
  return surface;
}

} // namespace Orvex
