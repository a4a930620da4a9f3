#include "collision/internal/SpaceIndexes.h"

#include <algorithm>

using Orvex::BoxLimits;

namespace {

constexpr int kNoAxis = -1;

// An axis that is as long as both others, X before Y before Z.
int LongAxis(const Bnd_Box& box)
{
  const auto limits = Orvex::LimitsOf(box).value_or(BoxLimits());
  const double dx = limits.Extent(0), dy = limits.Extent(1), dz = limits.Extent(2);
  if (dx >= dy && dx >= dz)
    return 0;
  return dy >= dx && dy >= dz ? 1 : 2;
}

} // namespace

OrvexCollisionEngine::RTreeIndex::RTreeIndex(const Parts& parts, int maxItems_)
    : maxItems(std::max(maxItems_, kLeastMaxItems))
{
  std::vector<Item> items;
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (const auto box = Orvex::LimitsOf(parts[i].box))
      items.push_back(
        {parts[i].box, {box->Middle(0), box->Middle(1), box->Middle(2)}, static_cast<int>(i)});
  if (!items.empty())
    root = Build(items, 0, items.size(), 0, kNoAxis);
}

// Children stand before their parents in the list of nodes.
int OrvexCollisionEngine::RTreeIndex::Build(std::vector<Item>& items, std::size_t begin,
                                            std::size_t end, int depth, int axis)
{
  Node node;
  for (std::size_t i = begin; i < end; ++i)
    node.box.Add(items[i].box);
  if (end - begin <= static_cast<std::size_t>(maxItems) || depth >= kMaxDepth) {
    for (std::size_t i = begin; i < end; ++i)
      node.parts.push_back(items[i].part);
  } else {
    if (axis == kNoAxis)
      axis = LongAxis(node.box);
    const auto key = [axis](const Item& item) {
      return std::make_pair(Orvex::SortKey(item.middle[static_cast<std::size_t>(axis)]), item.part);
    };
    const auto at = [&items](std::size_t i) {
      return items.begin() + static_cast<std::ptrdiff_t>(i);
    };
    std::sort(at(begin), at(end), [key](const Item& a, const Item& b) { return key(a) < key(b); });
    const std::size_t middle = begin + (end - begin) / 2;
    node.left = Build(items, begin, middle, depth + 1, (axis + 1) % 3);
    node.right = Build(items, middle, end, depth + 1, (axis + 1) % 3);
  }
  nodes.push_back(std::move(node));
  return static_cast<int>(nodes.size()) - 1;
}

OrvexCollisionEngine::Pairs OrvexCollisionEngine::RTreeIndex::collectPairs(const Parts&) const
{
  Pairs pairs;
  std::vector<std::pair<int, int>> stack;
  if (root >= 0)
    stack.emplace_back(root, root);
  while (!stack.empty()) {
    const auto [first, second] = stack.back();
    stack.pop_back();
    const Node& a = nodes[static_cast<std::size_t>(first)];
    const Node& b = nodes[static_cast<std::size_t>(second)];
    if (a.box.IsOut(b.box))
      continue;
    if (a.IsLeaf() && b.IsLeaf()) {
      for (const int i : a.parts)
        for (const int j : b.parts)
          if (i < j)
            pairs.emplace_back(i, j);
      continue;
    }
    for (const int childOfA : a.IsLeaf() ? std::array{first, -1} : std::array{a.left, a.right})
      for (const int childOfB : b.IsLeaf() ? std::array{second, -1} : std::array{b.left, b.right})
        if (childOfA >= 0 && childOfB >= 0)
          stack.emplace_back(childOfA, childOfB);
  }
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}
