// Numbers from 0 in sets that are joined by and by.
#pragma once

#include <algorithm>
#include <numeric>
#include <vector>

namespace Orvex {

class DisjointSets
{
public:
  explicit DisjointSets(std::size_t count) : parents(count)
  {
    std::iota(parents.begin(), parents.end(), std::size_t(0));
  }

  // The least number of the set.
  std::size_t Find(std::size_t i)
  {
    while (parents[i] != i)
      i = parents[i] = parents[parents[i]];
    return i;
  }

  void Join(std::size_t i, std::size_t j)
  {
    const std::size_t a = Find(i), b = Find(j);
    parents[std::max(a, b)] = std::min(a, b);
  }

private:
  std::vector<std::size_t> parents;
};

} // namespace Orvex
