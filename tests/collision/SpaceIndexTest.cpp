#include "collision/internal/SpaceIndexes.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

using namespace OrvexTest;

namespace {

using Engine = OrvexCollisionEngine;
using Parts = std::vector<OrvexModelPart>;
using Pairs = std::vector<std::pair<int, int>>;

OrvexModelPart PartAt(double x, double y, double z, double size)
{
  OrvexModelPart part;
  part.box.Update(x, y, z, x + size, y + size, z + size);
  return part;
}

Parts RandomParts(Random& random, int count, double space)
{
  Parts parts;
  for (int i = 0; i < count; ++i)
    parts.push_back(PartAt(random.Real(-space, space), random.Real(-space, space),
                           random.Real(-space, space), random.Real(0.1, 8)));
  return parts;
}

template <typename Test>
Pairs PairsWith(const Parts& parts, Test&& test)
{
  Pairs pairs;
  for (int i = 0; i < static_cast<int>(parts.size()); ++i)
    for (int j = i + 1; j < static_cast<int>(parts.size()); ++j)
      if (test(parts[static_cast<std::size_t>(i)].box, parts[static_cast<std::size_t>(j)].box))
        pairs.emplace_back(i, j);
  return pairs;
}

Pairs Overlapping(const Parts& parts)
{
  return PairsWith(parts, [](const Bnd_Box& a, const Bnd_Box& b) { return !a.IsOut(b); });
}

bool Shares(const Bnd_Box& a, const Bnd_Box& b, double cell)
{
  const gp_XYZ minA = a.CornerMin().XYZ(), maxA = a.CornerMax().XYZ(), minB = b.CornerMin().XYZ(),
               maxB = b.CornerMax().XYZ();
  for (int axis = 1; axis <= 3; ++axis)
    if (std::floor(minA.Coord(axis) / cell) > std::floor(maxB.Coord(axis) / cell) ||
        std::floor(minB.Coord(axis) / cell) > std::floor(maxA.Coord(axis) / cell))
      return false;
  return true;
}

void ExpectSound(const Pairs& pairs)
{
  EXPECT_EQ(std::set<Pairs::value_type>(pairs.begin(), pairs.end()).size(), pairs.size());
  for (const auto& [i, j] : pairs)
    EXPECT_LT(i, j);
}

TEST(GridIndex, ProposesThePartsThatShareACellAndNoOthers)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (const double cell : {1.0, 7.5, 0.05}) { // the last: no part stands in the cells
    const Parts parts = RandomParts(random, 80, 30);
    const Pairs pairs = Engine::GridIndex(parts, cell).collectPairs(parts);
    EXPECT_EQ(pairs, PairsWith(parts, [cell](const Bnd_Box& a, const Bnd_Box& b) {
                return Shares(a, b, cell);
              }));
  }
}

TEST(GridIndex, CellsFollowTheSceneAndAreNoSmallerThanOne)
{
  using Grid = Engine::GridIndex;
  EXPECT_EQ(Grid::CellSizeFor(10, 0), 1);
  EXPECT_EQ(Grid::CellSizeFor(1000, 0), 50);
  EXPECT_EQ(Grid::CellSizeFor(1000, 2), 20);
  for (const double none : {0.0, -5.0, std::nan("")})
    EXPECT_EQ(Grid::CellSizeFor(none, 0), 1);
}

TEST(GridIndex, ABoxThatEndsOnACellBorderIsInTheNextCell)
{
  const Parts parts = {PartAt(0, 0, 0, 1), PartAt(1.2, 0, 0, 0.5), PartAt(2, 0, 0, 0.5)};
  EXPECT_EQ(Engine::GridIndex(parts, 1).collectPairs(parts), (Pairs{{0, 1}}));
}

TEST(GridIndex, HugeFarAndInfinitePartsAreNoTrouble)
{
  Parts parts = {PartAt(-1e9, -1e9, -1e9, 2e9),
                 PartAt(0, 0, 0, 1),
                 PartAt(1e300, 0, 0, 1),
                 PartAt(50, 50, 50, 1),
                 {},
                 {}};
  parts[4].box.SetWhole();
  EXPECT_EQ(Engine::GridIndex(parts, 1).collectPairs(parts),
            (Pairs{{0, 1}, {0, 3}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}));
}

TEST(RTreeIndex, LosesNoPairOfBoxesThatMeet)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (const int maxItems : {-3, 4, 16}) {
    const Parts parts = RandomParts(random, 150, 25);
    const Pairs pairs = Engine::RTreeIndex(parts, maxItems).collectPairs(parts),
                meeting = Overlapping(parts);
    ExpectSound(pairs);
    EXPECT_TRUE(std::includes(pairs.begin(), pairs.end(), meeting.begin(), meeting.end()));
    EXPECT_LT(pairs.size(), 150u * 149 / 2);
  }
}

TEST(RTreeIndex, LeavesHoldEightPartsWhateverIsAskedFor)
{
  Parts parts;
  for (int i = 0; i < 16; ++i)
    parts.push_back(PartAt(i < 8 ? i : 100 + i, 0, 0, 0.1));
  // Two leaves of eight whose boxes are apart: each part is paired within its own.
  EXPECT_EQ(Engine::RTreeIndex(parts, 4).collectPairs(parts).size(), 2u * 28);
}

TEST(OctreeIndex, PairsThePartsOfALeafOnly)
{
  // On both sides of the middle: they overlap and are not proposed.
  Parts parts;
  for (int i = 0; i < 20; ++i)
    parts.push_back(PartAt(i < 10 ? -1.5 : 0.5, 0, 0, 2));
  EXPECT_EQ(Engine::OctreeIndex(parts, 6, 16).collectPairs(parts).size(), 2u * 45);
  EXPECT_EQ(Engine::OctreeIndex(parts, 6, 20).collectPairs(parts).size(), 190u);
  // The root is the last level there is.
  EXPECT_EQ(Engine::OctreeIndex(parts, 1, 16).collectPairs(parts).size(), 190u);
  for (const int none : {0, -4})
    EXPECT_TRUE(Engine::OctreeIndex(parts, none, 16).collectPairs(parts).empty());
}

TEST(OctreeIndex, PartsWithOneMiddleStayTogether)
{
  const Parts parts(1000, PartAt(0, 0, 0, 1));
  EXPECT_EQ(Engine::OctreeIndex(parts, 6, 16).collectPairs(parts).size(), 1000u * 999 / 2);
}

TEST(LBVHIndex, PairsNeighboursOnTheCurve)
{
  Random random(Seed());
  const Parts parts = RandomParts(random, 40, 30);
  for (const int span : {-2, 1}) {
    const Pairs pairs = Engine::LBVHIndex(parts, span).collectPairs(parts);
    ExpectSound(pairs);
    EXPECT_EQ(pairs.size(), 39u);
  }
  EXPECT_EQ(Engine::LBVHIndex(parts, 3).collectPairs(parts).size(), 39u + 38 + 37);
  // Along X the curve is the order of the parts.
  Parts row;
  for (const double x : {30.0, 0.0, 20.0, 10.0})
    row.push_back(PartAt(x, 0, 0, 1));
  EXPECT_EQ(Engine::LBVHIndex(row, 1).collectPairs(row), (Pairs{{0, 2}, {1, 3}, {2, 3}}));
}

TEST(LBVHIndex, CodesInterleaveTheBitsWithXHighest)
{
  EXPECT_EQ(Engine::LBVHIndex::MortonCode(1, 0, 0), 4u);
  EXPECT_EQ(Engine::LBVHIndex::MortonCode(2, 1, 3), 0b100011u | 0b000000u | 0b001000u);
  EXPECT_EQ(Engine::LBVHIndex::MortonCode(1023, 1023, 1023), (1u << 30) - 1);
}

TEST(SpaceIndexes, LeaveOutPartsWithoutABoxAndTakeAnyNumber)
{
  const double nan = std::nan("");
  Parts parts = {PartAt(0, 0, 0, 1), {}, PartAt(0.5, 0, 0, 1), {}, PartAt(nan, 0, nan, 1)};
  const Parts nothing(12);
  const std::unique_ptr<Engine::SpaceIndexBase> indexes[] = {
    std::make_unique<Engine::GridIndex>(parts, 1),
    std::make_unique<Engine::OctreeIndex>(parts, 6, 16),
    std::make_unique<Engine::RTreeIndex>(parts, 16), std::make_unique<Engine::LBVHIndex>(parts, 4)};
  for (const auto& index : indexes) {
    const Pairs pairs = index->collectPairs(parts);
    EXPECT_EQ(std::count(pairs.begin(), pairs.end(), std::make_pair(0, 2)), 1);
    for (const auto& [i, j] : pairs)
      EXPECT_TRUE(i % 2 == 0 && j % 2 == 0);
  }
  EXPECT_TRUE(Engine::GridIndex(nothing, 1).collectPairs(nothing).empty());
  EXPECT_TRUE(Engine::OctreeIndex(nothing, 6, 16).collectPairs(nothing).empty());
  EXPECT_TRUE(Engine::RTreeIndex(nothing, 16).collectPairs(nothing).empty());
  EXPECT_TRUE(Engine::LBVHIndex(nothing, 1).collectPairs(nothing).empty());
}

} // namespace
