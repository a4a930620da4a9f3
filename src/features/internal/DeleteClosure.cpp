#include "features/internal/DeleteClosure.h"

#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"

#include <map>
#include <set>
#include <string>

namespace Orvex {

namespace {

bool IsHiddenShape(const TDF_Label& label)
{
  TopoDS_Shape shape = ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  return !shape.IsNull() && !ShapeLabelMgr::GetInstance()->GetShapeVisibilty(shape);
}

// The definition walks all items in every pass. Here an item is visited when a label that it bears
// or uses dies: in the same pass if it stands behind the item that brought the death, else in the
// next one. An operand is looked at when the last item that keeps it is gone. Order and result are
// those of the full walks.
class ClosureWalk
{
public:
  ClosureWalk(const FeatureItems& items_, const std::vector<TDF_Label>& seeds)
      : items(items_), affected(items_.size(), false)
  {
    // The tables are only needed if there is something to delete.
    for (const TDF_Label& seed : seeds)
      AddSeed(seed);
    if (!closure.empty())
      ReadItems();
  }

  std::vector<TDF_Label> Run()
  {
    std::set<int> pass;
    for (const std::string& entry : closure)
      AddItemsOf(entry, pass);
    while (!pass.empty()) {
      std::set<int> next;
      VisitItems(pass, next);
      VisitOperands(next);
      pass = std::move(next);
    }
    return std::move(result);
  }

private:
  struct Use
  {
    std::vector<int> bearers;   // items whose label it is
    std::vector<int> users;     // items that have it among their inputs, each once
    std::size_t inputPlace = 0; // in the first user
    std::size_t aliveUsers = 0;
  };

  void AddSeed(const TDF_Label& seed)
  {
    const std::string entry = EntryOf(seed);
    if (!entry.empty() && closure.insert(entry).second)
      result.push_back(seed);
  }

  void ReadItems()
  {
    for (std::size_t index = 0; index < items.size(); ++index) {
      const int item = static_cast<int>(index);
      if (!items[index].label.IsNull())
        uses[EntryOf(items[index].label)].bearers.push_back(item);
      for (std::size_t place = 0; place < items[index].inputs.size(); ++place)
        ReadInput(item, place);
    }
  }

  void ReadInput(int item, std::size_t place)
  {
    const TDF_Label& input = items[static_cast<std::size_t>(item)].inputs[place];
    if (input.IsNull())
      return;
    Use& use = uses[EntryOf(input)];
    if (!use.users.empty() && use.users.back() == item)
      return;
    if (use.users.empty())
      use.inputPlace = place;
    use.users.push_back(item);
    ++use.aliveUsers;
  }

  void AddItemsOf(const std::string& entry, std::set<int>& pass) const
  {
    VisitItemsOf(entry, [&](int item) { pass.insert(item); });
  }

  template <typename Visit>
  void VisitItemsOf(const std::string& entry, Visit&& visit) const
  {
    const auto found = uses.find(entry);
    if (found == uses.end())
      return;
    for (const std::vector<int>* list : {&found->second.bearers, &found->second.users})
      for (const int item : *list)
        if (!affected[static_cast<std::size_t>(item)])
          visit(item);
  }

  void VisitItems(std::set<int>& pass, std::set<int>& next)
  {
    while (!pass.empty()) {
      const int item = *pass.begin();
      pass.erase(pass.begin());
      if (affected[static_cast<std::size_t>(item)])
        continue;
      affected[static_cast<std::size_t>(item)] = true;
      const std::string entry = Kill(items[static_cast<std::size_t>(item)].label);
      VisitItemsOf(entry, [&](int other) { (other > item ? pass : next).insert(other); });
      ReleaseInputs(item);
    }
  }

  // The entry of a label that is new in the closure; nothing for one that was in it.
  std::string Kill(const TDF_Label& label)
  {
    const std::string entry = EntryOf(label);
    if (entry.empty() || !closure.insert(entry).second)
      return {};
    result.push_back(label);
    return entry;
  }

  void ReleaseInputs(int item)
  {
    std::set<std::string> entries;
    for (const TDF_Label& input : items[static_cast<std::size_t>(item)].inputs)
      if (!input.IsNull())
        entries.insert(EntryOf(input));
    for (const std::string& entry : entries) {
      Use& use = uses[entry];
      if (--use.aliveUsers == 0)
        operands.emplace(std::pair(use.users.front(), use.inputPlace), entry);
    }
  }

  void VisitOperands(std::set<int>& next)
  {
    for (const auto& [place, entry] : operands) {
      const TDF_Label& label = items[static_cast<std::size_t>(place.first)].inputs[place.second];
      if (closure.count(entry) == 0 && IsHiddenShape(label)) {
        Kill(label);
        AddItemsOf(entry, next);
      }
    }
    operands.clear();
  }

  const FeatureItems& items;
  std::vector<bool> affected;
  std::set<std::string> closure;
  std::vector<TDF_Label> result;
  std::unordered_map<std::string, Use> uses;
  // What nobody keeps any more, by the first item that used it and the place among its inputs.
  std::map<std::pair<int, std::size_t>, std::string> operands;
};

} // namespace

std::vector<TDF_Label> CollectDeleteClosure(const FeatureItems& items,
                                            const std::vector<TDF_Label>& seeds)
{
  return ClosureWalk(items, seeds).Run();
}

} // namespace Orvex
