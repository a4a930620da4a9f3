// Whether points lie inside of a shape.
//
// Says what BRepClass3d_SolidClassifier says. That one takes a line through every face of the
// shape; for closed solids a ray through the tree of boxes does, whose first crossing leaves the
// solid or enters it. Where the ray does not tell clearly, and for all other shapes, the kernel is
// asked.
//
// Caveat: inside of solids that overlap each other the kernel's own answer depends on its line.
#pragma once

#include "analysis/internal/FaceRays.h"

#include <BRepClass3d_SolidClassifier.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <optional>

namespace Orvex {

// Whether the shape consists of closed solids with their matter inside, and nothing else.
bool IsMadeOfClosedSolids(const TopoDS_Shape& shape);

// One for each thread.
class InsideTest
{
public:
  // The rays are those of the shape.
  InsideTest(const TopoDS_Shape& tested, FaceRays& raysOfShape, bool isMadeOfClosedSolids);

  // Also for points on the surface, within 1e-7. The side is one where the surface is not expected
  // at once.
  bool Holds(const gp_Pnt& point, const gp_Dir& side);

private:
  std::optional<bool> ByRay(const gp_Pnt& point, const gp_Dir& direction);
  bool ByKernel(const gp_Pnt& point);

  const TopoDS_Shape& shape;
  FaceRays& rays;
  const bool rayTells;
  std::optional<BRepClass3d_SolidClassifier> classifier;
};

} // namespace Orvex
