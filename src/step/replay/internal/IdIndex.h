// Where an id stands in a list, and which record has it.
//
// The ids of a summary are the positions of its records, as a rule, so that a look-up is one access
// and builds nothing. Any other ids are taken as well, also absurdly large ones: then a table is
// made, as long as the ids fit one of the list's order of size, else a sorted list.
#pragma once

#include "step/replay/ReplayIRSummary.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Orvex {

class IdIndex
{
public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  explicit IdIndex(const std::vector<ReplayId>& ids)
  {
    const ReplayId greatest = ids.empty() ? 0 : *std::max_element(ids.begin(), ids.end());
    if (greatest <= kTableFactor * ids.size())
      FillTable(ids, static_cast<std::size_t>(greatest));
    else
      FillSorted(ids);
  }

  // The first position that has the id.
  std::size_t Position(ReplayId id) const
  {
    if (id < table.size())
      return table[static_cast<std::size_t>(id)];
    const auto found =
      std::lower_bound(sorted.begin(), sorted.end(), std::pair(id, std::size_t{0}));
    return found != sorted.end() && found->first == id ? found->second : kNone;
  }

private:
  static constexpr std::size_t kTableFactor = 4;

  void FillTable(const std::vector<ReplayId>& ids, std::size_t greatest)
  {
    table.assign(greatest + 1, kNone);
    for (std::size_t i = ids.size(); i-- > 0;)
      table[static_cast<std::size_t>(ids[i])] = i;
  }

  void FillSorted(const std::vector<ReplayId>& ids)
  {
    sorted.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
      sorted.emplace_back(ids[i], i);
    std::sort(sorted.begin(), sorted.end());
  }

  std::vector<std::size_t> table;
  std::vector<std::pair<ReplayId, std::size_t>> sorted;
};

// The records must outlive the index and stay as they are.
template <typename Record>
class RecordIndex
{
public:
  explicit RecordIndex(const std::vector<Record>& records_) : records(records_)
  {}

  // Null for an id that no record has.
  const Record* Find(ReplayId id)
  {
    if (id - 1 < records.size() && records[id - 1].id == id)
      return &records[id - 1];
    if (!index)
      index.emplace(Ids());
    const std::size_t position = index->Position(id);
    return position == IdIndex::kNone ? nullptr : &records[position];
  }

private:
  std::vector<ReplayId> Ids() const
  {
    std::vector<ReplayId> ids;
    ids.reserve(records.size());
    for (const Record& record : records)
      ids.push_back(record.id);
    return ids;
  }

  const std::vector<Record>& records;
  // Made when the first id is not the position of its record.
  std::optional<IdIndex> index;
};

} // namespace Orvex
