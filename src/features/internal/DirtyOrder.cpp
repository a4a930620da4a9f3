#include "features/internal/DirtyOrder.h"

#include <algorithm>
#include <cctype>

namespace Orvex {

namespace {

std::ptrdiff_t DigitsFrom(std::string::const_iterator from, const std::string& text)
{
  return std::find_if_not(from, text.end(), [](unsigned char c) { return std::isdigit(c); }) - from;
}

// "0:1:1:2" before "0:1:1:10". Numbers without leading zeros: of two that differ from some digit
// on, the one with more digits to come is the larger.
bool EntryLess(const std::string* left, const std::string* right)
{
  const auto [l, r] = std::mismatch(left->begin(), left->end(), right->begin(), right->end());
  const auto leftDigits = DigitsFrom(l, *left);
  const auto rightDigits = DigitsFrom(r, *right);
  if (leftDigits != rightDigits)
    return leftDigits < rightDigits;
  return std::lexicographical_compare(l, left->end(), r, right->end());
}

using Degrees = std::unordered_map<std::string, int>;

template <typename Visit>
void VisitDirtyDependents(
  const std::string& key,
  const std::unordered_map<std::string, std::vector<std::string>>& dependents, Degrees& degrees,
  Visit&& visit)
{
  const auto found = dependents.find(key);
  if (found == dependents.end())
    return;
  for (const std::string& dependent : found->second)
    if (const auto dirty = degrees.find(dependent); dirty != degrees.end())
      visit(*dirty);
}

} // namespace

std::vector<std::string>
OrderOfDirty(const std::unordered_set<std::string>& dirty,
             const std::unordered_map<std::string, std::vector<std::string>>& dependents)
{
  Degrees degrees;
  degrees.reserve(dirty.size());
  for (const std::string& key : dirty)
    degrees.emplace(key, 0);
  for (const std::string& key : dirty)
    VisitDirtyDependents(key, dependents, degrees, [](auto& dependent) { ++dependent.second; });

  std::vector<const std::string*> rank;
  for (const auto& [key, degree] : degrees)
    if (degree == 0)
      rank.push_back(&key);
  std::vector<std::string> order;
  order.reserve(dirty.size());
  while (!rank.empty()) {
    std::sort(rank.begin(), rank.end(), EntryLess);
    std::vector<const std::string*> next;
    for (const std::string* key : rank) {
      order.push_back(*key);
      VisitDirtyDependents(*key, dependents, degrees, [&](auto& dependent) {
        if (--dependent.second == 0)
          next.push_back(&dependent.first);
      });
    }
    rank = std::move(next);
  }
  return order;
}

} // namespace Orvex
