// One triangle of a shape's mesh.
#pragma once

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

struct OrvexTriangleData
{
  // The corners, in the order of the triangulation whatever the face's orientation, moved by the
  // face's location.
  gp_Pnt A;
  gp_Pnt B;
  gp_Pnt C;
  // The face that the triangle came from.
  TopoDS_Shape face;
  // The box of the corners, without a gap.
  Bnd_Box box;
};
