#include "collision/InterferenceChecker.h"

#include "support/CollisionScenes.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepAlgoAPI_Common.hxx>
#include <Standard_Failure.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

using Checker = InterferenceChecker;
using Pairs = Checker::IndexPairs;

TopoDS_Shape BoxFrom(double x, double y, double z, double size = 10)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), size, size, size);
}

std::vector<TopoDS_Shape> RowOfBoxes(int count)
{
  std::vector<TopoDS_Shape> row;
  for (int i = 0; i < count; ++i)
    row.push_back(BoxFrom(9.0 * i, 0, 0));
  return row;
}

Pairs Sorted(Pairs pairs)
{
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}

TEST(InterferenceChecker, OneShapeGivesNothingAndAsksNobody)
{
  const auto never = [](auto, auto) -> bool { throw std::logic_error("asked"); };
  for (const std::vector<TopoDS_Shape>& shapes :
       {std::vector<TopoDS_Shape>(), std::vector<TopoDS_Shape>{BoxFrom(0, 0, 0)}}) {
    EXPECT_TRUE(Checker::FindInterferencesWithProgress(shapes, 0, never).empty());
    EXPECT_TRUE(Checker::FindCollisionsFast(shapes, never, nullptr).empty());
    EXPECT_TRUE(Checker::FindCollisionsDetailed(shapes, {}, never, nullptr).empty());
  }
}

TEST(InterferenceChecker, MeasuresTheSceneForTheEngine)
{
  // A scene of diagonal 30: parts 0.002 apart are in contact by 1e-4 of that, 0.004 apart are not.
  for (const double gap : {0.002, 0.004}) {
    const std::vector<TopoDS_Shape> shapes = {
      BoxFrom(0, 0, 0), BoxFrom(10 + gap, 0, 0), {}, BoxFrom(19, 19, 0, 1)};
    OrvexCollisionMetrics metrics;
    const auto results = Checker::FindCollisionsDetailed(shapes, {}, {}, &metrics);
    EXPECT_EQ(results.size(), gap < 0.003 ? 1u : 0u);
    EXPECT_EQ(metrics.partCount, 4);
    EXPECT_EQ(metrics.candidatePairs, 6);
  }
}

TEST(InterferenceChecker, OverlapShapesComeWithEveryPair)
{
  const auto results = Checker::FindCollisionsWithOverlapShapes(
    RowOfBoxes(4), OrvexCollisionConfig::createFastConfig(), {}, nullptr);
  ASSERT_EQ(results.size(), 3u);
  for (const OrvexCollisionResult& result : results) {
    EXPECT_NEAR(result.overlapVolume, 100, 1e-6);
    EXPECT_NEAR(VolumeOf(result.overlapShape), 100, 1e-6);
  }
  EXPECT_EQ(Checker::FindCollisionsFast(RowOfBoxes(4), {}, nullptr).size(), 3u);
  EXPECT_FALSE(
    Checker::FindCollisionsAccurate(RowOfBoxes(4), {}, nullptr)[0].overlapShape.IsNull());
}

TEST(InterferenceChecker, InterferencesAreThePairsWhoseCommonHasAVertex)
{
  SCOPED_TRACE(SeedNote());
  const std::vector<TopoDS_Shape> shapes = SceneOfParts(Seed(), 40, 4);
  Pairs expected;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    for (std::size_t j = i + 1; j < shapes.size(); ++j) {
      if (BoundsOf(shapes[i]).IsOut(BoundsOf(shapes[j])))
        continue;
      const TopoDS_Shape common =
        BRepAlgoAPI_Common(BRepBuilderAPI_Copy(shapes[i]), BRepBuilderAPI_Copy(shapes[j]));
      if (TopExp_Explorer(common, TopAbs_VERTEX).More())
        expected.emplace_back(i, j);
    }
  EXPECT_GT(expected.size(), 3u);
  std::vector<std::string> before;
  for (const TopoDS_Shape& shape : shapes)
    before.push_back(BrepOf(shape));
  EXPECT_EQ(Sorted(Checker::FindInterferences(shapes, 0.01)), expected);
  for (std::size_t i = 0; i < shapes.size(); ++i)
    EXPECT_TRUE(SameDump(BrepOf(shapes[i]), before[i]));
  // The filter clears only what is apart.
  EXPECT_EQ(Sorted(Checker::FindInterferencesMeshFiltered(shapes, 0.01, {true, 0.1, 0.5}, {})),
            expected);
}

TEST(InterferenceChecker, ProgressCountsRowsOfLeafPairsAndEndsTheSearch)
{
  std::vector<std::pair<std::size_t, std::size_t>> calls;
  const auto note = [&calls](std::size_t done, std::size_t all) {
    calls.emplace_back(done, all);
    return true;
  };
  // Two shapes: one leaf of two rows, four steps of work each.
  Checker::FindInterferencesWithProgress({BoxFrom(0, 0, 0), BoxFrom(9, 0, 0)}, 0, note);
  EXPECT_EQ(calls, (Pairs{{4, 2}, {8, 2}}));
  // Five: leaves of two and three, each with itself, and the two pairs of one with the other.
  calls.clear();
  const std::vector<TopoDS_Shape> five = RowOfBoxes(5);
  EXPECT_EQ(Checker::FindInterferencesWithProgress(five, 0, note).size(), 4u);
  EXPECT_EQ(calls.size(), 2u + 3 + 2 + 3);
  EXPECT_EQ(calls.back().first, 2u * 4 + 3 * 9 + 2 * 6 + 3 * 6);
  // Whatever was found is kept.
  std::size_t before = 0;
  for (std::size_t rows = 1; rows <= calls.size(); ++rows) {
    std::size_t seen = 0;
    const Pairs found = Checker::FindInterferencesWithProgress(
      five, 0, [&](std::size_t, std::size_t) { return ++seen < rows; });
    EXPECT_EQ(seen, rows);
    EXPECT_GE(found.size(), before);
    before = found.size();
  }
  EXPECT_EQ(before, 4u);
}

TEST(InterferenceChecker, TheFilterDropsPairsTwoDeflectionsApart)
{
  // Curved, so that the boxes meet while the shapes are apart.
  const auto pair = [](double gap) {
    return std::vector<TopoDS_Shape>{BRepPrimAPI_MakeSphere(5),
                                     BRepPrimAPI_MakeBox(gp_Pnt(5 + gap, -5, -5), 1, 10, 10)};
  };
  const Checker::MeshOptions filter{true, 0.1, 0.5};
  EXPECT_TRUE(Checker::FindInterferencesMeshFiltered(pair(0.25), 1, filter, {}).empty());
  EXPECT_EQ(Checker::FindInterferencesMeshFiltered(pair(-0.5), 1, filter, {}), (Pairs{{0, 1}}));
  // The kernel refuses a deflection of nothing, and the caller hears of it.
  EXPECT_THROW(Checker::FindInterferencesMeshFiltered(pair(-0.5), 1, {true, 0, 0}, {}),
               Standard_Failure);
}

TEST(InterferenceChecker, OddShapesAndTolerancesAreNoTrouble)
{
  std::vector<TopoDS_Shape> shapes = RowOfBoxes(3);
  shapes.insert(shapes.begin() + 1, TopoDS_Shape());
  shapes.push_back(BoxFrom(0, 0, 0)); // in one place with the first
  shapes.push_back(BoxFrom(-4e6, -4e6, -4e6, 8e6));
  for (const double tolerance : {0.0, -1.0, 1e9, std::nan("")}) {
    const Pairs found = Sorted(Checker::FindInterferences(shapes, tolerance));
    for (const auto& pair : Pairs{{0, 2}, {2, 3}, {0, 4}, {0, 5}, {3, 5}})
      EXPECT_TRUE(std::count(found.begin(), found.end(), pair) || tolerance < 0);
    for (const auto& [i, j] : found)
      EXPECT_TRUE(i != 1 && j != 1);
  }
}

} // namespace
