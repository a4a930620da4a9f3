#include "collision/OrvexCollisionEngine.h"

#include "support/CollisionScenes.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>
#include <omp.h>

#include <set>

using namespace OrvexTest;

namespace {

using Config = OrvexCollisionConfig;
using Results = std::vector<OrvexCollisionResult>;
using Shapes = std::vector<TopoDS_Shape>;
using Stage = OrvexCollisionStage;

TopoDS_Shape BoxFrom(double x, double y, double z, double size = 10)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), size, size, size);
}

OrvexSceneStats StatsOf(const Shapes& shapes)
{
  OrvexSceneStats stats;
  stats.sceneDiagonal = DiagonalOf(shapes);
  return stats;
}

std::vector<OrvexModelPart> PartsOf(const Shapes& shapes)
{
  std::vector<OrvexModelPart> parts;
  for (const TopoDS_Shape& shape : shapes)
    parts.push_back(OrvexModelPart::fromShape(shape, ""));
  return parts;
}

Results Collide(const Shapes& shapes, const Config& config,
                OrvexCollisionMetrics* metrics = nullptr)
{
  return OrvexCollisionEngine(config, StatsOf(shapes)).computeFromShapes(shapes, {}, metrics);
}

std::string Told(const Results& results)
{
  std::string text;
  for (const OrvexCollisionResult& r : results)
    text.append(std::to_string(r.partA))
      .append("-")
      .append(std::to_string(r.partB))
      .append(" ")
      .append(r.stateString())
      .append(" ")
      .append(QByteArray::number(r.overlapVolume, 'g', 17).toStdString())
      .append(" ")
      .append(QByteArray::number(r.distance, 'g', 17).toStdString())
      .append("\n");
  return text;
}

// A row of boxes, each crossing the next one by 1.
Shapes RowOfBoxes(int count)
{
  Shapes row;
  for (int i = 0; i < count; ++i)
    row.push_back(BoxFrom(9.0 * i, 0, 0));
  return row;
}

// --- What two parts are to each other ---

struct TwoParts
{
  const char* name;
  TopoDS_Shape first, second;
  bool collide;
  bool meshDistanceSees; // edges of meshes that pierce triangles are none
  double volume;
  double distance;
};

std::vector<TwoParts> PairsWithFormulas()
{
  const TopoDS_Shape box = BoxFrom(0, 0, 0);
  return {
    {"crossing", box, BoxFrom(8, 7, 6), true, false, 2 * 3 * 4, 0},
    {"touching faces", box, BoxFrom(10, 2, 2), true, true, 0, 0},
    {"touching edges", box, BoxFrom(10, 10, 0), true, true, 0, 0},
    {"apart, boxes meet", BRepPrimAPI_MakeSphere(5),
     BRepPrimAPI_MakeSphere(gp_Pnt(7, 7, 0), 4.5).Shape(), false, false, 0, std::sqrt(98.0) - 9.5},
    {"apart", box, BoxFrom(20, 0, 0), false, false, 0, 10},
    {"one inside the other, at its face", box, BoxFrom(0, 2, 2, 3), true, true, 27, 0},
    {"in one place", box, BoxFrom(0, 0, 0), true, true, 1000, 0},
    {"a drill", box, BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(5, 5, -1), gp::DZ()), 2, 12).Shape(),
     true, false, M_PI * 4 * 10, 0},
  };
}

TEST(CollisionEngine, PairsFollowClosedFormulasInEveryExactMode)
{
  for (const TwoParts& pair : PairsWithFormulas())
    for (const int mode : {0, 1, 2}) {
      SCOPED_TRACE(std::string(pair.name).append(", exactMode ").append(std::to_string(mode)));
      Config config;
      config.exactMode = mode;
      config.farFactor = 1e9;
      config.relativeMeshDeflection = 0.01;
      const Results results = Collide({pair.first, pair.second}, config);
      ASSERT_EQ(results.size(), (mode == 0 ? pair.meshDistanceSees : pair.collide) ? 1u : 0u);
      if (results.empty())
        continue;
      EXPECT_EQ(results[0].state, OrvexCollisionResult::Intersect);
      EXPECT_TRUE(results[0].inContact);
      EXPECT_NEAR(results[0].overlapVolume, mode == 1 ? pair.volume : 0, 1e-6);
      EXPECT_NEAR(results[0].distance, pair.distance, 1e-9);
      EXPECT_TRUE(results[0].overlapShape.IsNull());
    }
}

TEST(CollisionEngine, KeepsTheCommonShapeAndThePointsWhenAsked)
{
  Config config = Config::createAccurateConfig();
  const Results results = Collide({BoxFrom(0, 0, 0), BoxFrom(10, 2, 2)}, config);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_NEAR(results[0].pointOnA.X(), 10, 1e-9);
  EXPECT_NEAR(results[0].pointOnA.Distance(results[0].pointOnB), 0, 1e-9);
  const Results crossing = Collide({BoxFrom(0, 0, 0), BoxFrom(8, 7, 6)}, config);
  EXPECT_NEAR(VolumeOf(crossing.at(0).overlapShape), 24, 1e-9);
  config.computeOverlapVolume = config.keepOverlapShape = false;
  EXPECT_EQ(Collide({BoxFrom(0, 0, 0), BoxFrom(8, 7, 6)}, config).at(0).overlapVolume, 0);
}

TEST(CollisionEngine, TouchingWithinTheFuzzyToleranceIsContact)
{
  OrvexCollisionEngine engine(0.05);
  EXPECT_EQ(engine.fuzzyTolerance(), 0.05);
  const auto count = [&engine](double gap) {
    return engine.computeFromShapes({BoxFrom(0, 0, 0), BoxFrom(10 + gap, 0, 0)}, {}, nullptr)
      .size();
  };
  EXPECT_EQ(count(0.04), 1u);
  EXPECT_EQ(count(0.07), 0u);
  engine.setFuzzyTolerance(-3);
  EXPECT_EQ(engine.fuzzyTolerance(), 0);
  EXPECT_EQ(count(0.04), 0u);
  Config config;
  config.relativeFuzzy = 0.01;
  OrvexSceneStats stats;
  stats.sceneDiagonal = 7;
  engine.setStrategy(config, stats);
  EXPECT_EQ(engine.fuzzyTolerance(), 0.07);
  stats.sceneDiagonal = -7;
  EXPECT_EQ(OrvexCollisionEngine(config, stats).fuzzyTolerance(), 0);
}

// Each filter clears what it can see to be apart, and lets the rest through.
TEST(CollisionEngine, FiltersClearWhatIsApartAndDecideNothingElse)
{
  const Shapes shapes = {BRepPrimAPI_MakeTorus(20, 2),
                         BRepPrimAPI_MakeBox(gp_Pnt(-4, -4, -1), 8, 8, 2),
                         BRepPrimAPI_MakeBox(gp_Pnt(18, -1, -1), 4, 2, 2)};
  for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7}) {
    Config config;
    config.narrowPhaseMode = mode;
    config.relativeMeshDeflection = 0.005;
    OrvexCollisionTrace trace;
    const Results results =
      OrvexCollisionEngine(config, StatsOf(shapes)).compute(PartsOf(shapes), {}, nullptr, &trace);
    SCOPED_TRACE(mode);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].partA * 10 + results[0].partB, 2);
    EXPECT_EQ(trace.clearedBy(Stage::Box), 1); // the two boxes
    // The box in the hole of the ring: the ring is one face, and shares no cell with the box.
    const bool seesTheHole = mode == 0;
    EXPECT_EQ(trace.clearedBy(Stage::Mesh), seesTheHole ? 1 : 0);
    EXPECT_EQ(trace.clearedBy(Stage::Exact), seesTheHole ? 0 : 1);
    EXPECT_EQ(trace.collidedAt(mode == 4 ? Stage::Mesh : Stage::Boolean), 1);
  }
}

TEST(CollisionEngine, WithoutAMeshTheExactStagesDecide)
{
  TopoDS_Compound nothing;
  BRep_Builder().MakeCompound(nothing);
  const TopoDS_Shape edge = TopExp_Explorer(BoxFrom(0, 0, 0), TopAbs_EDGE).Current();
  for (const int mode : {0, 4, 5, 6})
    for (const int exact : {0, 2}) {
      Config config;
      config.narrowPhaseMode = mode;
      config.exactMode = exact;
      OrvexCollisionMetrics metrics;
      const Results results = Collide({edge, BoxFrom(0, 0, -10), nothing}, config, &metrics);
      // An edge has no faces: their boxes rule it out.
      EXPECT_EQ(results.size(), mode >= 5 ? 0u : 1u);
      EXPECT_EQ(metrics.failedPairs, 0);
    }
}

// --- The loop over pairs ---

TEST(CollisionEngine, FewerThanTwoPartsWriteNoMetrics)
{
  OrvexCollisionMetrics metrics;
  metrics.partCount = -7;
  EXPECT_TRUE(OrvexCollisionEngine().computeFromShapes({}, {}, &metrics).empty());
  EXPECT_TRUE(OrvexCollisionEngine().computeFromShapes({BoxFrom(0, 0, 0)}, {}, &metrics).empty());
  EXPECT_EQ(metrics.partCount, -7);
}

TEST(CollisionEngine, AnIndexIsBuiltFromElevenPartsOnAndItsSilenceMeansAllPairs)
{
  const auto proposed = [](const Shapes& shapes, Config config) {
    OrvexCollisionMetrics metrics;
    Collide(shapes, config, &metrics);
    return metrics.candidatePairs;
  };
  const Config config;
  EXPECT_EQ(proposed(RowOfBoxes(10), config), 45);
  EXPECT_LT(proposed(RowOfBoxes(40), config), 40 * 39 / 2);
  Shapes scattered;
  for (int i = 0; i < 11; ++i)
    scattered.push_back(BoxFrom(1000.0 * i, 0, 0, 1));
  EXPECT_EQ(proposed(scattered, config), 55);
  Config other = config;
  other.spaceIndexKind = 0;
  EXPECT_EQ(proposed(RowOfBoxes(20), other), 190);
  other = config;
  other.serial = true;
  EXPECT_EQ(proposed(RowOfBoxes(20), other), 190);
  other.serial = false;
  other.timeLimitSeconds = 100;
  EXPECT_LT(proposed(RowOfBoxes(40), other), 40 * 39 / 2);
}

TEST(CollisionEngine, SmallPartsAreNotPairedInScenesWithVeryLargeOnes)
{
  Shapes shapes = RowOfBoxes(30);
  shapes.push_back(BRepPrimAPI_MakeBox(gp_Pnt(-50, -50, 9), 500, 200, 50));
  Config config;
  config.sceneProfile = 3;
  OrvexSceneStats stats = StatsOf(shapes);
  stats.medianVolume = 1000;
  stats.largestVolume = 5e6;
  EXPECT_EQ(OrvexCollisionEngine(config, stats).computeFromShapes(shapes, {}, nullptr).size(), 30u);
  stats.largestVolume = 99e3;
  EXPECT_EQ(OrvexCollisionEngine(config, stats).computeFromShapes(shapes, {}, nullptr).size(), 59u);
}

TEST(CollisionEngine, LargestOverlapsOfBoxesComeFirst)
{
  Shapes shapes = {BoxFrom(0, 0, 0)};
  for (const double gap : {1.0, 5.0, 3.0})
    shapes.push_back(BoxFrom(10 - gap, 0, 0));
  Config config;
  const auto order = [&] {
    std::vector<double> volumes;
    for (const OrvexCollisionResult& result : Collide(shapes, config))
      volumes.push_back(result.overlapVolume);
    return volumes;
  };
  std::vector<double> volumes = order();
  ASSERT_EQ(volumes.size(), 6u);
  EXPECT_TRUE(std::is_sorted(volumes.rbegin(), volumes.rend()));
  config.keepPairOrder = 1;
  volumes = order();
  EXPECT_FALSE(std::is_sorted(volumes.rbegin(), volumes.rend()));
  EXPECT_NEAR(volumes[0], 100, 1e-6);
}

TEST(CollisionEngine, ProgressCountsEveryPairInBothLoops)
{
  for (const bool serial : {false, true}) {
    Config config;
    config.serial = serial;
    std::vector<std::pair<int, int>> calls;
    const auto thread = omp_get_thread_num();
    OrvexCollisionMetrics metrics;
    OrvexCollisionEngine(config, {})
      .computeFromShapes(
        RowOfBoxes(6),
        [&](int done, int all) {
          EXPECT_EQ(omp_get_thread_num(), thread);
          calls.emplace_back(done, all);
        },
        &metrics);
    ASSERT_EQ(calls.size(), 15u);
    for (int i = 0; i < 15; ++i)
      EXPECT_EQ(calls[static_cast<std::size_t>(i)], std::make_pair(i + 1, 15));
    EXPECT_EQ(metrics.processedPairs, 15);
    EXPECT_EQ(metrics.collisionCount, 5);
    EXPECT_EQ(metrics.reportedDeflection, 0.003);
    EXPECT_GE(metrics.totalSeconds, metrics.cacheSeconds + metrics.narrowPhaseSeconds - 1e-9);
    EXPECT_FALSE(metrics.timedOut);
  }
}

TEST(CollisionEngine, ATimeLimitEndsTheRunWithWhatWasFound)
{
  Config config;
  config.timeLimitSeconds = 1e-9;
  OrvexCollisionMetrics metrics;
  std::vector<std::pair<int, int>> calls;
  const Results results =
    OrvexCollisionEngine(config, {})
      .computeFromShapes(
        RowOfBoxes(6), [&](int done, int all) { calls.emplace_back(done, all); }, &metrics);
  EXPECT_TRUE(metrics.timedOut);
  EXPECT_EQ(metrics.processedPairs, static_cast<int>(results.size()));
  EXPECT_EQ(calls, (std::vector<std::pair<int, int>>{{15, 15}}));
}

TEST(CollisionEngine, ACallbackThatThrowsEndsTheRunInGoodOrder)
{
  struct Stop
  {};
  for (const bool serial : {false, true})
    for (const int at : {1, 2, 5, 15}) {
      Config config;
      config.serial = serial;
      OrvexCollisionEngine engine(config, {});
      const auto parts = PartsOf(RowOfBoxes(6));
      OrvexCollisionTrace trace;
      const auto stop = [at](int done, int) {
        if (done == at)
          throw Stop();
      };
      EXPECT_THROW(engine.compute(parts, stop, nullptr, &trace), Stop);
      EXPECT_EQ(trace.foundBeforeThrow.size(), static_cast<std::size_t>(std::min(at, 5)));
      EXPECT_EQ(engine.lastMetrics().processedPairs, std::min(at, 5));
      EXPECT_EQ(engine.compute(parts, {}, nullptr).size(), 5u);
    }
}

// --- Threads ---

TEST(CollisionEngine, ResultsAreTheSameWithAnyNumberOfThreads)
{
  const int usual = omp_get_max_threads();
  const Shapes shapes = SceneOfParts(5, 24, 3);
  for (const auto& preset : {&Config::createFastConfig, &Config::createAccurateConfig}) {
    Config config = preset();
    config.farFactor = 1e9;
    config.relativeMeshDeflection = 0.005;
    std::set<std::string> told;
    for (const int threads : {1, 2, 8, 2}) {
      omp_set_num_threads(threads);
      for (const TopoDS_Shape& shape : shapes)
        BRepTools::Clean(shape);
      told.insert(Told(Collide(shapes, config)));
    }
    EXPECT_EQ(told.size(), 1u);
    EXPECT_NE(*told.begin(), "");
  }
  omp_set_num_threads(usual);
}

// Parts of one shape, placed many times; two of them share faces with a compound.
TEST(CollisionEngine, SharedShapesAreMeshedOnceAndStayAsTheyAre)
{
  const TopoDS_Shape ball = BRepPrimAPI_MakeSphere(5), bracket = Bracket(10);
  TopoDS_Compound both;
  BRep_Builder().MakeCompound(both);
  BRep_Builder().Add(both, ball.Moved(Shift(0, 0, 8)));
  BRep_Builder().Add(both, bracket);
  Shapes shapes = {both};
  for (int i = 0; i < 12; ++i)
    shapes.push_back((i % 2 ? ball : bracket).Moved(Shift(8.0 * i, 0, 0)));
  const auto withoutMesh = [](const TopoDS_Shape& shape) {
    const TopoDS_Shape copy = BRepBuilderAPI_Copy(shape, false, false);
    return BrepOf(copy);
  };
  // A first mesh takes marks of the kernel from the shapes that say that they were checked.
  BRepMesh_IncrementalMesh(both, 5.0);
  const std::string before = withoutMesh(both);
  OrvexCollisionTrace trace;
  const auto parts = PartsOf(shapes);
  OrvexCollisionEngine engine(Config::createAccurateConfig(), StatsOf(shapes));
  const std::string first = Told(engine.compute(parts, {}, nullptr, &trace));
  EXPECT_EQ(trace.meshedShapes, 3);
  EXPECT_EQ(trace.meshedParts, 13);
  EXPECT_GT(trace.treeBytes, trace.triangles * sizeof(int) * 3);
  EXPECT_TRUE(SameDump(withoutMesh(both), before));
  EXPECT_EQ(Told(engine.compute(parts, {}, nullptr)), first);
}

// --- Caches ---

TEST(CollisionEngine, OnlyPartsInPairsWhoseBoxesMeetAreMeshed)
{
  Shapes shapes = RowOfBoxes(3);
  shapes.push_back(BRepPrimAPI_MakeSphere(gp_Pnt(500, 0, 0), 3));
  shapes.push_back(BRepPrimAPI_MakeTorus(gp_Ax2(gp_Pnt(900, 0, 0), gp::DZ()), 9, 2));
  OrvexCollisionTrace trace;
  OrvexCollisionEngine(Config(), StatsOf(shapes)).compute(PartsOf(shapes), {}, nullptr, &trace);
  EXPECT_EQ(trace.meshedParts, 3);
  EXPECT_FALSE(BRepTools::Triangulation(shapes[3], 1e9));
  EXPECT_TRUE(BRepTools::Triangulation(shapes[0], 1e9));
}

// The caller's promise: a list of the same length is the same list.
TEST(CollisionEngine, ReusedCachesAreThoseOfTheFirstList)
{
  const Shapes apart = {BoxFrom(0, 0, 0), BoxFrom(10.5, 10.5, 0), BoxFrom(0, 0, 10)};
  const Shapes near = {BoxFrom(0, 0, 0), BoxFrom(9, 9, 0), BoxFrom(0, 0, 50)};
  Config config;
  OrvexSceneStats stats = StatsOf(apart);
  OrvexCollisionEngine engine(config, stats);
  EXPECT_EQ(engine.computeFromShapes(apart, {}, nullptr).size(), 1u);
  // Part 1 was not needed before; it is meshed now, as it was then.
  EXPECT_EQ(engine.computeFromShapes(near, {}, nullptr).size(), 0u);
  engine.setStrategy(config, stats);
  EXPECT_EQ(engine.computeFromShapes(near, {}, nullptr).size(), 1u);
  config.reuseCaches = false;
  engine.setStrategy(config, stats);
  EXPECT_EQ(engine.computeFromShapes(apart, {}, nullptr).size(), 1u);
  EXPECT_EQ(engine.computeFromShapes(near, {}, nullptr).size(), 1u);
}

// --- Bad input ---

TEST(CollisionEngine, OddPartsEndAsClearOrFailedPairs)
{
  const TopoDS_Shape box = BoxFrom(0, 0, 0);
  const TopoDS_Shape plane = BRepBuilderAPI_MakeFace(gp_Pln(gp_Pnt(0, 0, 5), gp::DZ())).Shape();
  TopoDS_Shape open = TopExp_Explorer(box, TopAbs_SHELL).Current().EmptyCopied();
  BRep_Builder().Add(open, TopExp_Explorer(box, TopAbs_FACE).Current());
  OrvexModelPart claimed; // a box, and nothing in it
  claimed.box.Update(0, 0, 0, 10, 10, 10);
  std::vector<OrvexModelPart> parts =
    PartsOf({box, {}, open, BoxFrom(5, 5, 5, 1e-3), BoxFrom(-5e6, -5e6, -5e6, 1e7)});
  parts.push_back(claimed);
  OrvexModelPart infinite;
  infinite.shape = plane;
  infinite.box.SetWhole();
  parts.push_back(infinite);
  for (const auto& preset : {&Config::createFastConfig, &Config::createBalancedConfig,
                             &Config::createStrictConfig, &Config::createAccurateConfig}) {
    OrvexSceneStats stats;
    stats.sceneDiagonal = 17;
    OrvexCollisionMetrics metrics;
    const Results results = OrvexCollisionEngine(preset(), stats).compute(parts, {}, &metrics);
    EXPECT_EQ(metrics.candidatePairs, 21);
    for (const OrvexCollisionResult& result : results) {
      EXPECT_NE(result.partA, 1);
      EXPECT_NE(result.partB, 1);
    }
    EXPECT_TRUE(std::any_of(results.begin(), results.end(), [](const OrvexCollisionResult& r) {
      return r.partA == 0 && r.partB == 2;
    }));
  }
}

// Taken at their word, these would be meshed with a million edges to a circle.
TEST(CollisionEngine, SmallScenesAndMissingStatisticsAreMeshedInTime)
{
  const Shapes shapes = {BRepPrimAPI_MakeSphere(0.01), BRepPrimAPI_MakeCylinder(0.01, 0.02)};
  OrvexCollisionTrace trace;
  EXPECT_EQ(OrvexCollisionEngine(1e-5).compute(PartsOf(shapes), {}, nullptr, &trace).size(), 1u);
  EXPECT_LT(trace.triangles, 100000u);
}

TEST(CollisionEngine, NumbersThatAreNoneAreTakenAsTheLeast)
{
  const double nan = std::nan("");
  for (const double value : {nan, 0.0, -1.0, std::numeric_limits<double>::infinity()})
    for (const int filter : {0, 4, 5}) {
      Config config;
      config.narrowPhaseMode = filter;
      config.relativeFuzzy = config.relativeTolerance = config.farFactor = value;
      config.relativeMeshDeflection = config.timeLimitSeconds = value == 0.0 ? 0.0 : nan;
      config.maxItemsPerLeaf = config.octreeMaxDepth = config.mortonNeighbours = -5;
      config.maxNodePairVisits = -1;
      config.exactMode = 2;
      OrvexSceneStats stats;
      stats.sceneDiagonal = value;
      const Shapes boxes = RowOfBoxes(12);
      for (const int index : {1, 2, 3}) {
        config.spaceIndexKind = index;
        EXPECT_GE(OrvexCollisionEngine(config, stats).computeFromShapes(boxes, {}, nullptr).size(),
                  11u)
          << value << ", filter " << filter << ", index " << index;
      }
    }
}

} // namespace
