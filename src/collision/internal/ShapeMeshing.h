// Meshing of many shapes at once, for shapes that may share sub-shapes.
#pragma once

#include <TopoDS_Shape.hxx>

#include <functional>
#include <vector>

namespace Orvex {

struct MeshFineness
{
  double deflection;
  bool isRelative; // to the size of each edge
  double angle;
};

// Puts a triangulation on the shape, with the kernel's own threads. A kernel that fails leaves what
// is there; nothing is thrown.
void MeshShape(const TopoDS_Shape& shape, const MeshFineness& fineness);

// Meshes each distinct shape once, wherever it is placed; null shapes are passed over. Those that
// have a face or an edge in common are meshed one after the other, the rest side by side.
// Arguments: `isOver` is asked before each shape; once it is true, no other is begun.
// Returns: how many distinct shapes were meshed.
int MeshDistinctShapes(const std::vector<TopoDS_Shape>& shapes, const MeshFineness& fineness,
                       const std::function<bool()>& isOver);

} // namespace Orvex
