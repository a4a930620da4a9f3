// One hit of a pick.
#pragma once

#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <cstddef>

struct PickResult
{
  // The place of the shape in the list that is picked from.
  std::size_t shapeIndex = 0;
  // True in every result that a caller of PickShapes gets.
  bool hit = false;
  // 0 vertex, 1 edge, 2 face. A pick of solids reports the face that was struck, so 2 as well.
  int level = 0;
  gp_Pnt point;
  // Face: along the line. Edge: on its curve. Vertex: 0. Solid: the distance from the line's
  // location to the point.
  double parameter = 0;
  // Face: the point's parameters on the surface; else 0.
  double u = 0;
  double v = 0;
  // The vertex, edge or face that was hit.
  TopoDS_Shape subShape;
  // Pick of solids: the listed shape; else null.
  TopoDS_Shape parentShape;
  int reserved = 0;
};
