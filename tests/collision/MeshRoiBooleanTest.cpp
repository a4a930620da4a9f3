#include "collision/OrvexMeshRoiBoolean.h"
#include "collision/internal/RegionReduction.h"
#include "collision/internal/RoiOctree.h"

#include "support/CollisionScenes.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRep_CurveRepresentation.hxx>
#include <BRep_ListOfCurveRepresentation.hxx>
#include <BRep_TEdge.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

using Config = OrvexMeshRoiBooleanConfig;

TopoDS_Shape BoxFrom(double x, double y, double z, double dx, double dy, double dz)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), dx, dy, dz);
}

TopoDS_Shape WholeCommon(const TopoDS_Shape& a, const TopoDS_Shape& b)
{
  return BRepAlgoAPI_Common(BRepBuilderAPI_Copy(a), BRepBuilderAPI_Copy(b));
}

int FaceCount(const TopoDS_Shape& shape)
{
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(shape, TopAbs_FACE, faces);
  return faces.Extent();
}

void ExpectIsTheCommon(const TopoDS_Shape& a, const TopoDS_Shape& b, const Config& config = {})
{
  const TopoDS_Shape whole = WholeCommon(a, b);
  const OrvexMeshRoiResult result = OrvexMeshRoiBoolean::compute(a, b, config, 1e-7);
  EXPECT_EQ(result.message, "");
  EXPECT_FALSE(result.usedFallback);
  const double volume = VolumeOf(whole);
  EXPECT_EQ(result.noOverlap, volume < 1e-7);
  if (result.noOverlap)
    return;
  EXPECT_NEAR(result.volume / volume, 1, 1e-6);
  EXPECT_NEAR(result.area / AreaOf(whole), 1, 1e-6);
  EXPECT_NEAR(VolumeOf(result.shape), result.volume, 1e-9 * volume);
}

TEST(MeshRoiBoolean, GivesTheCommonOfTheWholeShapes)
{
  for (const int mode : {0, 1}) {
    SCOPED_TRACE(mode);
    Config config;
    config.clipMode = mode;
    const TopoDS_Shape box = BoxFrom(0, 0, 0, 10, 10, 10);
    ExpectIsTheCommon(box, BoxFrom(8, 7, 6, 10, 10, 10), config);
    ExpectIsTheCommon(box, BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(5, 5, -1), gp::DZ()), 2, 12),
                      config);
    ExpectIsTheCommon(PerforatedPlate(6, {0, 0, 0}), PerforatedPlate(6, {46, 46, 2.5}), config);
    ExpectIsTheCommon(Gear(20, 12), Gear(20, 12).Moved(Shift(37, 3, 2)), config);
  }
}

// The cap lies between the places where the surfaces cross, beyond the region.
TEST(MeshRoiBoolean, WidensARegionThatTheCommonReachesBeyond)
{
  const TopoDS_Shape wall = BoxFrom(-500, -500, 0, 1000, 1000, 300);
  const TopoDS_Shape ball = BRepPrimAPI_MakeSphere(gp_Pnt(0, 0, -2), 5);
  Config config;
  config.meshDeflection = 0.01;
  OrvexMeshRoiTrace trace;
  const auto result = OrvexMeshRoiBoolean::compute(wall, ball, config, 1e-7, trace);
  EXPECT_TRUE(trace.wasWidened);
  EXPECT_NEAR(result.volume, M_PI * 9 * (3 * 5 - 3) / 3, 1e-6); // a cap of height 3
}

// How many polygons on triangulations the edges of a shape have.
int PolygonCount(const TopoDS_Shape& shape)
{
  int count = 0;
  TopTools_IndexedMapOfShape edges;
  TopExp::MapShapes(shape, TopAbs_EDGE, edges);
  for (int i = 1; i <= edges.Extent(); ++i) {
    const auto edge = opencascade::handle<BRep_TEdge>::DownCast(edges(i).TShape());
    for (const opencascade::handle<BRep_CurveRepresentation>& curve : edge->Curves())
      count += curve->IsPolygonOnTriangulation() ? 1 : 0;
  }
  return count;
}

TEST(MeshRoiBoolean, CallsLeaveNoMeshesOfTheirOwnFaces)
{
  const TopoDS_Shape a = PerforatedPlate(6, {0, 0, 0}), b = PerforatedPlate(6, {46, 46, 2.5});
  OrvexMeshRoiBoolean::compute(a, b, {}, 1e-7);
  const int once = PolygonCount(a);
  EXPECT_GT(once, 0);
  OrvexMeshRoiBoolean::compute(a, b, {}, 1e-7);
  EXPECT_EQ(PolygonCount(a), once);
}

TEST(MeshRoiBoolean, OutcomesWithoutASolidAreTold)
{
  const TopoDS_Shape box = BoxFrom(0, 0, 0, 10, 10, 10);
  const TopoDS_Shape edge = TopExp_Explorer(box, TopAbs_EDGE).Current();
  const std::string null = "One or both input shapes are null.";
  const std::string noMesh = "No mesh data available for one or both shapes.";
  const struct
  {
    const char* name;
    TopoDS_Shape first, second;
    bool noOverlap;
    std::string message;
  } cases[] = {
    {"null first", {}, box, false, null},
    {"null second", box, {}, false, null},
    {"no faces", box, edge, false, noMesh},
    {"apart", box, BoxFrom(50, 0, 0, 1, 1, 1), true, ""},
    {"boxes meet, shapes do not", BRepPrimAPI_MakeSphere(5),
     BRepPrimAPI_MakeSphere(gp_Pnt(7, 7, 0), 4).Shape(), true, ""},
    {"touching faces", box, BoxFrom(10, 2, 2, 5, 5, 5), true, ""},
    {"inside, away from the surface", box, BoxFrom(4, 4, 4, 1, 1, 1), true, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    const auto result = OrvexMeshRoiBoolean::compute(test.first, test.second, {}, 1e-7);
    EXPECT_TRUE(result.shape.IsNull());
    EXPECT_EQ(result.noOverlap, test.noOverlap);
    EXPECT_EQ(result.message, test.message);
    EXPECT_FALSE(result.usedFallback);
    EXPECT_EQ(result.area, 0);
  }
}

TEST(MeshRoiBoolean, TheClipRegionIsTheRegionWithTheLargerMargin)
{
  // Two bars that cross: the region is a cube of side 2.
  const TopoDS_Shape a = BoxFrom(-50, -1, -1, 100, 2, 2), b = BoxFrom(-1, -50, -1, 2, 100, 2);
  const auto margin = [&](double relative, double absolute) {
    Config config;
    config.relativeMargin = relative;
    config.absoluteMargin = absolute;
    OrvexMeshRoiTrace trace;
    EXPECT_NEAR(OrvexMeshRoiBoolean::compute(a, b, config, 1e-7, trace).volume, 8, 1e-5);
    return trace.region.CornerMin().X() - trace.clipRegion.CornerMin().X();
  };
  const double diagonal = std::sqrt(12.0);
  EXPECT_NEAR(margin(0.05, 0), 0.05 * diagonal, 1e-5);
  EXPECT_NEAR(margin(0.05, 1), 1, 1e-5);
  EXPECT_NEAR(margin(0, -3), 2e-7, 1e-9);
}

TEST(MeshRoiBoolean, OddNumbersAndShapesAreNoTrouble)
{
  const TopoDS_Shape a = BoxFrom(0, 0, 0, 10, 10, 10), b = BoxFrom(8, 7, 6, 10, 10, 10);
  const std::string before = BrepOf(BRepBuilderAPI_Copy(a, false, false));
  for (const double value : {0.0, -1.0, std::nan("")}) {
    Config config;
    config.meshDeflection = config.absoluteMargin = config.relativeMargin = value;
    EXPECT_NEAR(OrvexMeshRoiBoolean::compute(a, b, config, value).volume, 24, 1e-4) << value;
  }
  EXPECT_NEAR(OrvexMeshRoiBoolean::compute(a, a, {}, 0).volume, 1000, 1e-6);
  EXPECT_NEAR(
    OrvexMeshRoiBoolean::compute(a, BoxFrom(-5e6, -5e6, -5e6, 5e6 + 1, 1e7, 1e7), {}, 0).volume,
    100, 1e-3);
  EXPECT_TRUE(SameDump(BrepOf(BRepBuilderAPI_Copy(a, false, false)), before));
}

// --- The region ---

TEST(RoiOctree, TheRegionIsThatOfAllPairsOfBoxesThatMeet)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  const auto scatter = [&random](int count, double shift) {
    std::vector<Orvex::TriBBox> triangles(static_cast<std::size_t>(count));
    for (Orvex::TriBBox& triangle : triangles) {
      const gp_Pnt at(shift + random.Real(0, 10), random.Real(0, 10), random.Real(0, 10));
      triangle.box.Add(at);
      triangle.box.Add(
        gp_Pnt(at.XYZ() + gp_XYZ(random.Real(0, 1), random.Real(0, 1), random.Real(0, 1))));
    }
    return triangles;
  };
  for (const double shift : {0.0, 9.0, 10.6, 30.0}) {
    const auto a = scatter(400, 0), b = scatter(400, shift);
    Bnd_Box expected, overall;
    for (const auto& p : a)
      for (const auto& q : b) {
        overall.Add(p.box);
        overall.Add(q.box);
        if (!p.box.IsOut(q.box)) {
          expected.Add(p.box);
          expected.Add(q.box);
        }
      }
    const Bnd_Box region = Orvex::ComputeRoiBoxOctree(a, b, 1e-7, overall);
    ASSERT_EQ(region.IsVoid(), expected.IsVoid());
    if (!region.IsVoid()) {
      EXPECT_TRUE(region.CornerMin().IsEqual(expected.CornerMin(), 0));
      EXPECT_TRUE(region.CornerMax().IsEqual(expected.CornerMax(), 0));
    }
  }
}

// --- Leaving out what is far ---

TEST(RegionReduction, LeavesTheContentOfTheRegionAndFillsFarHoles)
{
  const TopoDS_Shape plate = PerforatedPlate(6, {0, 0, 0});
  EXPECT_EQ(FaceCount(plate), 6 + 36);
  const Orvex::BoxLimits corner{{44, 44, -1}, {61, 61, 6}};
  const TopoDS_Shape reduced = Orvex::RegionReduction(plate).ReducedTo(corner);
  EXPECT_EQ(FaceCount(reduced), 6 + 4);
  EXPECT_TRUE(BRepCheck_Analyzer(reduced).IsValid());
  EXPECT_NEAR(VolumeOf(reduced), 60 * 60 * 5 - 4 * M_PI * 9 * 5, 1e-6);
  // Nothing of it there: it stays as it is.
  EXPECT_TRUE(Orvex::RegionReduction(plate).ReducedTo({{90, 0, 0}, {91, 1, 1}}).IsSame(plate));
}

// A plate with bosses that bear holes, under any placement and orientation: what is in the region
// stays the same.
TEST(RegionReduction, ContentStaysForFeaturesOnFeatures)
{
  TopoDS_Shape shape = BoxFrom(0, 0, 0, 60, 20, 5);
  TopTools_ListOfShape drills;
  for (const double x : {10.0, 30.0, 50.0}) {
    const gp_Ax2 top(gp_Pnt(x, 10, 5), gp::DZ());
    shape = BRepAlgoAPI_Fuse(shape, BRepPrimAPI_MakeCylinder(top, 6, 8));
    // The middle drill goes through the plate, the others end in the boss.
    const double depth = x == 30 ? 14 : 5;
    drills.Append(BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(x, 10, 14 - depth), gp::DZ()), 3, depth));
    for (const double y : {2.0, 18.0})
      for (const double shift : {-7.0, 0.0, 7.0})
        drills.Append(BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(x + shift, y, -1), gp::DZ()), 1, 7));
  }
  shape = CutAway(shape, drills);
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  int reducedOnes = 0;
  for (int run = 0; run < 12; ++run) {
    const TopoDS_Shape placed =
      shape.Moved(Shift(3, 4, 5)).Oriented(run % 2 ? TopAbs_REVERSED : TopAbs_FORWARD);
    const gp_Pnt at(random.Real(0, 55), random.Real(0, 20), random.Real(0, 15));
    const double size = random.Real(5, 25);
    const TopoDS_Shape region = BRepPrimAPI_MakeBox(at, size, size, size);
    const TopoDS_Shape reduced = Orvex::RegionReduction(placed).ReducedTo(
      {{at.X(), at.Y(), at.Z()}, {at.X() + size, at.Y() + size, at.Z() + size}});
    reducedOnes += FaceCount(reduced) < FaceCount(placed);
    EXPECT_NEAR(VolumeOf(WholeCommon(reduced, region)), VolumeOf(WholeCommon(placed, region)),
                1e-6);
  }
  EXPECT_GT(reducedOnes, 6);
}

} // namespace
