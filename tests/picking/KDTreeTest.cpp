#include "picking/OrvexKDTree.h"

#include "picking/OrvexPickShapeData.h"
#include "support/PlainPick.h"
#include "support/Plate.h"
#include "support/Random.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

#include <limits>

using namespace OrvexTest;

namespace {

gp_Pnt PointIn(Random& random, double from, double to)
{
  const double x = random.Real(from, to), y = random.Real(from, to);
  return {x, y, random.Real(from, to)};
}

gp_Dir AnyDirection(Random& random)
{
  for (;;) {
    const gp_XYZ vector = PointIn(random, -1, 1).XYZ();
    if (vector.Modulus() > 0.1)
      return gp_Dir(vector);
  }
}

// On a coarse grid, so that middles fall on split values, sides are equal and distances tie.
gp_Pnt GridPoint(Random& random, int count)
{
  const int x = random.Index(count), y = random.Index(count);
  return {x * 0.5, y * 0.5, random.Index(count) * 0.5};
}

PickTriangles OnGrid(Random& random, std::size_t count, int places)
{
  PickTriangles triangles;
  while (triangles.size() < count)
    triangles.push_back(PickTriangle(GridPoint(random, places), GridPoint(random, places),
                                     GridPoint(random, places)));
  return triangles;
}

PickTriangles Scattered(Random& random, std::size_t count)
{
  PickTriangles triangles;
  while (triangles.size() < count) {
    const gp_Pnt a = PointIn(random, 0, 100);
    const double size = std::pow(10, random.Real(-4, 1.5)), thin = std::pow(10, random.Real(-7, 0));
    const gp_Vec along(AnyDirection(random)), aside(AnyDirection(random));
    // Every other one has sides of very unequal lengths at its first corner.
    const double other = size * (random.Index(2) == 0 ? 1 : std::pow(10, random.Real(-5, 0)));
    triangles.push_back(PickTriangle(a, a.Translated(along * size),
                                     a.Translated(along * other + aside * (other * thin))));
  }
  return triangles;
}

// Gives each triangle a face of its own, by which it is told in a hit.
void GiveFaces(PickTriangles& triangles)
{
  for (OrvexTriangleData& triangle : triangles) {
    TopoDS_Compound face;
    BRep_Builder().MakeCompound(face);
    triangle.face = face;
  }
}

// Rays from inside and outside, along axes, at corners and at the middles of sides.
struct Ray
{
  gp_Pnt origin;
  gp_Dir direction;
};

Ray AnyRay(Random& random, const PickTriangles& triangles, double size)
{
  const gp_Pnt origin = PointIn(random, -size, 2 * size);
  const OrvexTriangleData& aim =
    triangles[static_cast<std::size_t>(random.Index(static_cast<int>(triangles.size())))];
  const gp_Pnt middle(0.5 * (aim.A.XYZ() + aim.B.XYZ()));
  switch (random.Index(6)) {
  case 0:
    return {origin, AnyDirection(random)};
  case 1:
    return {gp_Pnt(-1, -1, -1), gp_Dir(gp_Vec(gp_Pnt(-1, -1, -1), aim.B))};
  case 2:
    return {origin, gp_Dir(gp_Vec(origin, aim.B))};
  case 3:
    return {origin, gp_Dir(gp_Vec(origin, middle))};
  case 4:
    return {middle, AnyDirection(random)};
  default:
    return {gp_Pnt(aim.C.X(), aim.C.Y(), -size), gp::DZ()};
  }
}

void ExpectPlainHits(const PickTriangles& given, Random& random, double size, int rays)
{
  PickTriangles triangles = given;
  GiveFaces(triangles);
  const OrvexKDTree tree(triangles);
  const PlainPick plain(triangles);
  int struck = 0;
  for (int i = 0; i < rays && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    const Ray ray = AnyRay(random, triangles, size);
    const auto expected = plain.Nearest(ray.origin, ray.direction);
    const auto hit = tree.NearestHit(ray.origin, ray.direction);
    ASSERT_EQ(hit.has_value(), expected.has_value());
    EXPECT_EQ(tree.CountCandidates(ray.origin, ray.direction),
              plain.Candidates(ray.origin, ray.direction).size());
    if (!expected)
      continue;
    ++struck;
    EXPECT_EQ(hit->distance, expected->distance);
    EXPECT_EQ(hit->point.Distance(expected->point), 0);
    EXPECT_TRUE(hit->face->IsEqual(triangles[expected->place].face));
  }
  EXPECT_GT(struck, rays / 20);
}

TEST(KDTree, LeavesFollowTheRulesOfSplitting)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (const std::size_t count : {0U, 1U, 32U, 33U, 64U, 200U, 1000U, 5000U})
    for (const int places : {1, 2, 4, 30}) {
      const PickTriangles triangles = OnGrid(random, count, places);
      EXPECT_EQ(OrvexKDTree(triangles).Leaves(), PlainLeaves(triangles))
        << count << " on " << places;
    }
  const PickTriangles scattered = Scattered(random, 5000);
  EXPECT_EQ(OrvexKDTree(scattered).Leaves(), PlainLeaves(scattered));
}

TEST(KDTree, StopsAtDepthTwenty)
{
  // Each split leaves all but one triangle on the left.
  PickTriangles triangles;
  for (int i = 0; i < 60; ++i) {
    const double x = std::pow(2, -i);
    triangles.push_back(PickTriangle({x, 0, 0}, {x, 1e-30, 0}, {x, 0, 1e-30}));
  }
  const auto leaves = OrvexKDTree(triangles).Leaves();
  EXPECT_EQ(leaves, PlainLeaves(triangles));
  ASSERT_EQ(leaves.size(), 21U);
  EXPECT_EQ(leaves.front().size(), 40U);
}

TEST(KDTree, CandidatesAreCopiesInTheOrderOfTheLeaves)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  PickTriangles triangles = OnGrid(random, 500, 20);
  GiveFaces(triangles);
  const OrvexKDTree tree(triangles);
  const PlainPick plain(triangles);
  for (int i = 0; i < 200; ++i) {
    const Ray ray = AnyRay(random, triangles, 10);
    const PickPlaces expected = plain.Candidates(ray.origin, ray.direction);
    const PickTriangles candidates = tree.Query(ray.origin, ray.direction);
    ASSERT_EQ(candidates.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k) {
      const OrvexTriangleData& original = triangles[expected[k]];
      EXPECT_TRUE(candidates[k].face.IsEqual(original.face));
      EXPECT_EQ(candidates[k].B.Distance(original.B), 0);
      EXPECT_EQ(LimitsOf(candidates[k].box), LimitsOf(original.box));
    }
  }
}

TEST(KDTree, HitsAreThoseOfGoingThroughAllTriangles)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  ExpectPlainHits(OnGrid(random, 40, 3), random, 1, 2000);
  ExpectPlainHits(OnGrid(random, 3000, 30), random, 15, 2000);
  ExpectPlainHits(Scattered(random, 3000), random, 100, 2000);
}

TEST(KDTree, HitsAreExactFarFromTheOriginAndFromTheTriangles)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  PickTriangles far = OnGrid(random, 1000, 30);
  for (OrvexTriangleData& triangle : far) {
    const gp_Vec away(1e6, -3e6, 7e5);
    triangle = PickTriangle(triangle.A.Translated(away), triangle.B.Translated(away),
                            triangle.C.Translated(away));
  }
  ExpectPlainHits(far, random, 1e7, 2000);
  ExpectPlainHits(OnGrid(random, 1000, 30), random, 1e8, 2000);
  PickTriangles uneven = OnGrid(random, 1000, 30);
  uneven.push_back(PickTriangle({-1e7, -1e7, 3.3}, {1e7, 0, 3.3}, {0, 1e7, 3.3}));
  ExpectPlainHits(uneven, random, 20, 2000);
}

// Needles whose sides at the first corner are of very unequal lengths, and rays along the long one:
// there the roundings of the exact test are largest, and count as it counts them.
TEST(KDTree, NeedlesAreStruckWhereTheExactTestSaysSo)
{
  Random random(23);
  int struck = 0;
  for (int round = 0; round < 4000; ++round) {
    const gp_Pnt a = PointIn(random, -50, 50);
    const gp_Vec along(AnyDirection(random)), aside(AnyDirection(random));
    const double length = random.Real(10, 100);
    const double other = length * std::pow(10, random.Real(-5, -3));
    const double thin = std::pow(10, random.Real(-4, -3));
    PickTriangles needle{PickTriangle(a, a.Translated(along * other + aside * (other * thin)),
                                      a.Translated(along * length))};
    GiveFaces(needle);
    const gp_Dir direction = AnyDirection(random);
    const double sidewards =
      other * std::pow(10, random.Real(-6, -1)) * (random.Index(2) == 0 ? 1 : -1);
    const gp_Pnt target =
      a.Translated(along * (length * random.Real(0, 1)) + aside * (sidewards * thin));
    const Ray ray{target.Translated(gp_Vec(direction) * -80), direction};
    const PlainPick plain(needle);
    const bool expected = plain.Nearest(ray.origin, ray.direction).has_value();
    struck += expected ? 1 : 0;
    EXPECT_EQ(OrvexKDTree(needle).NearestHit(ray.origin, ray.direction).has_value(), expected);
  }
  EXPECT_GT(struck, 500);
}

TEST(KDTree, HitsOnMeshesAreThoseOfAllTriangles)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (TopoDS_Shape shape : {PerforatedPlate(6), BRepPrimAPI_MakeSphere(6).Shape()}) {
    BRepMesh_IncrementalMesh(shape, 0.01);
    OrvexPickShapeData data(shape);
    data.Initialize();
    ExpectPlainHits(data.GetTriangles(), random, 6, 1000);
  }
}

TEST(KDTree, NoTriangleAndNoNumberIsNoHit)
{
  const OrvexKDTree empty({});
  EXPECT_FALSE(empty.NearestHit({0, 0, 0}, gp::DX()));
  EXPECT_TRUE(empty.Query({0, 0, 0}, gp::DX()).empty());

  const double none = std::numeric_limits<double>::quiet_NaN();
  const double endless = std::numeric_limits<double>::infinity();
  PickTriangles triangles = {PickTriangle({0, 0, 0}, {2, 0, 0}, {0, 2, 0})};
  for (const gp_Pnt& corner : {gp_Pnt(none, 0, 0), gp_Pnt(0, endless, 0), gp_Pnt(1e300, 0, 0)})
    triangles.push_back(PickTriangle({0, 0, 1}, {2, 0, 1}, corner));
  const OrvexKDTree tree(triangles);
  for (const gp_Pnt& origin : {gp_Pnt(none, 0, 0), gp_Pnt(0.5, 0.5, endless)})
    EXPECT_FALSE(tree.NearestHit(origin, gp::DZ().Reversed()));
  const auto hit = tree.NearestHit({0.5, 0.5, 5}, gp::DZ().Reversed());
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->distance, 5);
  EXPECT_FALSE(tree.NearestHit({0.5, 0.5, 1e300}, gp_Dir(1, 1e-300, 0)));
}

} // namespace
