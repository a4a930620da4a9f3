#include "analysis/internal/FaceRays.h"

#include "analysis/internal/FaceSampling.h"

#include <BRepBndLib.hxx>
#include <BVH_LinearBuilder.hxx>
#include <BVH_Traverse.hxx>
#include <Bnd_Box.hxx>
#include <GeomAdaptor_Curve.hxx>
#include <Geom_Line.hxx>
#include <IntCurveSurface_HInter.hxx>
#include <IntCurveSurface_IntersectionPoint.hxx>

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
  EachFace(shape, [&](const TopoDS_Face& face, int) {
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

std::optional<double> FaceRays::Nearest(const gp_Lin& ray, double from, double to)
{
  constexpr double kTolerance = 1e-7;
  const Handle(GeomAdaptor_Curve) curve = new GeomAdaptor_Curve(new Geom_Line(ray));
  IntCurveSurface_HInter intersection;
  std::optional<double> nearest;
  const auto hit = [&](int face, double limit) {
    Target& target = TargetOf(face);
    intersection.Perform(curve, target.surface);
    for (int i = 1; intersection.IsDone() && i <= intersection.NbPoints(); ++i) {
      const IntCurveSurface_IntersectionPoint& point = intersection.Point(i);
      if (!(point.W() > from && point.W() < limit))
        continue;
      const TopAbs_State state =
        target.trimming->Classify(gp_Pnt2d(point.U(), point.V()), kTolerance);
      if (state == TopAbs_IN || state == TopAbs_ON)
        nearest = limit = point.W();
    }
    return limit;
  };
  RayDescent descent(ray, from, to, hit);
  descent.SetBVHSet(boxes.Tree().get());
  descent.Select();
  return nearest;
}

} // namespace Orvex
