// What follows from the order of the history and from the labels that its items share: who provides
// an input, who depends on whom, what is suppressed with what.
//
// - The provider of an input is the last item before the consumer whose label is the input. An
//   input without one is a shape that no feature made.
// - An item with inputs depends on a set of labels if one of its inputs is in it. An item without
//   inputs that works in place (it has a rebuild function and a source) depends on its own label.
//
// Cost: each query walks the history once; labels are looked up by hash.
#pragma once

#include "features/FeatureHistoryItem.h"

#include <TDF_LabelMapHasher.hxx>

#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvex {

using FeatureItems = std::vector<FeatureHistoryItem>;

struct LabelHash
{
  std::size_t operator()(const TDF_Label& label) const
  {
    return static_cast<std::size_t>(
      TDF_LabelMapHasher::HashCode(label, std::numeric_limits<int>::max()));
  }
};

using LabelSet = std::unordered_set<TDF_Label, LabelHash>;
template <typename Value>
using LabelMap = std::unordered_map<TDF_Label, Value, LabelHash>;

// The key of the shape that a feature works on, in its parameters.
inline const QString kSourceBrepKey = QStringLiteral("sourceBrep");

// It can be made again, from a source that its parameters hold.
bool IsSourceFeature(const FeatureHistoryItem& item);

bool DependsOnLabels(const FeatureHistoryItem& item, const LabelSet& labels);

// Indices in history order.
std::vector<int> DependentsFrom(const FeatureItems& items, int index);
std::vector<int> DependentsOfLabel(const FeatureItems& items, const TDF_Label& label);

// One bit for each item: its own flag, or a suppressed provider of one of its inputs.
std::vector<bool> EffectiveSuppression(const FeatureItems& items);

// No input is made by an item behind the one at `index` unless an item before it makes it too.
bool InputsPrecedeFeature(const FeatureItems& items, int index,
                          const std::vector<TDF_Label>& inputs);

// Whether each item keeps the provider of each of its inputs if the one at `from` moves to `to`.
bool KeepsProvidersWhenMoved(const FeatureItems& items, int from, int to);

// The last items of their labels, by the entry of the label; see FeatureHistoryManager.
class FeatureLabelIndex
{
public:
  void MarkDirty();

  // Brings the index up to date; only what was added behind the rest since the last time is read,
  // unless the index was marked dirty. Returns -1 if no item has the label.
  int Find(const FeatureItems& items, const TDF_Label& label);

private:
  void Ensure(const FeatureItems& items);

  std::unordered_map<std::string, int> lastItems;
  std::size_t indexed = 0;
};

} // namespace Orvex
