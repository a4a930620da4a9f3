#include "collision/internal/SpaceIndexes.h"

#include <algorithm>

using Orvex::BoxLimits;

namespace {

constexpr double kHighestCell = 1023.0;

std::uint32_t Spread(std::uint32_t bits)
{
  bits = (bits | bits << 16) & 0x030000FFU;
  bits = (bits | bits << 8) & 0x0300F00FU;
  bits = (bits | bits << 4) & 0x030C30C3U;
  return (bits | bits << 2) & 0x09249249U;
}

std::uint32_t CellOf(double middle, double min, double inverse)
{
  const double cell = (middle - min) * inverse * kHighestCell;
  if (!(cell > 0))
    return 0;
  return static_cast<std::uint32_t>(std::min(cell, kHighestCell));
}

} // namespace

std::uint32_t OrvexCollisionEngine::LBVHIndex::MortonCode(std::uint32_t x, std::uint32_t y,
                                                          std::uint32_t z)
{
  return Spread(x) << 2 | Spread(y) << 1 | Spread(z);
}

OrvexCollisionEngine::LBVHIndex::LBVHIndex(const Parts& parts, int span_) : span(std::max(span_, 1))
{
  Bnd_Box whole;
  for (const OrvexModelPart& part : parts)
    whole.Add(part.box);
  const BoxLimits all = Orvex::LimitsOf(whole).value_or(BoxLimits());
  constexpr double kLeastExtent = 0.001;
  const double inverse = 1 / std::max({kLeastExtent, all.Extent(0), all.Extent(1), all.Extent(2)});
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto box = Orvex::LimitsOf(parts[i].box);
    if (!box)
      continue;
    std::array<std::uint32_t, 3> cell;
    for (std::size_t axis = 0; axis < 3; ++axis)
      cell[axis] = CellOf(box->Middle(axis), all.min[axis], inverse);
    entries.push_back({MortonCode(cell[0], cell[1], cell[2]), static_cast<std::uint32_t>(i)});
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.code, a.part) < std::tie(b.code, b.part);
  });
}

OrvexCollisionEngine::Pairs OrvexCollisionEngine::LBVHIndex::collectPairs(const Parts&) const
{
  Pairs pairs;
  const auto reach = static_cast<std::size_t>(span);
  for (std::size_t p = 0; p < entries.size(); ++p)
    for (std::size_t k = 1; k <= reach && p + k < entries.size(); ++k)
      pairs.push_back(
        std::minmax(static_cast<int>(entries[p].part), static_cast<int>(entries[p + k].part)));
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}
