#include "kernel/internal/TopologyCopy.h"

#include "support/OperandPairs.h"
#include "support/TestDocument.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

TopoDS_Shape Turned(const TopoDS_Shape& shape)
{
  gp_Trsf turn;
  turn.SetRotation(gp_Ax1(gp_Pnt(1, 2, 3), gp_Dir(1, 1, 0)), 0.3);
  return shape.Moved(turn).Reversed();
}

// A vertex in the middle of an edge keeps its parameters in itself.
TopoDS_Shape EdgeWithInternalVertex()
{
  TopoDS_Shape box = BoxAt(0, 0, 0);
  TopoDS_Edge edge = TopoDS::Edge(TopExp_Explorer(box, TopAbs_EDGE).Current());
  TopoDS_Vertex vertex;
  BRep_Builder builder;
  builder.MakeVertex(vertex, gp_Pnt(0, 0, 4), 1e-5);
  vertex.Orientation(TopAbs_INTERNAL);
  edge.Free(true);
  builder.Add(edge, vertex);
  edge.Free(false);
  builder.UpdateVertex(vertex, 4, edge, 1e-5);
  const TopoDS_Face face = TopoDS::Face(TopExp_Explorer(box, TopAbs_FACE).Current());
  builder.UpdateVertex(vertex, 4, edge, face, 1e-5);
  builder.UpdateVertex(vertex, 2, 3, face, 1e-5);
  return box;
}

std::vector<TopoDS_Shape> Samples()
{
  std::vector<TopoDS_Shape> shapes = {EdgeWithInternalVertex(), Turned(BoxAt(1, 2, 3)),
                                      Turned(BRepPrimAPI_MakeTorus(5, 2).Shape())};
  for (const OperandPair& pair : SolidPairs()) {
    shapes.push_back(pair.first);
    shapes.push_back(BRepAlgoAPI_Fuse(pair.first, pair.second).Shape());
  }
  shapes.push_back(TopExp_Explorer(shapes[1], TopAbs_EDGE).Current());
  return shapes;
}

TEST(TopologyCopy, ReadsLikeTheOriginalAndSharesNoSubShapeWithIt)
{
  for (TopoDS_Shape shape : Samples()) {
    TopoDS_Shape copy = Orvex::TopologyCopier().Copy(shape);
    // Of a copy nobody knows yet what it will be part of.
    copy.Free(shape.Free());
    EXPECT_TRUE(SameDump(BrepOf(copy), BrepOf(shape)));
    TopTools_IndexedMapOfShape originals;
    TopExp::MapShapes(shape, originals, false, false);
    for (TopExp_Explorer vertex(copy, TopAbs_VERTEX); vertex.More(); vertex.Next())
      EXPECT_FALSE(originals.Contains(vertex.Current().Located({})));
    EXPECT_FALSE(copy.IsPartner(shape));
  }
}

TEST(TopologyCopy, SharesGeometryAndLeavesTheMeshOut)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0);
  BRepMesh_IncrementalMesh(box, 1.0);
  const TopoDS_Shape copy = Orvex::TopologyCopier().Copy(box);
  TopExp_Explorer mine(copy, TopAbs_FACE), its(box, TopAbs_FACE);
  for (; mine.More(); mine.Next(), its.Next()) {
    const TopoDS_Face face = TopoDS::Face(mine.Current()), original = TopoDS::Face(its.Current());
    EXPECT_EQ(BRep_Tool::Surface(face), BRep_Tool::Surface(original));
    TopLoc_Location location;
    EXPECT_FALSE(BRep_Tool::Triangulation(original, location).IsNull());
    EXPECT_TRUE(BRep_Tool::Triangulation(face, location).IsNull());
  }
}

TEST(TopologyCopy, WhatTwoShapesShareTheirCopiesShare)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0);
  const TopoDS_Shape face = TopExp_Explorer(box, TopAbs_FACE).Current();
  Orvex::TopologyCopier copier;
  const TopoDS_Shape copy = copier.Copy(box);
  EXPECT_TRUE(copier.Copy(face).IsEqual(TopExp_Explorer(copy, TopAbs_FACE).Current()));
  EXPECT_TRUE(copier.Copy(box).IsEqual(copy));
  EXPECT_TRUE(copier.Copy(TopoDS_Shape()).IsNull());
}

} // namespace
