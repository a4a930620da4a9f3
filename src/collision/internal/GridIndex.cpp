#include "collision/internal/SpaceIndexes.h"

#include <algorithm>
#include <limits>

using Orvex::BoxLimits;

namespace {

// Of a part in the cells; 16 cells on each axis.
constexpr double kMostCells = 4096;

// Held to the numbers that there are; what is no number stands at the lower end.
int CellNumber(double coordinate, double cellSize)
{
  constexpr double kLowest = std::numeric_limits<int>::min();
  constexpr double kHighest = std::numeric_limits<int>::max();
  const double number = std::floor(coordinate / cellSize);
  if (!(number > kLowest))
    return std::numeric_limits<int>::min();
  return number < kHighest ? static_cast<int>(number) : std::numeric_limits<int>::max();
}

} // namespace

double OrvexCollisionEngine::GridIndex::CellSizeFor(double sceneDiagonal, int sceneProfile)
{
  constexpr double kLeast = 1.0;
  const double share = sceneProfile == 2 ? 0.02 : 0.05;
  return std::max(kLeast, (sceneDiagonal > 0 ? sceneDiagonal : 1.0) * share);
}

double OrvexCollisionEngine::GridIndex::Range::Count() const
{
  double count = 1;
  for (std::size_t axis = 0; axis < 3; ++axis)
    count *= static_cast<double>(last[axis]) - first[axis] + 1;
  return count;
}

bool OrvexCollisionEngine::GridIndex::Range::Shares(const Range& other) const
{
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (first[axis] > other.last[axis] || other.first[axis] > last[axis])
      return false;
  return true;
}

OrvexCollisionEngine::GridIndex::GridIndex(const Parts& parts, double cellSize_)
    : cellSize(cellSize_)
{
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (const auto box = Orvex::LimitsOf(parts[i].box))
      ranges.push_back(RangeOf(static_cast<int>(i), *box));
  for (std::size_t i = 0; i < ranges.size(); ++i)
    Enter(static_cast<int>(i));
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.cell, a.range) < std::tie(b.cell, b.range);
  });
}

OrvexCollisionEngine::GridIndex::Range
OrvexCollisionEngine::GridIndex::RangeOf(int part, const BoxLimits& box) const
{
  Range range{part, {}, {}};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    range.first[axis] = CellNumber(box.min[axis], cellSize);
    range.last[axis] = std::max(range.first[axis], CellNumber(box.max[axis], cellSize));
  }
  return range;
}

void OrvexCollisionEngine::GridIndex::Enter(int position)
{
  const Range& range = ranges[static_cast<std::size_t>(position)];
  if (range.Count() > kMostCells) {
    large.push_back(position);
    return;
  }
  // Counted in 64 bits: the last cell can be the last that there is.
  for (std::int64_t x = range.first[0]; x <= range.last[0]; ++x)
    for (std::int64_t y = range.first[1]; y <= range.last[1]; ++y)
      for (std::int64_t z = range.first[2]; z <= range.last[2]; ++z)
        entries.push_back(
          {{static_cast<int>(x), static_cast<int>(y), static_cast<int>(z)}, position});
}

// Parts that share several cells are paired in the first of them only.
void OrvexCollisionEngine::GridIndex::CollectOfCell(std::size_t first, std::size_t last,
                                                    Pairs& pairs) const
{
  const auto rangeAt = [this](std::size_t entry) -> const Range& {
    return ranges[static_cast<std::size_t>(entries[entry].range)];
  };
  const auto isFirstShared = [](const Range& a, const Range& b, const Cell& cell) {
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (std::max(a.first[axis], b.first[axis]) != cell[axis])
        return false;
    return true;
  };
  for (std::size_t i = first; i < last; ++i)
    for (std::size_t j = i + 1; j < last; ++j)
      if (isFirstShared(rangeAt(i), rangeAt(j), entries[i].cell))
        pairs.emplace_back(rangeAt(i).part, rangeAt(j).part);
}

void OrvexCollisionEngine::GridIndex::CollectOfLargeParts(Pairs& pairs) const
{
  std::vector<bool> isLarge(ranges.size());
  for (const int position : large)
    isLarge[static_cast<std::size_t>(position)] = true;
  for (const int position : large) {
    const Range& range = ranges[static_cast<std::size_t>(position)];
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      const bool isHere = !isLarge[i] || static_cast<int>(i) > position;
      if (isHere && range.Shares(ranges[i]))
        pairs.push_back(std::minmax(range.part, ranges[i].part));
    }
  }
}

OrvexCollisionEngine::Pairs OrvexCollisionEngine::GridIndex::collectPairs(const Parts&) const
{
  Pairs pairs;
  for (std::size_t first = 0; first < entries.size();) {
    std::size_t last = first;
    while (last < entries.size() && entries[last].cell == entries[first].cell)
      ++last;
    CollectOfCell(first, last, pairs);
    first = last;
  }
  CollectOfLargeParts(pairs);
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}
