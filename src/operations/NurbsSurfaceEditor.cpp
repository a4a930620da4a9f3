#include "operations/NurbsSurfaceEditor.h"

#include "kernel/internal/KernelLimits.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <GeomLProp_SLProps.hxx>
#include <Geom_BSplineSurface.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using Grid = std::vector<std::vector<gp_Pnt>>;
using Surface = Handle(Geom_BSplineSurface);

using Orvex::IsFinite;

bool IsFinite(const gp_XYZ& place)
{
  return IsFinite(place.X()) && IsFinite(place.Y()) && IsFinite(place.Z());
}

// Null for a null face and for any other kind of surface.
Surface SurfaceOf(const TopoDS_Face& face)
{
  return face.IsNull() ? Surface() : Surface::DownCast(BRep_Tool::Surface(face));
}

bool BuildFace(const Surface& surface, TopoDS_Face& face)
{
  constexpr double kDegenerate = 1e-7;
  if (surface.IsNull())
    return false;
  BRepBuilderAPI_MakeFace made(surface, kDegenerate);
  if (!made.IsDone())
    return false;
  face = made.Face();
  return !face.IsNull();
}

struct ClampedKnots
{
  ClampedKnots(int poleCount, int degree)
      : spans(std::max(poleCount - degree, 1)), knots(1, spans + 1), multiplicities(1, spans + 1)
  {
    multiplicities.Init(1);
    multiplicities(1) = multiplicities(spans + 1) = degree + 1;
    for (int i = 0; i <= spans; ++i)
      knots(i + 1) = static_cast<double>(i) / spans;
  }

  int spans;
  TColStd_Array1OfReal knots;
  TColStd_Array1OfInteger multiplicities;
};

bool IsSound(const Grid& grid)
{
  if (grid.size() < 2 || grid.front().size() < 2)
    return false;
  return std::all_of(grid.begin(), grid.end(), [&](const std::vector<gp_Pnt>& row) {
    return row.size() == grid.front().size() &&
           std::all_of(row.begin(), row.end(), [](const gp_Pnt& p) { return IsFinite(p.XYZ()); });
  });
}

TColgp_Array2OfPnt PolesOf(const Grid& grid)
{
  const int rows = static_cast<int>(grid.size()), columns = static_cast<int>(grid.front().size());
  TColgp_Array2OfPnt poles(1, rows, 1, columns);
  for (int i = 1; i <= rows; ++i)
    for (int j = 1; j <= columns; ++j)
      poles(i, j) = grid[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)];
  return poles;
}

int ClampedDegree(int degree, int poleCount)
{
  return std::max(std::min(degree, poleCount - 1), 1);
}

// The surface's normal at the middle of the face; none where it has none.
std::optional<gp_Dir> NormalAtMiddle(const TopoDS_Face& face, const Surface& surface)
{
  constexpr double kResolution = 1e-6;
  double uMin = 0, uMax = 0, vMin = 0, vMax = 0;
  BRepTools::UVBounds(face, uMin, uMax, vMin, vMax);
  if (!(uMin < uMax && vMin < vMax))
    return std::nullopt;
  GeomLProp_SLProps middle(surface, (uMin + uMax) / 2, (vMin + vMax) / 2, 1, kResolution);
  if (!middle.IsNormalDefined())
    return std::nullopt;
  return middle.Normal();
}

// Returns: false, with nothing changed, if the knots span nothing.
bool Rescale(TColStd_Array1OfReal& knots, double from, double to)
{
  const double first = knots.First(), last = knots.Last();
  if (!(first < last))
    return false;
  for (double& knot : knots)
    knot = (to - from) * ((knot - first) / (last - first)) + from;
  return true;
}

} // namespace

TopoDS_Face NurbsSurfaceEditor::CreateSurfaceFromControlGrid(const Grid& controlGrid, int uDegree,
                                                             int vDegree)
{
  if (!IsSound(controlGrid))
    return {};
  const TColgp_Array2OfPnt poles = PolesOf(controlGrid);
  const int u = ClampedDegree(uDegree, poles.ColLength());
  const int v = ClampedDegree(vDegree, poles.RowLength());
  const ClampedKnots alongU(poles.ColLength(), u), alongV(poles.RowLength(), v);
  TopoDS_Face face;
  BuildFace(new Geom_BSplineSurface(poles, alongU.knots, alongV.knots, alongU.multiplicities,
                                    alongV.multiplicities, u, v, false, false),
            face);
  return face;
}

bool NurbsSurfaceEditor::MoveControlPoint(TopoDS_Face& face, int uIndex, int vIndex,
                                          const gp_Vec& delta)
{
  const Surface surface = SurfaceOf(face);
  if (surface.IsNull() || !IsFinite(delta.XYZ()))
    return false;
  if (uIndex < 1 || uIndex > surface->NbUPoles() || vIndex < 1 || vIndex > surface->NbVPoles())
    return false;
  surface->SetPole(uIndex, vIndex, surface->Pole(uIndex, vIndex).Translated(delta));
  return BuildFace(surface, face);
}

bool NurbsSurfaceEditor::PushPullFaceAlongNormal(TopoDS_Face& face, double distance)
{
  constexpr double kNoDistance = 1e-7;
  const Surface surface = SurfaceOf(face);
  if (surface.IsNull() || !(std::abs(distance) > kNoDistance) || !IsFinite(distance))
    return false;
  const auto normal = NormalAtMiddle(face, surface);
  if (!normal)
    return false;
  const gp_Vec offset = gp_Vec(*normal) * distance;
  for (int i = 1; i <= surface->NbUPoles(); ++i)
    for (int j = 1; j <= surface->NbVPoles(); ++j)
      surface->SetPole(i, j, surface->Pole(i, j).Translated(offset));
  return BuildFace(surface, face);
}

bool NurbsSurfaceEditor::ReparameterizeSurface(TopoDS_Face& face, double uMin, double uMax,
                                               double vMin, double vMax)
{
  const Surface surface = SurfaceOf(face);
  if (surface.IsNull() || !(uMin < uMax && vMin < vMax))
    return false;
  if (!IsFinite(uMax - uMin) || !IsFinite(vMax - vMin))
    return false;
  TColStd_Array1OfReal uKnots(surface->UKnots()), vKnots(surface->VKnots());
  if (!Rescale(uKnots, uMin, uMax) || !Rescale(vKnots, vMin, vMax))
    return false;
  surface->SetUKnots(uKnots);
  surface->SetVKnots(vKnots);
  return BuildFace(surface, face);
}
