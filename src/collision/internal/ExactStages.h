// The kernel's exact answers on a pair of shapes.
#pragma once

#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <optional>

namespace Orvex {

struct ExactDistance
{
  double value;
  // Where the shapes are nearest; absent when the kernel names no place.
  struct Points
  {
    gp_Pnt onFirst, onSecond;
  };
  std::optional<Points> points;
};

// Nothing if the kernel has no answer.
// Errors: Standard_Failure passes.
// Caveat: the kernel gives a positive distance for a few pairs that overlap.
std::optional<ExactDistance> ExactDistanceOf(const TopoDS_Shape& first, const TopoDS_Shape& second);

// What two shapes have in common, an empty compound if that is nothing; null if the kernel cannot
// make it. The shapes stay as they are.
// Errors: Standard_Failure passes.
TopoDS_Shape CommonOf(const TopoDS_Shape& first, const TopoDS_Shape& second, double fuzzyTolerance,
                      bool runParallel);

double VolumeOf(const TopoDS_Shape& shape);

// 0 for shapes that have nothing in common, and when the kernel fails; nothing is thrown.
double CommonVolumeOrNone(const TopoDS_Shape& first, const TopoDS_Shape& second,
                          double fuzzyTolerance);

} // namespace Orvex
