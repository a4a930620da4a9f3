// A square plate with rows of holes, for tests and benchmarks of what grows with faces.
#pragma once

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <TopoDS_Shape.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Circ.hxx>

namespace OrvexTest {

// Two thick, with count by count holes of radius 0.3, one in each unit square: count * count + 6
// faces.
inline TopoDS_Shape PerforatedPlate(int count)
{
  const TopoDS_Wire outline = BRepBuilderAPI_MakePolygon(
    gp_Pnt(0, 0, 0), gp_Pnt(count, 0, 0), gp_Pnt(count, count, 0), gp_Pnt(0, count, 0), true);
  BRepBuilderAPI_MakeFace face(outline, true);
  for (int hole = 0; hole < count * count; ++hole) {
    const gp_Pnt centre(hole % count + 0.5, hole / count + 0.5, 0);
    const gp_Circ circle(gp_Ax2(centre, gp::DZ().Reversed()), 0.3);
    face.Add(BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(circle)));
  }
  return BRepPrimAPI_MakePrism(face.Face(), gp_Vec(0, 0, 2)).Shape();
}

} // namespace OrvexTest
