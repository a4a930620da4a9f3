#include "analysis/ModelCheckAnalyzer.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Status.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pln.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

ModelCheckReport Check(const TopoDS_Shape& shape, const ModelCheckOptions& options = {})
{
  return ModelCheckAnalyzer::Analyze({shape}, options);
}

std::vector<std::string> CodesOf(const ModelCheckReport& report)
{
  std::vector<std::string> codes;
  for (const ModelCheckIssue& issue : report.issues)
    codes.push_back(issue.code);
  return codes;
}

std::map<std::string, int> CountsOf(const ModelCheckReport& report)
{
  std::map<std::string, int> counts;
  for (const ModelCheckIssue& issue : report.issues)
    ++counts[issue.code];
  return counts;
}

ModelCheckIssue FirstOf(const ModelCheckReport& report, const std::string& code)
{
  for (const ModelCheckIssue& issue : report.issues)
    if (issue.code == code)
      return issue;
  ADD_FAILURE() << "no " << code;
  return {};
}

TopoDS_Face FaceWithin(const std::vector<gp_Pnt>& corners, bool close = true)
{
  BRepBuilderAPI_MakePolygon outline;
  for (const gp_Pnt& corner : corners)
    outline.Add(corner);
  if (close)
    outline.Close();
  BRep_Builder builder;
  TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln()).Face();
  builder.Add(face, outline.Wire());
  return face;
}

TopoDS_Face BowTie()
{
  return FaceWithin({{0, 0, 0}, {9, 9, 0}, {9, 0, 0}, {0, 9, 0}});
}

TopoDS_Compound CompoundOf(const std::vector<TopoDS_Shape>& shapes)
{
  TopoDS_Compound compound;
  BRep_Builder builder;
  builder.MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    builder.Add(compound, shape);
  return compound;
}

} // namespace

TEST(ModelCheck, ASoundBoxHasNoIssues)
{
  const ModelCheckReport report = Check(BRepPrimAPI_MakeBox(10, 10, 10).Shape());
  EXPECT_TRUE(report.success);
  EXPECT_EQ(report.shapeCount, 1);
  EXPECT_THAT(report.issues, IsEmpty());
  EXPECT_EQ(report.issueCount + report.criticalCount + report.warningCount + report.infoCount, 0);
}

TEST(ModelCheck, NothingAndNullShapesSucceed)
{
  const ModelCheckReport none = ModelCheckAnalyzer::Analyze({}, {});
  EXPECT_TRUE(none.success);
  EXPECT_EQ(none.shapeCount, 0);
  const ModelCheckReport nulls = ModelCheckAnalyzer::Analyze(
    {TopoDS_Shape(), TopoDS_Shape(), BRepPrimAPI_MakeSphere(5).Shape()}, {});
  EXPECT_TRUE(nulls.success);
  EXPECT_EQ(nulls.shapeCount, 3);
  EXPECT_EQ(FirstOf(nulls, "GEO_EDGE_DEGENERATED").shapeIndex, 2);
}

TEST(ModelCheck, ASmallBoxIsShortTinyAndChamfered)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(0.5, 0.5, 0.5).Shape();
  const ModelCheckReport report = Check(box);
  EXPECT_THAT(CountsOf(report),
              ElementsAre(std::pair("FEAT_SMALL_CHAMFER", 6), std::pair("GEO_EDGE_SHORT", 12),
                          std::pair("GEO_FACE_TINY", 6)));
  EXPECT_EQ(report.warningCount, 24);
  for (int i = 0; i < 12; ++i) {
    const ModelCheckIssue& edge = report.issues[static_cast<std::size_t>(i)];
    EXPECT_EQ(edge.code, "GEO_EDGE_SHORT");
    EXPECT_EQ(edge.subIndex, i + 1);
    EXPECT_NEAR(edge.value, 0.5, 1e-9);
  }
  for (std::size_t i = 0; i < 6; ++i) {
    const ModelCheckIssue& tiny = report.issues[12 + 2 * i];
    const ModelCheckIssue& chamfer = report.issues[13 + 2 * i];
    EXPECT_EQ(tiny.code, "GEO_FACE_TINY");
    EXPECT_NEAR(tiny.value, 0.25, 1e-9);
    EXPECT_EQ(tiny.threshold, 2);
    EXPECT_EQ(chamfer.code, "FEAT_SMALL_CHAMFER");
    EXPECT_NEAR(chamfer.value, 0.5, 1e-9);
    EXPECT_EQ(chamfer.threshold, 1);
    EXPECT_EQ(chamfer.subIndex, static_cast<int>(i) + 1);
  }
  // Larger faces can be chamfers without being tiny.
  EXPECT_THAT(CodesOf(Check(BRepPrimAPI_MakeBox(0.5, 9, 9).Shape())),
              Not(Contains("GEO_FACE_TINY")));
  EXPECT_EQ(CountsOf(Check(BRepPrimAPI_MakeBox(0.5, 9, 9).Shape()))["FEAT_SMALL_CHAMFER"], 4);
}

TEST(ModelCheck, RoundFacesAreHolesOrBlends)
{
  const auto pin = CountsOf(Check(BRepPrimAPI_MakeCylinder(0.5, 10).Shape()));
  EXPECT_EQ(pin.count("FEAT_SMALL_BLEND"), 0U);
  EXPECT_EQ(pin.at("FEAT_SMALL_HOLE"), 1);
  EXPECT_EQ(pin.at("FEAT_SMALL_LOOP"), 2);
  // Two arcs are as good as two circles.
  const Handle(Geom_CylindricalSurface) wall = new Geom_CylindricalSurface(gp_Ax3(), 0.5);
  const TopoDS_Face quarter = BRepBuilderAPI_MakeFace(wall, 0, 1, 0, 9, 1e-7).Face();
  EXPECT_EQ(FirstOf(Check(quarter), "FEAT_SMALL_HOLE").value, 0.5);
  EXPECT_EQ(FirstOf(Check(BRepPrimAPI_MakeSphere(0.5).Shape()), "FEAT_SMALL_BLEND").value, 0.5);
  EXPECT_EQ(FirstOf(Check(BRepPrimAPI_MakeTorus(9, 0.25).Shape()), "FEAT_SMALL_BLEND").value, 0.25);
  ModelCheckOptions off;
  off.smallHoleRadius = 0;
  EXPECT_EQ(
    FirstOf(Check(BRepPrimAPI_MakeCylinder(0.5, 10).Shape(), off), "FEAT_SMALL_BLEND").value, 0.5);
}

TEST(ModelCheck, FreeAndSharedEdgesAreOfTheShape)
{
  const TopoDS_Face face = FaceWithin({{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}});
  const ModelCheckReport open = Check(face);
  EXPECT_THAT(CodesOf(open), ElementsAre("TOPO_OPEN_BOUNDARY"));
  EXPECT_EQ(open.issues[0].value, 4);
  EXPECT_EQ(open.issues[0].subIndex, -1);
  EXPECT_EQ(open.criticalCount, 1);

  // Three leaves on one spine.
  const TopoDS_Edge spine = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 9));
  std::vector<TopoDS_Shape> leaves;
  for (const gp_Pnt& tip : {gp_Pnt(9, 0, 4), gp_Pnt(0, 9, 4), gp_Pnt(-9, -9, 4)}) {
    TopoDS_Vertex from, to;
    TopExp::Vertices(spine, from, to);
    const TopoDS_Vertex corner = BRepBuilderAPI_MakeVertex(tip);
    const TopoDS_Wire wire = BRepBuilderAPI_MakeWire(spine, BRepBuilderAPI_MakeEdge(to, corner),
                                                     BRepBuilderAPI_MakeEdge(corner, from));
    leaves.push_back(BRepBuilderAPI_MakeFace(wire).Face());
  }
  const ModelCheckReport book = Check(CompoundOf(leaves));
  EXPECT_THAT(CodesOf(book), ElementsAre("TOPO_OPEN_BOUNDARY", "TOPO_NON_MANIFOLD_EDGE"));
  EXPECT_EQ(book.issues[0].value, 6);
  EXPECT_EQ(book.issues[1].value, 1);
  EXPECT_EQ(book.issues[1].threshold, 2);
}

TEST(ModelCheck, BrokenTopologyIsToldWhereItIs)
{
  const auto bowTie = CountsOf(Check(BowTie()));
  for (const char* code : {"TOPO_SHAPE_INVALID", "TOPO_WIRE_INVALID", "TOPO_FACE_INVALID"})
    EXPECT_EQ(bowTie.count(code), 1U) << code;

  const ModelCheckReport open = Check(FaceWithin({{0, 0, 0}, {9, 0, 0}, {9, 9, 0}}, false));
  EXPECT_EQ(FirstOf(open, "TOPO_WIRE_OPEN").value, BRepCheck_NotClosed);

  BRep_Builder builder;
  TopoDS_Edge strayed = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(9, 0, 0));
  TopoDS_Vertex first, last;
  TopExp::Vertices(strayed, first, last);
  builder.UpdateVertex(last, gp_Pnt(9, 5, 0), 1e-7);
  EXPECT_EQ(FirstOf(Check(strayed), "TOPO_EDGE_INVALID").subIndex, 1);

  TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 10, 10).Shape();
  TopTools_IndexedMapOfShape edges;
  TopExp::MapShapes(box, TopAbs_EDGE, edges);
  builder.SameParameter(TopoDS::Edge(edges(3)), false);
  EXPECT_EQ(FirstOf(Check(box), "GEO_EDGE_SAMEPARAM").severity, "warning");

  const ModelCheckReport flat = Check(BRepPrimAPI_MakeBox(1e-3, 1e-3, 1e-3).Shape());
  EXPECT_NEAR(FirstOf(flat, "GEO_SOLID_ZERO_VOLUME").value, 1e-9, 1e-12);

  // A solid between two shells that lie beside each other.
  TopoDS_Solid apart;
  builder.MakeSolid(apart);
  for (const double x : {0.0, 50.0})
    builder.Add(apart,
                TopExp_Explorer(BRepPrimAPI_MakeBox(gp_Pnt(x, 0, 0), 9, 9, 9).Shape(), TopAbs_SHELL)
                  .Current());
  EXPECT_EQ(FirstOf(Check(apart), "TOPO_SOLID_INVALID").subIndex, 1);
}

TEST(ModelCheck, LimitsThatAreNoneSwitchTheirCheckOff)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(0.5, 0.5, 0.5).Shape();
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    ModelCheckOptions options;
    options.tinyFaceArea = none;
    EXPECT_THAT(CountsOf(Check(box, options)), ElementsAre(std::pair("GEO_EDGE_SHORT", 12)));
    options.shortEdgeThreshold = none;
    EXPECT_THAT(Check(box, options).issues, IsEmpty());
  }
}

TEST(ModelCheck, OfEachShapeTheFirstIssuesAreKept)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(0.5, 0.5, 0.5).Shape();
  ModelCheckOptions options;
  for (const int most : {3, 1, 0, -7}) {
    options.maxIssuesPerShape = most;
    const ModelCheckReport report =
      ModelCheckAnalyzer::Analyze({box, TopoDS_Shape(), box}, options);
    const int kept = std::max(most, 1);
    ASSERT_EQ(report.issueCount, 2 * kept);
    EXPECT_EQ(report.issues[static_cast<std::size_t>(kept - 1)].shapeIndex, 0);
    EXPECT_EQ(report.issues[static_cast<std::size_t>(kept)].shapeIndex, 2);
  }
}

// An edge without any curve has no length, and stops nothing.
TEST(ModelCheck, WhatCannotBeMeasuredCostsOneCheck)
{
  BRep_Builder builder;
  TopoDS_Edge bare;
  builder.MakeEdge(bare);
  const ModelCheckReport report =
    Check(CompoundOf({bare, BRepPrimAPI_MakeBox(0.5, 0.5, 0.5).Shape()}));
  EXPECT_TRUE(report.success);
  EXPECT_EQ(CountsOf(report)["GEO_EDGE_SHORT"], 12);
}
