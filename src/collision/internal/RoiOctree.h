// The region in which the meshes of two shapes come near each other.
#pragma once

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <vector>

namespace Orvex {

// One triangle of a mesh.
struct TriBBox
{
  Bnd_Box box; // without a gap
  gp_Pnt centre;
};

// Meshes the shape and gives the triangles of its faces, placed.
std::vector<TriBBox> CollectTriangles(const TopoDS_Shape& shape, double deflection);

// The boxes of all triangles that share a leaf of an octree with a triangle of the other shape
// whose box they meet; void if there are none. A void result is checked by comparing all with all,
// each box with the gap, unless they are too many.
//
// A node that is split hands down the triangles that it holds: left behind, they would be compared
// with nothing, the region would come out too small, and the common solid cut off.
Bnd_Box ComputeRoiBoxOctree(const std::vector<TriBBox>& a, const std::vector<TriBBox>& b,
                            double gap, const Bnd_Box& overall);

} // namespace Orvex
