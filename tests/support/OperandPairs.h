// Pairs of shapes that meet in the ways that matter to a boolean: crossing, touching, coplanar,
// within tolerance, apart, of different dimension.
#pragma once

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <string>
#include <vector>

namespace OrvexTest {

struct OperandPair
{
  std::string name;
  TopoDS_Shape first, second;
};

inline TopoDS_Shape BoxAt(double x, double y, double z, double size = 10)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), size, size, size).Shape();
}

inline TopoDS_Shape SquareAt(double x, double y, double z, double size = 10)
{
  return BRepBuilderAPI_MakeFace(BRepBuilderAPI_MakePolygon(gp_Pnt(x, y, z), gp_Pnt(x + size, y, z),
                                                            gp_Pnt(x + size, y + size, z),
                                                            gp_Pnt(x, y + size, z), true)
                                   .Wire())
    .Shape();
}

// A cube whose edges have no curves on its planes.
inline TopoDS_Shape PrismAt(double x, double y, double z)
{
  return BRepPrimAPI_MakePrism(SquareAt(x, y, z), gp_Vec(0, 0, 10)).Shape();
}

inline TopoDS_Shape WithLooseVertices(const TopoDS_Shape& shape, double tolerance)
{
  for (TopExp_Explorer vertex(shape, TopAbs_VERTEX); vertex.More(); vertex.Next())
    BRep_Builder().UpdateVertex(TopoDS::Vertex(vertex.Current()), tolerance);
  return shape;
}

inline TopoDS_Shape Drill()
{
  return BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(5, 5, -1), gp::DZ()), 2, 12).Shape();
}

inline OperandPair DisjointBoxes()
{
  return {"boxes apart", BoxAt(0, 0, 0), BoxAt(50, 0, 0)};
}

inline OperandPair TouchingBoxes()
{
  return {"boxes touching", BoxAt(0, 0, 0), BoxAt(10, 2, 2, 5)};
}

// Solids that every boolean can be made of.
inline std::vector<OperandPair> SolidPairs()
{
  return {
    DisjointBoxes(),
    TouchingBoxes(),
    {"boxes crossing", BoxAt(0, 0, 0), BoxAt(5, 5, 5)},
    {"boxes with coplanar faces", BoxAt(0, 0, 0), BoxAt(5, 0, 0)},
    {"boxes touching within tolerance", BoxAt(0, 0, 0), BoxAt(10 + 1.5e-7, 2, 2, 5)},
    {"a loose vertex on a face", BoxAt(0, 0, 0), WithLooseVertices(BoxAt(3, 3, 10.0005, 4), 1e-3)},
    {"prisms crossing", PrismAt(0, 0, 0), PrismAt(5, 5, 5)},
    {"prisms touching", PrismAt(0, 0, 0), PrismAt(10, 0, 0)},
    {"a drill", BoxAt(0, 0, 0), Drill()},
    {"a drill of splines", BoxAt(0, 0, 0), BRepBuilderAPI_NurbsConvert(Drill()).Shape()},
  };
}

// A pair that the kernel fuses or subtracts in one order only, or not at all.
inline OperandPair SolidAndFace()
{
  return {"a solid and a face", BoxAt(0, 0, 0), SquareAt(2, 2, 5)};
}

} // namespace OrvexTest
