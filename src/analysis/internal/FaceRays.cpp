#include "analysis/internal/FaceRays.h"

#include "analysis/internal/FaceSampling.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepBndLib.hxx>
#include <BRepLib.hxx>
#include <BVH_LinearBuilder.hxx>
#include <BVH_Traverse.hxx>
#include <Bnd_Box.hxx>
#include <GeomAdaptor_Curve.hxx>
#include <Geom_Line.hxx>
#include <IntCurveSurface_HInter.hxx>
#include <IntCurveSurface_IntersectionPoint.hxx>
#include <TopTools_ListOfShape.hxx>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvex {

namespace {

using Boxes = BVH_BoxSet<double, 3, int>;

// Without the triangles, which may lie inside of the surface.
BVH_Box<double, 3> BoxOf(const TopoDS_Face& face)
{
  constexpr double kFar = std::numeric_limits<double>::max();
  Bnd_Box box;
  BRepBndLib::Add(face, box, false);
  if (box.IsVoid() || box.IsOpen())
    return {BVH_Vec3d(-kFar, -kFar, -kFar), BVH_Vec3d(kFar, kFar, kFar)};
  const gp_Pnt from = box.CornerMin(), to = box.CornerMax();
  return {BVH_Vec3d(from.X(), from.Y(), from.Z()), BVH_Vec3d(to.X(), to.Y(), to.Z())};
}

// The same shape, in which planar faces hold the curves of their edges. Of others the kernel
// computes them anew whenever it is asked where a point lies.
TopoDS_Shape WithCurvesOnPlanes(const TopoDS_Shape& shape)
{
  TopologyCopier copier;
  const TopoDS_Shape copy = copier.Copy(shape);
  EachFace(copy, [](const TopoDS_Face& face, int) {
    if (BRepAdaptor_Surface(face, false).GetType() != GeomAbs_Plane)
      return;
    TopTools_ListOfShape edges;
    for (TopExp_Explorer edge(face, TopAbs_EDGE); edge.More(); edge.Next())
      edges.Append(edge.Current());
    BRepLib::BuildPCurveForEdgesOnPlane(edges, face);
  });
  return copy;
}

// Descends to the boxes that a ray meets, the nearest first.
template <typename Hit>
class RayDescent : public BVH_Traverse<double, 3, Boxes, double>
{
public:
  RayDescent(const gp_Lin& cast, double start, double end, Hit hitFace)
      : ray(cast), from(start), nearest(end), hit(hitFace)
  {}

  Standard_Boolean RejectNode(const BVH_Vec3d& low, const BVH_Vec3d& high,
                              double& entry) const override
  {
    entry = EntryInto(low, high);
    return entry > nearest;
  }

  Standard_Boolean RejectMetric(const double& entry) const override
  {
    return entry > nearest;
  }

  Standard_Boolean IsMetricBetter(const double& left, const double& right) const override
  {
    return left < right;
  }

  Standard_Boolean Accept(const Standard_Integer index, const double&) override
  {
    const BVH_Box<double, 3> box = myBVHSet->Box(index);
    if (EntryInto(box.CornerMin(), box.CornerMax()) > nearest)
      return false;
    nearest = hit(myBVHSet->Element(index), nearest);
    return true;
  }

private:
  // Infinity for a box that the ray misses. The slabs are kept a little wide, so that no rounding
  // loses a face.
  double EntryInto(const BVH_Vec3d& low, const BVH_Vec3d& high) const
  {
    constexpr double kGap = 1e-6;
    double enter = from, leave = nearest;
    for (int axis = 0; axis < 3; ++axis) {
      const double origin = ray.Location().Coord(axis + 1);
      const double slope = ray.Direction().Coord(axis + 1);
      const double toLow = low[axis] - kGap - origin, toHigh = high[axis] + kGap - origin;
      if (slope == 0) {
        if (toLow > 0 || toHigh < 0)
          return std::numeric_limits<double>::infinity();
        continue;
      }
      enter = std::max(enter, std::min(toLow / slope, toHigh / slope));
      leave = std::min(leave, std::max(toLow / slope, toHigh / slope));
    }
    return enter <= leave ? enter : std::numeric_limits<double>::infinity();
  }

  const gp_Lin& ray;
  const double from;
  double nearest;
  Hit hit;
};

} // namespace

FaceBoxes::FaceBoxes(const TopoDS_Shape& shape)
    : tree(new Boxes(new BVH_LinearBuilder<double, 3>(1, 32)))
{
  EachFace(WithCurvesOnPlanes(shape), [&](const TopoDS_Face& face, int) {
    tree->Add(static_cast<int>(faces.size()), BoxOf(face));
    faces.push_back(face);
  });
  tree->Build();
}

FaceRays::FaceRays(const FaceBoxes& known) : boxes(known), targets(known.Faces().size())
{}

FaceRays::Target& FaceRays::TargetOf(int face)
{
  Target& target = targets[static_cast<std::size_t>(face)];
  if (target.surface.IsNull()) {
    target.surface = new BRepAdaptor_Surface(boxes.Faces()[static_cast<std::size_t>(face)], true);
    target.trimming = new BRepTopAdaptor_TopolTool(target.surface);
  }
  return target;
}

template <typename Visit>
void FaceRays::EachHit(const gp_Lin& ray, double from, double to, Visit&& visit)
{
  constexpr double kTolerance = 1e-7;
  const Handle(GeomAdaptor_Curve) curve = new GeomAdaptor_Curve(new Geom_Line(ray));
  IntCurveSurface_HInter intersection;
  const auto hit = [&](int face, double limit) {
    Target& target = TargetOf(face);
    intersection.Perform(curve, target.surface);
    if (!intersection.IsDone())
      return limit;
    for (int i = 1; i <= intersection.NbPoints(); ++i) {
      const IntCurveSurface_IntersectionPoint& point = intersection.Point(i);
      if (!(point.W() > from && point.W() < limit))
        continue;
      const TopAbs_State state =
        target.trimming->Classify(gp_Pnt2d(point.U(), point.V()), kTolerance);
      if (state == TopAbs_IN || state == TopAbs_ON)
        limit = visit(face, point, state);
    }
    return limit;
  };
  RayDescent descent(ray, from, to, hit);
  descent.SetBVHSet(boxes.Tree().get());
  descent.Select();
}

std::optional<double> FaceRays::Nearest(const gp_Lin& ray, double from, double to)
{
  std::optional<double> nearest;
  EachHit(ray, from, to, [&](int, const IntCurveSurface_IntersectionPoint& point, TopAbs_State) {
    nearest = point.W();
    return point.W();
  });
  return nearest;
}

std::optional<FaceRays::Crossing> FaceRays::FirstCrossing(const gp_Lin& ray, double from)
{
  // Two faces that are met so close to each other share an edge there.
  constexpr double kClose = 1e-5;
  std::optional<Crossing> first;
  double second = std::numeric_limits<double>::infinity();
  EachHit(ray, from, std::numeric_limits<double>::max(),
          [&](int face, const IntCurveSurface_IntersectionPoint& point, TopAbs_State state) {
            if (first && point.W() >= first->parameter) {
              second = std::min(second, point.W());
            } else {
              if (first)
                second = first->parameter;
              first = CrossingAt(face, point, state, ray);
            }
            return first->parameter + kClose;
          });
  if (first && second - first->parameter < kClose)
    first->isClear = false;
  return first;
}

FaceRays::Crossing FaceRays::CrossingAt(int face, const IntCurveSurface_IntersectionPoint& point,
                                        TopAbs_State state, const gp_Lin& ray)
{
  constexpr double kSteep = 0.05;
  // On free-form surfaces a hit is not exact enough to be told from the start of the ray.
  constexpr double kNearStart = 1e-5;
  const Target& target = TargetOf(face);
  gp_Pnt place;
  gp_Vec alongU, alongV;
  target.surface->D1(point.U(), point.V(), place, alongU, alongV);
  gp_Vec outward = alongU.Crossed(alongV);
  if (boxes.Faces()[static_cast<std::size_t>(face)].Orientation() == TopAbs_REVERSED)
    outward.Reverse();
  const double slope = gp_Vec(ray.Direction()) * outward;
  const bool isSteep = std::abs(slope) > kSteep * outward.Magnitude();
  const bool isExact =
    target.surface->GetType() <= GeomAbs_Torus || std::abs(point.W()) > kNearStart;
  return {point.W(), slope > 0, state == TopAbs_IN && isSteep && isExact};
}

} // namespace Orvex
