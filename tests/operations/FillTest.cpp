#include "operations/AdvancedSurfaceOp.h"
#include "support/Measures.h"
#include "support/SurfaceInputs.h"

#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepExtrema_DistShapeShape.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace OrvexTest;
using testing::HasSubstr;

namespace {

using Op = AdvancedSurfaceOp;
using Level = SurfaceContinuityLevel;
using Wires = std::vector<TopoDS_Wire>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TopoDS_Wire SaddleWire()
{
  return PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(10, 0, 2), gp_Pnt(10, 10, 0), gp_Pnt(0, 10, 2)},
                     true);
}

double DistanceBetween(const TopoDS_Shape& one, const TopoDS_Shape& other)
{
  return BRepExtrema_DistShapeShape(one, other).Value();
}

// The largest distance of the corners and middles of a wire's edges from a face.
double DistanceOfBorder(const TopoDS_Wire& wire, const TopoDS_Shape& face)
{
  double largest = 0;
  for (const TopoDS_Shape& edge : PartsOf(wire, TopAbs_EDGE)) {
    const BRepAdaptor_Curve curve(TopoDS::Edge(edge));
    for (const double t : {0.0, 0.25, 0.5}) {
      const double at =
        curve.FirstParameter() + t * (curve.LastParameter() - curve.FirstParameter());
      const TopoDS_Vertex vertex = BRepBuilderAPI_MakeVertex(curve.Value(at));
      largest = std::max(largest, DistanceBetween(vertex, face));
    }
  }
  return largest;
}

TEST(Fill, BordersAreMet)
{
  EXPECT_NEAR(AreaOf(Op::FillHole(SquareWire(3, 10), Level::Position)), 100, 1e-6);
  EXPECT_NEAR(AreaOf(Op::FillHole(CircleWire(3, 5), Level::Position)), M_PI * 25, 0.1);
  const TopoDS_Face saddle = Op::FillHole(SaddleWire(), Level::Position);
  EXPECT_LT(DistanceOfBorder(SaddleWire(), saddle), 1e-2);
  EXPECT_GT(AreaOf(saddle), 100) << "over a square of 10";
}

TEST(Fill, LevelsFallBackToPositionWithoutAFace)
{
  OperationReport report;
  const TopoDS_Face face = Op::FillHole(SquareWire(0, 10), {}, Level::Tangent, &report);
  EXPECT_NEAR(AreaOf(face), 100, 1e-6);
  ASSERT_EQ(report.attempts.size(), 2U);
  EXPECT_EQ(report.attempts[0].description, "levels 1111");
  EXPECT_EQ(report.attempts[0].reason, "an edge with a level lies on no face");
  EXPECT_EQ(report.attempts[1].description, "levels 0000");
  EXPECT_EQ(report.Winner(), &report.attempts[1]);
}

TEST(Fill, LevelsHoldAgainstSplines)
{
  const TopoDS_Shape box =
    BRepBuilderAPI_NurbsConvert(BRepPrimAPI_MakeBox(3, 4, 5).Shape()).Shape();
  const TopoDS_Wire wire = TopoDS::Wire(PartsOf(box, TopAbs_WIRE).front());
  OperationReport report;
  EXPECT_NEAR(AreaOf(Op::FillHole(wire, {}, Level::Tangent, &report)), 20, 1e-3);
  EXPECT_EQ(report.attempts.size(), 1U);
}

TEST(Fill, TheFirstConstraintWithANumberCounts)
{
  OperationReport report;
  const auto levelsOf = [&](const std::vector<FillHoleEdgeConstraint>& constraints, Level level) {
    EXPECT_FALSE(Op::FillHole(SquareWire(0, 10), constraints, level, &report).IsNull());
    return report.attempts.front().description;
  };
  EXPECT_EQ(levelsOf({{2, 1, 1}, {2, 2, 1}, {4, 2, kNaN}}, Level::Position), "levels 0102");
  EXPECT_EQ(levelsOf({{5, 1, 1}, {0, 1, 1}, {-1, 2, 1}}, Level::Position), "levels 0000");
  EXPECT_EQ(levelsOf({{1, 7, 1}, {3, 0, 1}}, Level::Curvature), "levels 0202");
  EXPECT_EQ(levelsOf({}, static_cast<Level>(7)), "levels 0000");
}

TEST(Fill, WhatHasNoBorderIsRefused)
{
  OperationReport report;
  TopoDS_Wire empty;
  BRep_Builder().MakeWire(empty);
  for (const TopoDS_Wire& wire : {TopoDS_Wire(), empty, CircleWire(kNaN, 5)}) {
    EXPECT_TRUE(Op::FillHole(wire, {}, Level::Position, &report).IsNull());
    EXPECT_EQ(report.outcome, OperationOutcome::Refused);
    EXPECT_TRUE(Op::BuildPatchSurface(wire, {}, 1, 0).IsNull());
  }
  EXPECT_TRUE(Op::BuildPatchSurface(SquareWire(0, 10), {gp_Pnt(kNaN, 5, 5)}, 1, 0).IsNull());
}

TEST(Patch, GoesThroughItsPoints)
{
  const gp_Pnt top(5, 5, 1);
  for (const double quality : {-1.0, 0.5, 1.0, 1.5, 2.0, 1e9, kNaN}) {
    const TopoDS_Face patch = Op::BuildPatchSurface(SquareWire(0, 10), {top}, quality, 0);
    const TopoDS_Vertex vertex = BRepBuilderAPI_MakeVertex(top);
    EXPECT_LT(DistanceBetween(vertex, patch), 0.02) << quality;
    EXPECT_LT(DistanceOfBorder(SquareWire(0, 10), patch), 0.02) << quality;
  }
}

TEST(Patch, SettingsFollowTheQuality)
{
  OperationReport report;
  const auto settingsOf = [&](double quality, int continuity) {
    Op::BuildPatchSurface(SquareWire(0, 10), {}, quality, continuity, &report);
    return report.attempts.front().description;
  };
  EXPECT_EQ(settingsOf(0, -1), "degree 2, 2 iterations, tolerance 0.0001, levels 0000");
  EXPECT_EQ(settingsOf(1, 1), "degree 3, 2 iterations, tolerance 0.01, levels 1111");
  ASSERT_EQ(report.attempts.size(), 2U);
  EXPECT_EQ(report.attempts[1].description, "degree 3, 2 iterations, tolerance 0.001, levels 0000");
  EXPECT_EQ(settingsOf(1.5, 2), "degree 3, 4 iterations, tolerance 0.01, levels 2222");
  EXPECT_EQ(settingsOf(2, 9), "degree 5, 4 iterations, tolerance 0.01, levels 2222");
}

TEST(Network, SkinAndCapsAreClosed)
{
  const TopoDS_Shape drum =
    Op::BuildSurfaceNetwork({CircleWire(0, 5), CircleWire(10, 5)}, Level::Position);
  EXPECT_EQ(drum.ShapeType(), TopAbs_SHELL);
  EXPECT_TRUE(BRep_Tool::IsClosed(drum));
  EXPECT_NEAR(AreaOf(drum), 2 * M_PI * 5 * 10 + 2 * M_PI * 25, 0.2);
  const TopoDS_Shape prism =
    Op::BuildSurfaceNetwork({SquareWire(0, 10), SquareWire(7, 10)}, Level::Position);
  EXPECT_NEAR(AreaOf(prism), 4 * 70 + 200, 1e-4);
  EXPECT_EQ(PartsOf(prism, TopAbs_FACE).size(), 6U);
  const Wires three = {CircleWire(0, 5), CircleWire(5, 5), CircleWire(10, 5)};
  EXPECT_NEAR(AreaOf(Op::BuildSurfaceNetwork(three, Level::Position)),
              2 * M_PI * 5 * 10 + 2 * M_PI * 25, 0.2);
}

TEST(Network, WiresRunningAgainstEachOtherAreNotTwisted)
{
  const TopoDS_Wire triangle =
    PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(6, 0, 0), gp_Pnt(0, 6, 0)}, true);
  BRepBuilderAPI_MakeWire against;
  against.Add(LineEdge(gp_Pnt(6, 0, 5), gp_Pnt(0, 0, 5)));
  against.Add(LineEdge(gp_Pnt(6, 0, 5), gp_Pnt(0, 6, 5)));
  against.Add(LineEdge(gp_Pnt(0, 6, 5), gp_Pnt(0, 0, 5)));
  EXPECT_NEAR(AreaOf(Op::BuildSurfaceNetwork({triangle, against.Wire()}, Level::Position)),
              2 * 18 + 5 * (12 + std::sqrt(72)), 1e-4);
}

TEST(Network, WiresWithoutASkinAreFilledOneByOne)
{
  OperationReport report;
  const TopoDS_Shape caps =
    Op::BuildSurfaceNetwork({SquareWire(0, 10), CircleWire(10, 5)}, {}, Level::Position, &report);
  EXPECT_NEAR(AreaOf(caps), 100 + M_PI * 25, 0.1);
  EXPECT_EQ(report.outcome, OperationOutcome::Built);
  EXPECT_FALSE(report.attempts.front().built);
  EXPECT_EQ(report.attempts.size(), 3U);
}

TEST(Network, WiresAndConstraintsAreChecked)
{
  const TopoDS_Wire circle = CircleWire(0, 5), other = CircleWire(10, 5);
  const TopoDS_Wire open = PolygonWire({gp_Pnt(0, 0, 5), gp_Pnt(1, 0, 5), gp_Pnt(1, 1, 5)}, false);
  for (const Wires& wires :
       {Wires{}, Wires{circle}, Wires{circle, circle}, Wires{circle, CircleWire(0, 5)},
        Wires{circle, {}}, Wires{circle, open}, Wires{circle, CircleWire(kNaN, 5)}})
    EXPECT_TRUE(Op::BuildSurfaceNetwork(wires, Level::Position).IsNull());
  const auto built = [&](const std::vector<SurfaceNetworkBoundaryConstraint>& constraints) {
    return !Op::BuildSurfaceNetwork({circle, other}, constraints, Level::Position).IsNull();
  };
  EXPECT_TRUE(built({{1, 1, 1}, {2, 7, kNaN}}));
  EXPECT_FALSE(built({{1, 0, 1}, {1, 0, 1}}));
  EXPECT_FALSE(built({{0, 0, 1}}));
  EXPECT_FALSE(built({{3, 0, 1}}));
}

} // namespace
