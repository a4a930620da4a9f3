// Where the kernel's exact distance is wrong for solids that overlap, and what becomes of such
// pairs in a collision check. When one of the first tests fails, the kernel is cured of it.

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/ExactStages.h"

#include "support/CollisionScenes.h"

#include <BRepExtrema_DistShapeShape.hxx>
#include <BRep_Builder.hxx>
#include <StdFail_NotDone.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

struct Pair
{
  TopoDS_Shape first, second;
  double overlap; // volume
};

// A ball around a point in the tube of a ring, larger than the tube.
Pair BallInRing()
{
  return {BRepPrimAPI_MakeSphere(3), BRepPrimAPI_MakeTorus(4, 1).Shape().Moved(Shift(5, 0, 0)),
          15.63885};
}

// As a boolean gives its result.
Pair BoxInCompound()
{
  TopoDS_Compound compound;
  BRep_Builder().MakeCompound(compound);
  BRep_Builder().Add(compound, BRepPrimAPI_MakeBox(10, 10, 10).Shape());
  return {compound, BRepPrimAPI_MakeBox(gp_Pnt(4, 4, 4), 1, 1, 1), 1};
}

// Small balls, turned by chance, halfway through the side of a cylinder: those that the kernel
// holds apart from it.
std::vector<Pair> BallsHeldApart(int count)
{
  const TopoDS_Shape cylinder = BRepPrimAPI_MakeCylinder(3, 7);
  Random random(5);
  std::vector<Pair> wrong;
  for (int i = 0; i < count; ++i) {
    const double angle = random.Real(0, 2 * M_PI), height = random.Real(1, 6);
    const double place = random.Real(3.02, 3.06);
    const TopoDS_Shape ball = BRepPrimAPI_MakeSphere(0.1).Shape().Moved(
      Shift(place * std::cos(angle), place * std::sin(angle), height) * RandomTurn(random));
    if (Orvex::ExactDistanceOf(cylinder, ball)->value > 1e-6)
      wrong.push_back({cylinder, ball, Orvex::CommonVolumeOrNone(cylinder, ball, 1e-7)});
  }
  return wrong;
}

TEST(KernelDefect, TheExactDistanceOfABallInARingIsRefused)
{
  const Pair pair = BallInRing();
  EXPECT_THROW(BRepExtrema_DistShapeShape(pair.first, pair.second, Extrema_ExtFlag_MINMAX,
                                          Extrema_ExtAlgo_Grad),
               StdFail_NotDone);
}

TEST(KernelDefect, TheExactDistanceDoesNotLookInsideASolidInACompound)
{
  const Pair pair = BoxInCompound();
  EXPECT_NEAR(Orvex::ExactDistanceOf(pair.first, pair.second)->value, 4, 1e-9);
}

TEST(KernelDefect, TheExactDistanceOfSomeBallsThroughACylinderIsPositive)
{
  const std::vector<Pair> wrong = BallsHeldApart(1000);
  EXPECT_FALSE(wrong.empty());
  for (const Pair& pair : wrong)
    EXPECT_GT(pair.overlap, 3e-4);
}

TEST(ExactDistance, OverlapsThatItMissesAreFoundByTheCheck)
{
  std::vector<Pair> pairs = BallsHeldApart(1000);
  pairs.insert(pairs.end(), {BallInRing(), BoxInCompound()});
  for (const Pair& pair : pairs) {
    const std::vector<OrvexModelPart> parts = {OrvexModelPart::fromShape(pair.first, ""),
                                               OrvexModelPart::fromShape(pair.second, "")};
    OrvexCollisionTrace trace;
    trace.checkCleared = true;
    OrvexCollisionConfig config;
    config.narrowPhaseMode = 1;
    config.relativeMeshDeflection = 0.02;
    const OrvexCollisionEngine engine(config, OrvexSceneStats::fromParts(parts));
    OrvexCollisionMetrics metrics;
    EXPECT_TRUE(engine.compute(parts, {}, &metrics, &trace).empty());
    EXPECT_EQ(trace.clearedBy(OrvexCollisionStage::Exact), 1);
    ASSERT_EQ(trace.missedOverlaps.size(), 1u);
    EXPECT_NEAR(trace.missedOverlaps[0].overlapVolume, pair.overlap, 1e-4);
    EXPECT_EQ(std::isinf(trace.missedOverlaps[0].reportedDistance), metrics.failedPairs == 1);
  }
}

} // namespace
