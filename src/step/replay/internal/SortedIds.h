// Lists of ids as sets.
#pragma once

#include "step/replay/ReplayIRSummary.h"

#include <algorithm>

namespace Orvex {

inline std::vector<ReplayId> SortedIds(std::vector<ReplayId> ids)
{
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

inline bool HoldsId(const std::vector<ReplayId>& ids, ReplayId id)
{
  return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace Orvex
