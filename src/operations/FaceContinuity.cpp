#include "operations/AdvancedSurfaceOp.h"

#include "kernel/internal/CurveShapes.h"

#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <GeomLProp_SLProps.hxx>
#include <Geom_Surface.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

using namespace Orvex;

namespace {

struct SharedEdge
{
  // As each face has it: the orientations differ, as on a seam the curves do.
  TopoDS_Edge onFirst, onSecond;
};

std::optional<SharedEdge> SharedEdgeOf(const TopoDS_Face& face1, const TopoDS_Face& face2)
{
  TopTools_IndexedMapOfShape edges;
  TopExp::MapShapes(face1, TopAbs_EDGE, edges);
  const std::vector<TopoDS_Edge> others = EdgesOf(face2);
  for (int i = 1; i <= edges.Extent(); ++i) {
    const TopoDS_Shape& edge = edges(i);
    const auto found = std::find_if(others.begin(), others.end(), [&](const TopoDS_Edge& other) {
      return IsSameShape(edge, other);
    });
    if (found != others.end())
      return SharedEdge{TopoDS::Edge(edge), *found};
  }
  return {};
}

struct SideOfEdge
{
  gp_Dir normal;
  double curvature = std::numeric_limits<double>::infinity();
};

std::optional<SideOfEdge> MeasureAt(const TopoDS_Edge& edge, const TopoDS_Face& face,
                                    double tolerance)
{
  double first = 0, last = 0;
  const Handle(Geom2d_Curve) curve = BRep_Tool::CurveOnSurface(edge, face, first, last);
  if (curve.IsNull())
    return {};
  const gp_Pnt2d middle = curve->Value((first + last) / 2);
  GeomLProp_SLProps properties(BRep_Tool::Surface(face), middle.X(), middle.Y(), 2, tolerance);
  if (!properties.IsNormalDefined())
    return {};
  SideOfEdge side;
  side.normal = properties.Normal();
  if (properties.IsCurvatureDefined())
    side.curvature = std::abs(properties.MaxCurvature());
  return side;
}

int LevelOf(const SurfaceContinuityMetrics& metrics)
{
  if (metrics.normalAngleDegrees <= 0.5 && metrics.curvatureDifference <= 0.01)
    return 2;
  return metrics.normalAngleDegrees <= 2.0 ? 1 : 0;
}

} // namespace

SurfaceContinuityMetrics AdvancedSurfaceOp::EvaluateFaceContinuity(const TopoDS_Face& face1,
                                                                   const TopoDS_Face& face2,
                                                                   double tolerance)
{
  SurfaceContinuityMetrics metrics;
  if (face1.IsNull() || face2.IsNull())
    return metrics;
  const std::optional<SharedEdge> shared = SharedEdgeOf(face1, face2);
  metrics.sharedEdgeFound = shared.has_value();
  metrics.valid = !metrics.sharedEdgeFound;
  if (!shared)
    return metrics;
  const std::optional<SideOfEdge> one = MeasureAt(shared->onFirst, face1, tolerance);
  const std::optional<SideOfEdge> other = MeasureAt(shared->onSecond, face2, tolerance);
  if (!one || !other)
    return metrics;
  metrics.normalAngleDegrees = one->normal.Angle(other->normal) * 180 / M_PI;
  metrics.curvatureDifference = std::abs(one->curvature - other->curvature);
  metrics.valid = std::isfinite(metrics.curvatureDifference);
  metrics.level = LevelOf(metrics);
  return metrics;
}
