// Indexes over the boxes of parts that propose pairs which may meet. Parts whose boxes are void are
// left out. The pairs come sorted, the smaller position first, each once.
#pragma once

#include "collision/OrvexCollisionEngine.h"
#include "kernel/internal/BoxLimits.h"

#include <array>
#include <cstdint>

// Built from outside and not changed afterwards.
class OrvexCollisionEngine::SpaceIndexBase
{
public:
  using Parts = std::vector<OrvexModelPart>;
  using Pairs = std::vector<std::pair<int, int>>;

  virtual ~SpaceIndexBase() = default;
  virtual Pairs collectPairs(const Parts& parts) const = 0;
};

// Cells of one size. Proposes the parts that have a cell in common.
//
// A part that covers very many cells stands in no cell but in a list of its own, whose ranges of
// cells are compared with those of all the others: the same pairs, without the cells.
class OrvexCollisionEngine::GridIndex final : public SpaceIndexBase
{
public:
  static double CellSizeFor(double sceneDiagonal, int sceneProfile);

  GridIndex(const Parts& parts, double cellSize);
  Pairs collectPairs(const Parts& parts) const override;

private:
  using Cell = std::array<int, 3>;

  struct Range
  {
    int part;
    Cell first, last; // both inclusive

    double Count() const;
    bool Shares(const Range& other) const;
  };

  struct Entry
  {
    Cell cell;
    int range; // position in `ranges`
  };

  Range RangeOf(int part, const Orvex::BoxLimits& box) const;
  void Enter(int range);
  void CollectOfCell(std::size_t first, std::size_t last, Pairs& pairs) const;
  void CollectOfLargeParts(Pairs& pairs) const;

  double cellSize;
  std::vector<Range> ranges;
  std::vector<Entry> entries; // sorted by cell, then by range
  std::vector<int> large;     // positions in `ranges`
};

// Parts by the octants that their middles are in. Proposes the parts of one leaf: parts that
// overlap with middles in different octants are not proposed.
class OrvexCollisionEngine::OctreeIndex final : public SpaceIndexBase
{
public:
  OctreeIndex(const Parts& parts, int maxDepth, int maxItems);
  Pairs collectPairs(const Parts& parts) const override;

private:
  std::vector<std::vector<int>> leaves;
};

// Halves along the axes in turn. Proposes the parts of leaves whose boxes meet.
class OrvexCollisionEngine::RTreeIndex final : public SpaceIndexBase
{
public:
  static constexpr int kMaxDepth = 16;
  static constexpr int kLeastMaxItems = 8;

  RTreeIndex(const Parts& parts, int maxItems);
  Pairs collectPairs(const Parts& parts) const override;

private:
  struct Item
  {
    Bnd_Box box;
    std::array<double, 3> middle;
    int part;
  };
  struct Node
  {
    Bnd_Box box;
    std::vector<int> parts; // of a leaf
    int left = -1;
    int right = -1;

    bool IsLeaf() const
    {
      return left < 0;
    }
  };

  int Build(std::vector<Item>& items, std::size_t begin, std::size_t end, int depth, int axis);

  int maxItems;
  std::vector<Node> nodes;
  int root = -1;
};

// Parts along a space-filling curve through the middles of their boxes. Proposes neighbours on the
// curve and looks at no box.
class OrvexCollisionEngine::LBVHIndex final : public SpaceIndexBase
{
public:
  LBVHIndex(const Parts& parts, int span);
  Pairs collectPairs(const Parts& parts) const override;

  // Three numbers of ten bits each, their bits interleaved, the first one's highest.
  static std::uint32_t MortonCode(std::uint32_t x, std::uint32_t y, std::uint32_t z);

private:
  struct Entry
  {
    std::uint32_t code;
    std::uint32_t part;
  };

  std::vector<Entry> entries;
  int span;
};
