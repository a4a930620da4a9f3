// Where the kernel's exact distance is wrong for solids that overlap, and what becomes of such a
// pair in a collision check. When the first test fails, the kernel is cured.

#include "collision/OrvexCollisionEngine.h"

#include "support/CollisionScenes.h"

#include <BRepExtrema_DistShapeShape.hxx>
#include <StdFail_NotDone.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

// A ball in the tube of a ring, as wide as three of it.
const TopoDS_Shape kBall = BRepPrimAPI_MakeSphere(3).Shape();
const TopoDS_Shape kRing = BRepPrimAPI_MakeTorus(4, 1).Shape().Moved(Shift(5, 0, 0));
constexpr double kOverlap = 15.63885;

TEST(KernelDefect, TheExactDistanceOfABallInARingIsRefused)
{
  EXPECT_THROW(
    BRepExtrema_DistShapeShape(kBall, kRing, Extrema_ExtFlag_MINMAX, Extrema_ExtAlgo_Grad),
    StdFail_NotDone);
}

TEST(ExactDistance, APairWithoutOneIsCountedAsFailedAndFoundByTheCheck)
{
  std::vector<OrvexModelPart> parts = {OrvexModelPart::fromShape(kBall, "ball"),
                                       OrvexModelPart::fromShape(kRing, "ring")};
  OrvexCollisionTrace trace;
  trace.checkCleared = true;
  OrvexCollisionMetrics metrics;
  OrvexCollisionConfig config;
  config.relativeMeshDeflection = 0.02;
  const OrvexCollisionEngine engine(config, OrvexSceneStats::fromParts(parts));
  EXPECT_TRUE(engine.compute(parts, {}, &metrics, &trace).empty());
  EXPECT_EQ(metrics.failedPairs, 1);
  EXPECT_EQ(trace.clearedBy(OrvexCollisionStage::Exact), 1);
  ASSERT_EQ(trace.missedOverlaps.size(), 1u);
  EXPECT_NEAR(trace.missedOverlaps[0].overlapVolume, kOverlap, 1e-4);
}

} // namespace
