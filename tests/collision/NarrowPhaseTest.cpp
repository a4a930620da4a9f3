#include "collision/internal/FaceBoxes.h"
#include "collision/internal/TriBVHTests.h"

#include "support/Random.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>

#include <gtest/gtest.h>

using namespace Orvex;
using OrvexTest::Random;
using OrvexTest::Seed;
using OrvexTest::SeedNote;

namespace {

using Tree = std::shared_ptr<const TriBVH>;

gp_XYZ RandomPoint(Random& random, double size)
{
  return {random.Real(-size, size), random.Real(-size, size), random.Real(-size, size)};
}

// Small triangles scattered about a place.
Tree RandomMesh(Random& random, int triangles, const gp_XYZ& place, double spread)
{
  std::vector<gp_XYZ> vertices;
  std::vector<TriBVH::Triangle> corners;
  for (int i = 0; i < triangles; ++i) {
    const gp_XYZ at = place + RandomPoint(random, spread);
    for (int k = 0; k < 3; ++k)
      vertices.push_back(at + RandomPoint(random, 0.5));
    corners.push_back({3 * i, 3 * i + 1, 3 * i + 2});
  }
  return TriBVH::Of(vertices, corners);
}

template <typename Visit>
void EachPair(const TriBVH& a, const TriBVH& b, Visit&& visit)
{
  for (int i = 0; i < static_cast<int>(a.triangles.size()); ++i)
    for (int j = 0; j < static_cast<int>(b.triangles.size()); ++j)
      visit(a.Corners(i), b.Corners(j));
}

double TrueDistance(const TriBVH& a, const TriBVH& b)
{
  double best = BoxLimits::kNone;
  EachPair(a, b, [&](const TriangleCorners& p, const TriangleCorners& q) {
    best = std::min(best, SquaredTriangleDistance(p, q));
  });
  return std::sqrt(best);
}

// The walk in its plain form: at each pair both trees are descended, one side at a time, so that
// node pairs are met again and again.
class PlainWalk
{
public:
  PlainWalk(const TriBVH& a_, const TriBVH& b_) : a(a_), b(b_)
  {}

  bool LeavesOverlap(double tolerance)
  {
    for (Start(); !stack.empty();) {
      const auto [p, q] = Pop();
      if (!MayOverlap(p.box, q.box, tolerance))
        continue;
      if (p.IsLeaf() && q.IsLeaf())
        return true;
    }
    return false;
  }

  MeshDistance Distance(double tolerance, double farFactor)
  {
    const double tolerance2 = tolerance * tolerance, far2 = farFactor * farFactor * tolerance2;
    const double roots = std::sqrt(SquaredDistance(a.At(a.Root()).box, b.At(b.Root()).box));
    if (roots > 10 * tolerance)
      return {true, roots, false};
    double best = BoxLimits::kNone;
    for (Start(); !stack.empty();) {
      if (best < BoxLimits::kNone && best > far2 && best > tolerance2)
        return {true, std::sqrt(best), false};
      const auto [p, q] = Pop();
      if (!p.IsLeaf() || !q.IsLeaf())
        continue;
      for (int i = p.firstTriangle; i < p.firstTriangle + p.triangleCount; ++i)
        for (int j = q.firstTriangle; j < q.firstTriangle + q.triangleCount; ++j)
          best = std::min(best, SquaredTriangleDistance(a.Corners(i), b.Corners(j)));
    }
    return {true, std::sqrt(best), tolerance2 >= best};
  }

private:
  void Start()
  {
    stack = {{a.Root(), b.Root()}};
  }

  std::pair<TriBVH::Node, TriBVH::Node> Pop()
  {
    const auto [first, second] = stack.back();
    stack.pop_back();
    const TriBVH::Node &p = a.At(first), &q = b.At(second);
    if (!p.IsLeaf())
      stack.insert(stack.end(), {{p.left, second}, {p.right, second}});
    if (!q.IsLeaf())
      stack.insert(stack.end(), {{first, q.left}, {first, q.right}});
    return {p, q};
  }

  const TriBVH& a;
  const TriBVH& b;
  std::vector<std::pair<int, int>> stack;
};

// --- Triangles ---

TEST(TriangleMath, DistancesFollowClosedFormulas)
{
  const TriangleCorners p = {gp_XYZ(0, 0, 0), gp_XYZ(4, 0, 0), gp_XYZ(0, 4, 0)};
  const auto shifted = [&p](double x, double y, double z) {
    return TriangleCorners{p[0] + gp_XYZ(x, y, z), p[1] + gp_XYZ(x, y, z), p[2] + gp_XYZ(x, y, z)};
  };
  EXPECT_DOUBLE_EQ(SquaredTriangleDistance(p, shifted(1, 1, 3)), 9);      // above the inside
  EXPECT_DOUBLE_EQ(SquaredTriangleDistance(p, shifted(7, 0, 4)), 9 + 16); // corner to corner
  EXPECT_DOUBLE_EQ(SquaredTriangleDistance(p, shifted(4, 4, 0)), 8);      // corner to edge
  EXPECT_DOUBLE_EQ(SquaredPointTriangleDistance({3, 3, 1}, p), 2 + 1);
  EXPECT_DOUBLE_EQ(SquaredSegmentDistance({0, 0, 0}, {2, 0, 0}, {1, -1, 5}, {1, 1, 5}), 25);
  EXPECT_DOUBLE_EQ(SquaredSegmentDistance({0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {5, 1, 0}), 2);
  EXPECT_DOUBLE_EQ(SquaredSegmentDistance({1, 1, 1}, {1, 1, 1}, {1, 1, 3}, {1, 1, 3}), 4);
}

// Against points spread over both triangles: never above them, and close to the nearest two.
TEST(TriangleMath, DistancesOfRandomTrianglesAreThoseOfTheirPoints)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (int run = 0; run < 200; ++run) {
    const TriangleCorners p = {RandomPoint(random, 1), RandomPoint(random, 1),
                               RandomPoint(random, 1)};
    const gp_XYZ away(random.Real(2, 4), 0, 0);
    const TriangleCorners q = {away + RandomPoint(random, 1), away + RandomPoint(random, 1),
                               away + RandomPoint(random, 1)};
    constexpr int kSteps = 12;
    double sampled = BoxLimits::kNone;
    for (int i = 0; i <= kSteps; ++i)
      for (int j = 0; i + j <= kSteps; ++j) {
        const double u = double(i) / kSteps, v = double(j) / kSteps;
        const gp_XYZ onP = p[0] + (p[1] - p[0]) * u + (p[2] - p[0]) * v;
        sampled = std::min(sampled, std::sqrt(SquaredPointTriangleDistance(onP, q)));
      }
    const double distance = std::sqrt(SquaredTriangleDistance(p, q));
    EXPECT_LE(distance, sampled + 1e-12);
    EXPECT_GE(distance, sampled - 0.35);
    EXPECT_NEAR(distance, std::sqrt(SquaredTriangleDistance(q, p)), 1e-12);
  }
}

TEST(TriangleMath, TrianglesMeetThroughEdgesAndInsideEachOther)
{
  const TriangleCorners flat = {gp_XYZ(0, 0, 0), gp_XYZ(4, 0, 0), gp_XYZ(0, 4, 0)};
  EXPECT_TRUE(TrianglesMeet(flat, {gp_XYZ(1, 1, -1), gp_XYZ(1, 1, 1), gp_XYZ(9, 9, 1)}, 0));
  EXPECT_TRUE(TrianglesMeet(flat, {gp_XYZ(1, 1, 0), gp_XYZ(1.5, 1, 0), gp_XYZ(1, 1.5, 0)}, 0));
  EXPECT_FALSE(TrianglesMeet(flat, {gp_XYZ(1, 1, 1), gp_XYZ(1, 2, 1), gp_XYZ(2, 1, 1)}, 0.1));
  EXPECT_FALSE(TrianglesMeet(flat, {gp_XYZ(3, 3, -1), gp_XYZ(3, 3, 1), gp_XYZ(9, 9, 1)}, 0));
}

// --- Trees ---

TEST(TriBVH, HoldsEveryTriangleInOneLeafOfEightAtMost)
{
  Random random(Seed());
  for (const int count : {1, 8, 9, 100}) {
    const Tree tree = RandomMesh(random, count, {0, 0, 0}, 10);
    EXPECT_EQ(tree->nodes.size() == 1, count <= 8);
    int next = 0, leaves = 0;
    for (int n = 0; n <= tree->Root(); ++n) {
      const TriBVH::Node& node = tree->At(n);
      if (!node.IsLeaf()) {
        EXPECT_LT(std::max(node.left, node.right), n);
        continue;
      }
      EXPECT_EQ(node.firstTriangle, next); // leaves come in the order of their triangles
      EXPECT_LE(node.triangleCount, 8);
      next += node.triangleCount;
      ++leaves;
      for (int i = node.firstTriangle; i < next; ++i)
        EXPECT_EQ(SquaredDistance(BoxOf(tree->Corners(i)), node.box), 0);
    }
    EXPECT_EQ(next, count);
    EXPECT_EQ(static_cast<int>(tree->nodes.size()), 2 * leaves - 1);
  }
  EXPECT_EQ(TriBVH::Of({}, {}), nullptr);
}

TEST(TriBVH, TakesThePlacedTrianglesOfAShape)
{
  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(100, 0, 0));
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(1, 2, 3).Shape().Moved(shift);
  EXPECT_EQ(TriBVH::Of(box), nullptr);
  BRepMesh_IncrementalMesh(box, 0.1);
  const Tree tree = TriBVH::Of(box);
  EXPECT_EQ(tree->triangles.size(), 12u);
  EXPECT_EQ(tree->At(tree->Root()).box.min, (std::array<double, 3>{100, 0, 0}));
  EXPECT_EQ(tree->At(tree->Root()).box.max, (std::array<double, 3>{101, 2, 3}));
}

// --- Two trees ---

// The verdicts of the walk that visits each node pair once are those of the plain form.
TEST(TriBVHTests, VerdictsAreThoseOfThePlainWalk)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  int overlaps = 0, within = 0, givenUp = 0;
  for (int run = 0; run < 300; ++run) {
    const Tree a = RandomMesh(random, 1 + random.Index(40), {0, 0, 0}, 2);
    const Tree b = RandomMesh(random, 1 + random.Index(40), {random.Real(0, 6), 0, 0}, 2);
    const double tolerance = random.Real(0.001, 0.5), far = random.Real(1, 20);
    const bool overlap = LeavesMayOverlap(*a, *b, tolerance);
    EXPECT_EQ(overlap, PlainWalk(*a, *b).LeavesOverlap(tolerance));
    const MeshDistance ours = DistanceOf(*a, *b, tolerance, {10000000, far});
    const MeshDistance plain = PlainWalk(*a, *b).Distance(tolerance, far);
    EXPECT_EQ(ours.isKnown, plain.isKnown);
    EXPECT_EQ(ours.isWithin, plain.isWithin);
    if (!plain.isWithin) {
      EXPECT_DOUBLE_EQ(ours.distance, plain.distance);
    }
    overlaps += overlap;
    within += ours.isWithin;
    givenUp += ours.distance > TrueDistance(*a, *b) + 1e-9;
  }
  // All kinds of answers were among them.
  EXPECT_GT(overlaps, 20);
  EXPECT_GT(within, 20);
  EXPECT_GT(givenUp, 5);
}

TEST(TriBVHTests, DistancesAndMeetingsAreThoseOfAllPairs)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (int run = 0; run < 100; ++run) {
    const Tree a = RandomMesh(random, 60, {0, 0, 0}, 2);
    const Tree b = RandomMesh(random, 60, {random.Real(0, 6), 0, 0}, 2);
    const double truth = TrueDistance(*a, *b), tolerance = 0.2;
    const MeshDistance ours = DistanceOf(*a, *b, tolerance, {10000000, 1e9});
    EXPECT_EQ(ours.isWithin, truth <= tolerance);
    if (ours.distance <= 10 * tolerance && !ours.isWithin) {
      EXPECT_NEAR(ours.distance, truth, 1e-12);
    }
    EXPECT_LE(ours.isWithin ? 0 : ours.distance, truth + 1e-12);
    bool meet = false;
    EachPair(*a, *b, [&](const TriangleCorners& p, const TriangleCorners& q) {
      meet = meet || TrianglesMeet(p, q, 0);
    });
    EXPECT_EQ(MeshesMeet(*a, *b, 0), meet);
  }
}

TEST(TriBVHTests, LimitsEndTheSearchForADistance)
{
  Random random(Seed());
  const Tree a = RandomMesh(random, 200, {0, 0, 0}, 5), b = RandomMesh(random, 200, {0, 0, 0}, 5);
  // Not even to the first leaves.
  EXPECT_FALSE(DistanceOf(*a, *b, 1e-6, {3, 1e12}).isKnown);
  // To the first leaves, and no farther.
  const MeshDistance early = DistanceOf(*a, *b, 1e-6, {40, 1e12});
  EXPECT_TRUE(early.isKnown);
  EXPECT_GT(early.distance, TrueDistance(*a, *b));
  // Limits that are none.
  EXPECT_NEAR(DistanceOf(*a, *b, 1e-6, {-1, 1e12}).distance, TrueDistance(*a, *b), 1e-12);
}

TEST(TriBVHTests, BoxesTenTolerancesApartAnswerForTheirTriangles)
{
  const auto triangleAt = [](double x) {
    return TriBVH::Of({gp_XYZ(x, 0, 0), gp_XYZ(x + 1, 0, 0), gp_XYZ(x, 1, 0)}, {{0, 1, 2}});
  };
  const MeshDistance apart = DistanceOf(*triangleAt(0), *triangleAt(12), 1, {});
  EXPECT_TRUE(apart.isKnown);
  EXPECT_FALSE(apart.isWithin);
  EXPECT_DOUBLE_EQ(apart.distance, 11);
}

TEST(TriangleGrid, ComparesTrianglesOfOneCellOnly)
{
  Random random(Seed());
  const Tree a = RandomMesh(random, 300, {0, 0, 0}, 3);
  const Tree near = RandomMesh(random, 300, {1, 0, 0}, 3),
             far = RandomMesh(random, 5, {90, 0, 0}, 1);
  const MeshDistance met = DistanceInGrid(*a, *near, 0.1);
  EXPECT_TRUE(met.isKnown && met.isWithin);
  EXPECT_EQ(met.distance, 0);
  EXPECT_FALSE(DistanceInGrid(*a, *far, 0.1).isKnown);
}

TEST(FaceBoxes, OverlapNeedsFacesThatAreNear)
{
  const TopoDS_Shape big = BRepPrimAPI_MakeBox(10, 10, 10);
  const auto boxAt = [](double x) {
    return FaceBoxes::Of(BRepPrimAPI_MakeBox(gp_Pnt(x, 4, 4), 1, 1, 1));
  };
  EXPECT_EQ(FaceBoxes::Of(big).entries.size(), 6u);
  EXPECT_TRUE(FacesMayOverlap(FaceBoxes::Of(big), boxAt(9.5), 0));
  EXPECT_TRUE(FacesMayOverlap(FaceBoxes::Of(big), boxAt(10.15), 0.1));
  EXPECT_FALSE(FacesMayOverlap(FaceBoxes::Of(big), boxAt(10.25), 0.1));
  // Wholly inside, and near no face: not seen.
  EXPECT_FALSE(FacesMayOverlap(FaceBoxes::Of(big), boxAt(4.5), 0.1));
  EXPECT_TRUE(FaceBoxes::Of({}).entries.empty());
}

} // namespace
