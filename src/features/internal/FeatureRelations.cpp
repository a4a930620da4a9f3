#include "features/internal/FeatureRelations.h"

#include "document/LabelScheme.h"

#include <algorithm>
#include <numeric>

namespace Orvex {

namespace {

constexpr int kNoProvider = -1;

// Items in the order given, each of their inputs with the index of its provider.
template <typename Visit>
void VisitProviders(const FeatureItems& items, const std::vector<int>& order, Visit&& visit)
{
  LabelMap<int> producers;
  for (const int index : order) {
    const FeatureHistoryItem& item = items[static_cast<std::size_t>(index)];
    for (std::size_t input = 0; input < item.inputs.size(); ++input) {
      const auto found = producers.find(item.inputs[input]);
      visit(index, input, found == producers.end() ? kNoProvider : found->second);
    }
    if (!item.label.IsNull())
      producers[item.label] = index;
  }
}

std::vector<int> HistoryOrder(const FeatureItems& items)
{
  std::vector<int> order(items.size());
  std::iota(order.begin(), order.end(), 0);
  return order;
}

// The providers of all inputs of all items, by the item's index and the input's place.
std::vector<int> AllProviders(const FeatureItems& items, const std::vector<int>& order)
{
  std::vector<std::size_t> firstInput;
  std::size_t inputs = 0;
  for (const FeatureHistoryItem& item : items) {
    firstInput.push_back(inputs);
    inputs += item.inputs.size();
  }
  std::vector<int> providers(inputs, kNoProvider);
  VisitProviders(items, order, [&](int index, std::size_t input, int provider) {
    providers[firstInput[static_cast<std::size_t>(index)] + input] = provider;
  });
  return providers;
}

void AddLabel(LabelSet& labels, const TDF_Label& label)
{
  if (!label.IsNull())
    labels.insert(label);
}

bool HasItemWithLabel(FeatureItems::const_iterator from, FeatureItems::const_iterator to,
                      const TDF_Label& label)
{
  return std::any_of(from, to, [&](const FeatureHistoryItem& item) { return item.label == label; });
}

} // namespace

bool IsSourceFeature(const FeatureHistoryItem& item)
{
  return item.rebuildFunc && item.parameters.contains(kSourceBrepKey);
}

bool DependsOnLabels(const FeatureHistoryItem& item, const LabelSet& labels)
{
  if (item.inputs.empty())
    return IsSourceFeature(item) && labels.count(item.label) != 0;
  return std::any_of(item.inputs.begin(), item.inputs.end(),
                     [&](const TDF_Label& input) { return labels.count(input) != 0; });
}

std::vector<int> DependentsFrom(const FeatureItems& items, int index)
{
  std::vector<int> dependents{index};
  LabelSet reached;
  AddLabel(reached, items[static_cast<std::size_t>(index)].label);
  for (std::size_t later = static_cast<std::size_t>(index) + 1; later < items.size(); ++later) {
    if (!DependsOnLabels(items[later], reached))
      continue;
    dependents.push_back(static_cast<int>(later));
    AddLabel(reached, items[later].label);
  }
  return dependents;
}

std::vector<int> DependentsOfLabel(const FeatureItems& items, const TDF_Label& label)
{
  std::vector<int> dependents;
  if (label.IsNull())
    return dependents;
  LabelSet reached{label};
  for (std::size_t index = 0; index < items.size(); ++index) {
    const FeatureHistoryItem& item = items[index];
    if (item.label != label && !DependsOnLabels(item, reached))
      continue;
    dependents.push_back(static_cast<int>(index));
    AddLabel(reached, item.label);
  }
  return dependents;
}

std::vector<bool> EffectiveSuppression(const FeatureItems& items)
{
  std::vector<bool> suppressed;
  suppressed.reserve(items.size());
  for (const FeatureHistoryItem& item : items)
    suppressed.push_back(item.suppressed);
  // A provider stands before its consumer, so its bit is final by then.
  VisitProviders(items, HistoryOrder(items), [&](int index, std::size_t, int provider) {
    if (provider != kNoProvider && suppressed[static_cast<std::size_t>(provider)])
      suppressed[static_cast<std::size_t>(index)] = true;
  });
  return suppressed;
}

bool InputsPrecedeFeature(const FeatureItems& items, int index,
                          const std::vector<TDF_Label>& inputs)
{
  const auto feature = items.begin() + index;
  return std::all_of(inputs.begin(), inputs.end(), [&](const TDF_Label& input) {
    return input.IsNull() || HasItemWithLabel(items.begin(), feature, input) ||
           !HasItemWithLabel(feature + 1, items.end(), input);
  });
}

bool KeepsProvidersWhenMoved(const FeatureItems& items, int from, int to)
{
  const std::vector<int> current = HistoryOrder(items);
  std::vector<int> candidate = current;
  candidate.erase(candidate.begin() + from);
  candidate.insert(candidate.begin() + to, from);
  return AllProviders(items, current) == AllProviders(items, candidate);
}

void FeatureLabelIndex::MarkDirty()
{
  lastItems.clear();
  indexed = 0;
}

int FeatureLabelIndex::Find(const FeatureItems& items, const TDF_Label& label)
{
  if (label.IsNull())
    return -1;
  Ensure(items);
  const auto found = lastItems.find(EntryOf(label));
  return found == lastItems.end() ? -1 : found->second;
}

void FeatureLabelIndex::Ensure(const FeatureItems& items)
{
  if (indexed == 0)
    lastItems.reserve(items.size());
  for (; indexed < items.size(); ++indexed)
    if (!items[indexed].label.IsNull())
      lastItems[EntryOf(items[indexed].label)] = static_cast<int>(indexed);
}

} // namespace Orvex
