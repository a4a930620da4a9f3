// Distances from points to the faces of a shape along rays.
//
// Gives what BRepIntCurveSurface_Inter gives for the whole shape. That one intersects every face
// and makes a classifier of a face's trimming anew for each hit; here the faces stand in a tree of
// boxes, the nearest is tried first, and each keeps its classifier.
#pragma once

#include <BRepAdaptor_Surface.hxx>
#include <BRepTopAdaptor_TopolTool.hxx>
#include <BVH_BoxSet.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Lin.hxx>

#include <optional>
#include <vector>

namespace Orvex {

// The boxes of a shape's faces; read by any number of threads.
class FaceBoxes
{
public:
  explicit FaceBoxes(const TopoDS_Shape& boxed);

  const std::vector<TopoDS_Face>& Faces() const
  {
    return faces;
  }
  const opencascade::handle<BVH_BoxSet<double, 3, int>>& Tree() const
  {
    return tree;
  }

private:
  std::vector<TopoDS_Face> faces;
  opencascade::handle<BVH_BoxSet<double, 3, int>> tree;
};

// One for each thread: intersecting fills the classifiers.
class FaceRays
{
public:
  explicit FaceRays(const FaceBoxes& boxes);

  // The parameter of the nearest intersection with `from` < parameter < `to`, both excluded.
  std::optional<double> Nearest(const gp_Lin& ray, double from, double to);

private:
  struct Target
  {
    opencascade::handle<BRepAdaptor_Surface> surface;
    opencascade::handle<BRepTopAdaptor_TopolTool> trimming;
  };

  Target& TargetOf(int face);

  const FaceBoxes& boxes;
  std::vector<Target> targets;
};

} // namespace Orvex
