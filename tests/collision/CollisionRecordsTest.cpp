#include "collision/OrvexCollisionConfig.h"
#include "collision/OrvexCollisionResult.h"
#include "collision/OrvexModelPart.h"
#include "collision/OrvexSceneStats.h"

#include <BRepPrimAPI_MakeBox.hxx>

#include <gtest/gtest.h>

namespace {

using State = OrvexCollisionResult::State;

TEST(CollisionRecords, StatesHaveTextsAndTellWhetherThereIsACollision)
{
  const std::pair<int, const char*> texts[] = {
    {0, "Clear"}, {1, "Contact"}, {2, "Intersect"}, {3, "Containment"}};
  for (const auto& [value, text] : texts) {
    OrvexCollisionResult result;
    result.state = static_cast<State>(value);
    EXPECT_EQ(result.stateString(), text);
    EXPECT_EQ(result.hasCollision(), value > 0);
    EXPECT_EQ(result.hasIntersection(), value > 1);
  }
  EXPECT_EQ(OrvexCollisionResult::stateToString(static_cast<State>(7)), "Unknown");
  EXPECT_FALSE(OrvexCollisionResult().hasCollision());
}

TEST(CollisionRecords, APartOfABoxHasItsMeasuresAndOneOfNothingHasNone)
{
  const auto box = OrvexModelPart::fromShape(BRepPrimAPI_MakeBox(gp_Pnt(1, 1, 1), 2, 3, 4), "box");
  EXPECT_NEAR(box.volume, 24, 1e-9);
  EXPECT_NEAR(box.surfaceArea, 52, 1e-9);
  EXPECT_TRUE(box.centroid.IsEqual(gp_Pnt(2, 2.5, 3), 1e-9));
  EXPECT_TRUE(box.isValid());
  const auto nothing = OrvexModelPart::fromShape({}, "nothing");
  EXPECT_EQ(nothing.name, "nothing");
  EXPECT_FALSE(nothing.isValid());
  EXPECT_TRUE(nothing.box.IsVoid());
  EXPECT_EQ(nothing.volume, 0);
}

TEST(CollisionRecords, MergedStatisticsAddCountsAndKeepTheLargerMeasures)
{
  OrvexSceneStats first{2, 10, 5, 1, 0, 7, 0, 0, false};
  first.merge({3, 4, 8, 1, 6, 0, 0, 9, true});
  EXPECT_EQ(first.partCount, 5u);
  EXPECT_EQ(first.sceneDiagonal, 10);
  EXPECT_EQ(first.largestVolume, 8);
  EXPECT_EQ(first.medianVolume, 1);
  EXPECT_EQ(first.measureA + first.measureB + first.measureD, 6 + 7 + 9);
  EXPECT_TRUE(first.flag);
}

TEST(CollisionRecords, StatisticsOfPartsMeasureWhatIsThere)
{
  std::vector<OrvexModelPart> parts(1); // nothing in it
  for (const double volume : {3.0, -4.0, 1.0, 2.0}) {
    parts.push_back(OrvexModelPart::fromShape(BRepPrimAPI_MakeBox(2, 3, 6), ""));
    parts.back().volume = volume;
  }
  const auto stats = OrvexSceneStats::fromParts(parts);
  EXPECT_EQ(stats.partCount, 5u);
  EXPECT_NEAR(stats.sceneDiagonal, 7, 1e-6);
  EXPECT_EQ(stats.largestVolume, 4);
  EXPECT_EQ(stats.medianVolume, 3);
  parts.pop_back();
  EXPECT_EQ(OrvexSceneStats::fromParts(parts).medianVolume, 3); // 1, 3, 4
  EXPECT_EQ(OrvexSceneStats::fromParts({}).sceneDiagonal, 0);
}

// preset, index, filter, exact, volume, shape, serial, seconds
TEST(CollisionRecords, PresetsAreThoseOfTheTable)
{
  using Row = std::tuple<int, int, int, int, bool, bool, bool, double>;
  const auto row = [](const OrvexCollisionConfig& c) {
    return Row(c.preset, c.spaceIndexKind, c.narrowPhaseMode, c.exactMode, c.computeOverlapVolume,
               c.keepOverlapShape, c.serial, c.timeLimitSeconds);
  };
  using Config = OrvexCollisionConfig;
  EXPECT_EQ(row(Config::createFastConfig()), Row(0, 1, 0, 0, false, false, false, 0));
  EXPECT_EQ(row(Config::createBalancedConfig()), Row(1, 1, 5, 1, true, false, false, 0));
  EXPECT_EQ(row(Config::createStrictConfig()), Row(2, 2, 5, 1, true, false, true, 240));
  EXPECT_EQ(row(Config::createAccurateConfig()), Row(3, 2, 0, 1, true, true, false, 0));
  EXPECT_EQ(row(Config::createVisualizationConfig()), Row(3, 1, 0, 1, true, true, false, 0));
  EXPECT_EQ(row(Config()), Row(0, 1, 0, 1, true, false, false, 0));
}

} // namespace
