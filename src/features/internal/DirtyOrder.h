// The order in which dirty features are rebuilt.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvex {

// By rank: features that consume no other dirty one, then those that consume only such, and so on;
// within a rank by label entry, tags compared as numbers. What is on a cycle of dirty features, or
// behind one, is left out.
// Cost: linear in the dirty features and their edges, and the sorting within ranks.
// Source: A. B. Kahn, Topological sorting of large networks, 1962.
std::vector<std::string>
OrderOfDirty(const std::unordered_set<std::string>& dirty,
             const std::unordered_map<std::string, std::vector<std::string>>& dependents);

} // namespace Orvex
