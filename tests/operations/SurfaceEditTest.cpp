#include "operations/AdvancedSurfaceOp.h"
#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/SurfaceInputs.h"

#include <BRepFilletAPI_MakeFillet.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_Parabola.hxx>
#include <TColgp_Array1OfPnt.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

using Op = AdvancedSurfaceOp;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TopoDS_Face FlatFace(double width, double height)
{
  return BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()), 0, width, 0, height);
}

TopoDS_Face TubeFace(double radius, double height)
{
  return TopoDS::Face(
    PartsOf(BRepPrimAPI_MakeCylinder(radius, height).Shape(), TopAbs_FACE).front());
}

TEST(Extend, EachSideByItsNumber)
{
  struct Row
  {
    int side;
    double xMin, xMax, yMin, yMax;
  };
  for (const Row& row : {Row{1, -3, 10, 0, 4}, Row{2, 0, 13, 0, 4}, Row{3, 0, 10, -3, 4},
                         Row{4, 0, 10, 0, 7}, Row{0, 0, 13, 0, 4}, Row{7, 0, 13, 0, 4}})
    for (const int continuity : {-1, 0, 1}) {
      const Bnd_Box box = BoundsOf(Op::ExtendSurface(FlatFace(10, 4), 3, row.side, continuity));
      SCOPED_TRACE(row.side);
      EXPECT_NEAR(box.CornerMin().X(), row.xMin, 1e-6);
      EXPECT_NEAR(box.CornerMax().X(), row.xMax, 1e-6);
      EXPECT_NEAR(box.CornerMin().Y(), row.yMin, 1e-6);
      EXPECT_NEAR(box.CornerMax().Y(), row.yMax, 1e-6);
    }
  EXPECT_NEAR(AreaOf(Op::ExtendSurface(TubeFace(5, 10), 2, 4, 1)), 2 * M_PI * 5 * 12, 1e-3);
}

TEST(Extend, AContinuityOfTwoExtendsNothingAndSaysSo)
{
  OperationReport report;
  const TopoDS_Shape face = Op::ExtendSurface(FlatFace(10, 4), 3, 2, 2, &report);
  EXPECT_NEAR(AreaOf(face), 40, 1e-9);
  ASSERT_EQ(report.notes.size(), 1U);
  EXPECT_EQ(report.attempts.front().description, "end of U, order 4");
}

TEST(Extend, LengthsAndFacesThatAreNoneGiveNull)
{
  for (const double length : {0.0, -1.0, kNaN, kInfinity})
    EXPECT_TRUE(Op::ExtendSurface(FlatFace(10, 4), length, 2, 1).IsNull());
  EXPECT_TRUE(Op::ExtendSurface({}, 1, 2, 1).IsNull());
  const TopoDS_Face unbounded = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()));
  EXPECT_TRUE(Op::ExtendSurface(unbounded, 1, 2, 1).IsNull());
}

std::vector<double> AreasOfParts(const TopoDS_Shape& shape)
{
  std::vector<double> areas;
  for (const TopoDS_Shape& face : PartsOf(shape, TopAbs_FACE))
    areas.push_back(AreaOf(face));
  std::sort(areas.begin(), areas.end());
  return areas;
}

TEST(Trim, AFaceIsSplitAlongTheCutter)
{
  const TopoDS_Edge across = LineEdge(gp_Pnt(3, 0, 0), gp_Pnt(3, 4, 0));
  const TopoDS_Edge above = LineEdge(gp_Pnt(3, -1, 5), gp_Pnt(3, 6, 5));
  for (const TopoDS_Shape& split : {Op::TrimSurface(FlatFace(10, 4), across, false),
                                    Op::TrimSurface(FlatFace(10, 4), above, true)}) {
    const std::vector<double> areas = AreasOfParts(split);
    ASSERT_EQ(areas.size(), 2U);
    EXPECT_NEAR(areas[0], 12, 1e-6);
    EXPECT_NEAR(areas[1], 28, 1e-6);
  }
  const TopoDS_Face wide = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()), -20, 20, -20, 20);
  const std::vector<double> areas = AreasOfParts(Op::TrimSurface(wide, CircleWire(3, 5), true));
  ASSERT_EQ(areas.size(), 2U);
  EXPECT_NEAR(areas[0], M_PI * 25, 1e-4);
  EXPECT_NEAR(areas[1], 1600 - M_PI * 25, 1e-4);
}

TEST(Trim, CuttersThatAreNone)
{
  const TopoDS_Shape vertex = BRepBuilderAPI_MakeVertex(gp_Pnt(1, 1, 0)).Shape();
  EXPECT_TRUE(Op::TrimSurface({}, vertex, false).IsNull());
  EXPECT_TRUE(Op::TrimSurface(FlatFace(10, 4), {}, false).IsNull());
  EXPECT_TRUE(Op::TrimSurface(FlatFace(10, 4), vertex, true).IsNull());
  const TopoDS_Shape whole = Op::TrimSurface(FlatFace(10, 4), vertex, false);
  EXPECT_NEAR(AreaOf(whole), 40, 1e-9) << "no edge was bound";
  EXPECT_TRUE(Op::TrimSurface(FlatFace(10, 4), PoleOfSphere(), false).IsNull())
    << "crashes the kernel";
}

TEST(Intersect, SectionsHaveTheLengthOfTheCurve)
{
  const TopoDS_Face plane = BRepBuilderAPI_MakeFace(gp_Pln(gp_Ax3(LevelAt(3))), -9, 9, -9, 9);
  EXPECT_NEAR(LengthOf(Op::IntersectSurfaces(plane, TubeFace(5, 10))), 2 * M_PI * 5, 1e-6);
  EXPECT_NEAR(LengthOf(Op::IntersectSurfaces(BoxAt(0, 0, 0), BoxAt(5, 5, 5))), 30, 1e-6);
  const OperandPair apart = DisjointBoxes();
  OperationReport report;
  const TopoDS_Shape empty = Op::IntersectSurfaces(apart.first, apart.second, &report);
  ASSERT_FALSE(empty.IsNull());
  EXPECT_EQ(empty.NbChildren(), 0);
  EXPECT_EQ(report.notes.size(), 1U);
  EXPECT_TRUE(Op::IntersectSurfaces(apart.first, {}).IsNull());
}

TEST(Project, AlongADirectionOrTheNormals)
{
  const TopoDS_Edge slope = LineEdge(gp_Pnt(1, 1, 2), gp_Pnt(7, 1, 10));
  const gp_Dir down(0, 0, -1), skew(1, 0, -1);
  EXPECT_NEAR(LengthOf(Op::ProjectCurveToSurface(slope, FlatFace(20, 4), &down)), 6, 1e-6);
  EXPECT_NEAR(LengthOf(Op::ProjectCurveToSurface(slope, FlatFace(20, 4), &skew)), 14, 1e-6);
  EXPECT_NEAR(LengthOf(Op::ProjectCurveToSurface(slope, FlatFace(20, 4), nullptr)), 6, 1e-6);
  const gp_Dir nowhere(kNaN, 0, 0);
  EXPECT_NEAR(LengthOf(Op::ProjectCurveToSurface(slope, FlatFace(20, 4), &nowhere)), 6, 1e-6);
  EXPECT_TRUE(Op::ProjectCurveToSurface(TopoDS_Shape(), FlatFace(20, 4), &down).IsNull());
  EXPECT_TRUE(Op::ProjectCurveToSurface(slope, slope, &down).IsNull());
}

TEST(Project, OnTheFirstFaceOfASolid)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0);
  const TopoDS_Edge line = LineEdge(gp_Pnt(-5, 2, 2), gp_Pnt(-5, 8, 2));
  OperationReport report;
  const TopoDS_Shape onBox = Op::ProjectCurveToSurface(line, box, nullptr, &report);
  const TopoDS_Shape onFace =
    Op::ProjectCurveToSurface(line, PartsOf(box, TopAbs_FACE).front(), nullptr);
  EXPECT_NEAR(LengthOf(onBox), 6, 1e-6);
  EXPECT_EQ(LengthOf(onBox), LengthOf(onFace));
  EXPECT_EQ(report.notes.size(), 1U);
}

// The kernel crashes with some of these, and with others it never comes to an end.
TEST(Project, CurvesThatReachTooFarAreRefused)
{
  TColgp_Array1OfPnt poles(1, 3);
  poles(1) = gp_Pnt(0, -5, 5);
  poles(2) = gp_Pnt(1e18, 0, 5);
  poles(3) = gp_Pnt(0, 5, 5);
  const TopoDS_Edge bow = BRepBuilderAPI_MakeEdge(new Geom_BezierCurve(poles));
  const TopoDS_Edge parabola = BRepBuilderAPI_MakeEdge(new Geom_Parabola(gp::XOY(), 1));
  const TopoDS_Edge endless = BRepBuilderAPI_MakeEdge(gp_Lin(gp::OY()));
  const TopoDS_Edge line = LineEdge(gp_Pnt(9, -1e16, 5), gp_Pnt(9, 1e16, 5));
  const TopoDS_Face tube = TubeFace(5, 10);
  for (const TopoDS_Edge& edge : {bow, parabola, endless, line}) {
    OperationReport trimmed, projected;
    EXPECT_TRUE(Op::TrimSurface(tube, edge, true, &trimmed).IsNull());
    EXPECT_TRUE(Op::ProjectCurveToSurface(edge, tube, nullptr, &projected).IsNull());
    EXPECT_EQ(trimmed.outcome, OperationOutcome::Refused);
    EXPECT_EQ(projected.outcome, OperationOutcome::Refused);
  }
}

// The first pair of faces of a shape with the wanted kinds of surfaces that shares an edge.
SurfaceContinuityMetrics BetweenKinds(const TopoDS_Shape& shape, GeomAbs_SurfaceType one,
                                      GeomAbs_SurfaceType other)
{
  const std::vector<TopoDS_Shape> faces = PartsOf(shape, TopAbs_FACE);
  for (const TopoDS_Shape& first : faces)
    for (const TopoDS_Shape& second : faces) {
      const TopoDS_Face a = TopoDS::Face(first), b = TopoDS::Face(second);
      const SurfaceContinuityMetrics metrics = Op::EvaluateFaceContinuity(a, b, 1e-6);
      if (!a.IsSame(b) && metrics.sharedEdgeFound && BRepAdaptor_Surface(a).GetType() == one &&
          BRepAdaptor_Surface(b).GetType() == other)
        return metrics;
    }
  ADD_FAILURE() << "no such faces";
  return {};
}

TEST(FaceContinuity, CreasesFilletsAndSeams)
{
  const SurfaceContinuityMetrics crease =
    BetweenKinds(BoxAt(0, 0, 0), GeomAbs_Plane, GeomAbs_Plane);
  EXPECT_TRUE(crease.valid);
  EXPECT_NEAR(crease.normalAngleDegrees, 90, 1e-9);
  EXPECT_EQ(crease.level, 0);

  const TopoDS_Shape box = BoxAt(0, 0, 0);
  BRepFilletAPI_MakeFillet fillet(box);
  fillet.Add(2, TopoDS::Edge(PartsOf(box, TopAbs_EDGE).front()));
  const SurfaceContinuityMetrics round =
    BetweenKinds(fillet.Shape(), GeomAbs_Plane, GeomAbs_Cylinder);
  EXPECT_NEAR(std::fmod(round.normalAngleDegrees, 180), 0, 1e-3);
  EXPECT_NEAR(round.curvatureDifference, 0, 1e-9) << "-1/2 along and 0 across, of which 0 is more";

  const TopoDS_Shape parts =
    Op::TrimSurface(FlatFace(10, 4), LineEdge(gp_Pnt(3, 0, 0), gp_Pnt(3, 4, 0)), false);
  EXPECT_EQ(BetweenKinds(parts, GeomAbs_Plane, GeomAbs_Plane).level, 2);
}

TEST(FaceContinuity, WithoutAFaceOrASharedEdge)
{
  const SurfaceContinuityMetrics none = Op::EvaluateFaceContinuity({}, FlatFace(1, 1), 1e-6);
  EXPECT_FALSE(none.valid);
  EXPECT_EQ(none.normalAngleDegrees, 180);
  EXPECT_EQ(none.curvatureDifference, 1e9);
  const auto apart = Op::EvaluateFaceContinuity(FlatFace(2, 2), FlatFace(1, 1), kNaN);
  EXPECT_TRUE(apart.valid);
  EXPECT_FALSE(apart.sharedEdgeFound);
}

} // namespace
