#include "collision/internal/SpaceIndexes.h"

#include <algorithm>

using Orvex::BoxLimits;

namespace {

struct Item
{
  const Bnd_Box* box;
  std::array<double, 3> middle;
  int part;
};

using Items = std::vector<Item>;

std::array<double, 3> MiddleOf(const Bnd_Box& box)
{
  const BoxLimits limits = Orvex::LimitsOf(box).value_or(BoxLimits());
  return {limits.Middle(0), limits.Middle(1), limits.Middle(2)};
}

// By the middle of each; on the middle of all counts as below.
std::array<Items, 8> Octants(const Items& items)
{
  Bnd_Box all;
  for (const Item& item : items)
    all.Add(*item.box);
  const std::array<double, 3> centre = MiddleOf(all);
  std::array<Items, 8> octants;
  for (const Item& item : items) {
    std::size_t octant = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
      octant |= static_cast<std::size_t>(item.middle[axis] > centre[axis]) << axis;
    octants[octant].push_back(item);
  }
  return octants;
}

std::vector<int> PartsOf(const Items& items)
{
  std::vector<int> parts;
  for (const Item& item : items)
    parts.push_back(item.part);
  return parts;
}

Items ItemsOf(const std::vector<OrvexModelPart>& parts)
{
  Items items;
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (const Bnd_Box& box = parts[i].box; !box.IsVoid())
      items.push_back({&box, MiddleOf(box), static_cast<int>(i)});
  return items;
}

} // namespace

OrvexCollisionEngine::OctreeIndex::OctreeIndex(const Parts& parts, int maxDepth, int maxItems)
{
  const auto most = static_cast<std::size_t>(std::max(maxItems, 0));
  std::vector<Items> nodes;
  if (Items items = ItemsOf(parts); !items.empty())
    nodes.push_back(std::move(items));
  for (int level = 0; level < maxDepth && !nodes.empty(); ++level) {
    std::vector<Items> children;
    for (const Items& items : nodes) {
      if (items.size() <= most || level == maxDepth - 1) {
        leaves.push_back(PartsOf(items));
        continue;
      }
      for (Items& octant : Octants(items))
        if (!octant.empty())
          children.push_back(std::move(octant));
    }
    nodes = std::move(children);
  }
}

OrvexCollisionEngine::Pairs OrvexCollisionEngine::OctreeIndex::collectPairs(const Parts&) const
{
  Pairs pairs;
  for (const std::vector<int>& leaf : leaves)
    for (std::size_t i = 0; i < leaf.size(); ++i)
      for (std::size_t j = i + 1; j < leaf.size(); ++j)
        pairs.emplace_back(leaf[i], leaf[j]);
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}
