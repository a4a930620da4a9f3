// Rebuild, replay and rollback of the feature history.
#include "features/FeatureHistoryManager.h"

#include "document/ShapeLabelMgr.h"
#include "features/internal/FeatureRelations.h"
#include "features/internal/FeatureSnapshot.h"
#include "features/internal/RebuildStack.h"
#include "features/internal/SubShapeReferences.h"
#include "kernel/internal/BrepText.h"

namespace {

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return label.IsNull() ? TopoDS_Shape() : ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

// The first input; the feature's own label for a feature that has none or whose input is empty.
TopoDS_Shape SourceShape(const FeatureHistoryItem& item)
{
  const TDF_Label source = item.inputs.empty() ? TDF_Label() : item.inputs.front();
  const TopoDS_Shape shape = ShapeOn(source);
  return shape.IsNull() ? ShapeOn(item.label) : shape;
}

// The item's parameters with source and references brought up to date.
FeatureParameters PrepareRebuildParameters(const FeatureHistoryItem& item)
{
  FeatureParameters prepared = item.parameters;
  if (Orvex::IsSourceFeature(item)) {
    const TopoDS_Shape source = SourceShape(item);
    if (!source.IsNull())
      prepared[Orvex::kSourceBrepKey] = QString::fromStdString(Orvex::BrepText(source));
  }
  return Orvex::RefreshReferences(item.type, prepared);
}

} // namespace

bool FeatureHistoryManager::UnsuppressFeature(int id)
{
  const int index = IndexOf(id);
  if (index < 0)
    return false;
  FeatureHistoryItem& item = items[static_cast<std::size_t>(index)];
  if (!item.suppressed)
    return true;
  const std::vector<int> dependents = Orvex::DependentsFrom(items, index);
  const auto snapshot = Orvex::CaptureSnapshot(items, dependents);
  const auto goBack = [&] {
    RollBack(snapshot);
    ApplyVisibility(dependents);
  };
  item.suppressed = false;
  try {
    if (!ReplayFrom(index)) {
      goBack();
      return false;
    }
  } catch (...) {
    goBack();
    throw;
  }
  ApplyVisibility(dependents);
  return true;
}

bool FeatureHistoryManager::ReplayFrom(int index)
{
  const std::vector<bool> suppressed = Orvex::EffectiveSuppression(items);
  const auto place = static_cast<std::size_t>(index);
  if (suppressed[place])
    return false;
  const FeatureHistoryItem& item = items[place];
  if (item.rebuildFunc && (item.label.IsNull() || !RebuildWithOwnParameters(place)))
    return false;
  return ReplayLater(index, suppressed, Kinds::Keep);
}

bool FeatureHistoryManager::ReplayLater(int index, const std::vector<bool>& suppressed,
                                        Kinds shapeTypes)
{
  Orvex::LabelSet changed;
  const auto addChanged = [&](std::size_t place) {
    if (!items[place].label.IsNull())
      changed.insert(items[place].label);
  };
  addChanged(static_cast<std::size_t>(index));
  for (std::size_t later = static_cast<std::size_t>(index) + 1; later < items.size(); ++later) {
    if (suppressed[later] || !items[later].rebuildFunc ||
        !Orvex::DependsOnLabels(items[later], changed))
      continue;
    if (!RebuildWithOwnParameters(later))
      return false;
    if (shapeTypes == Kinds::Refresh)
      items[later].shapeType = DeriveShapeType(items[later].label);
    addChanged(later);
  }
  return true;
}

bool FeatureHistoryManager::RebuildWithOwnParameters(std::size_t index)
{
  FeatureParameters prepared = PrepareRebuildParameters(items[index]);
  if (!CallRebuild(index, prepared))
    return false;
  items[index].parameters = std::move(prepared);
  return true;
}

bool FeatureHistoryManager::CallRebuild(std::size_t index,
                                        const FeatureParameters& parameters) const
{
  // A function that changes the history against the rules must not pull its own ground away.
  const int id = items[index].id;
  const TDF_Label label = items[index].label;
  const FeatureRebuildFunc rebuild = items[index].rebuildFunc;
  const Orvex::RebuildScope scope(id);
  return rebuild(label, parameters) && index < items.size() && items[index].id == id;
}

bool FeatureHistoryManager::RebuildFeature(const TDF_Label& label,
                                           const FeatureParameters& parameters)
{
  const FeatureHistoryItem* item = GetFeatureByLabel(label);
  return item != nullptr && RebuildFeature(item->id, parameters);
}

bool FeatureHistoryManager::RebuildFeature(int id, const FeatureParameters& parameters)
{
  const int index = IndexOf(id);
  if (index < 0)
    return false;
  const std::vector<bool> suppressed = Orvex::EffectiveSuppression(items);
  const auto place = static_cast<std::size_t>(index);
  if (suppressed[place] || !items[place].rebuildFunc || items[place].label.IsNull())
    return false;
  const auto snapshot = Orvex::CaptureSnapshot(items, Orvex::DependentsFrom(items, index));
  if (RebuildChain(index, parameters, suppressed))
    return true;
  RollBack(snapshot);
  return false;
}

void FeatureHistoryManager::RollBack(const std::vector<Orvex::FeatureSnapshot>& snapshots)
{
  Orvex::RestoreSnapshot(items, snapshots);
  for (const Orvex::FeatureSnapshot& snapshot : snapshots)
    if (const auto place = static_cast<std::size_t>(snapshot.index);
        !snapshot.hadShape && place < items.size())
      items[place].shapeType = DeriveShapeType(items[place].label);
}

bool FeatureHistoryManager::RebuildChain(int index, const FeatureParameters& parameters,
                                         const std::vector<bool>& suppressed)
{
  const auto place = static_cast<std::size_t>(index);
  FeatureParameters refreshed = Orvex::RefreshReferences(items[place].type, parameters);
  if (!CallRebuild(place, refreshed))
    return false;
  items[place].parameters = std::move(refreshed);
  items[place].shapeType = DeriveShapeType(items[place].label);
  return ReplayLater(index, suppressed, Kinds::Refresh);
}

const FeatureHistoryItem* FeatureHistoryManager::GetCurrentRebuildFeature() const
{
  const auto id = Orvex::RebuildScope::Current();
  return id ? GetFeature(*id) : nullptr;
}

const FeatureHistoryItem*
FeatureHistoryManager::ResolveFeatureForRebuild(const TDF_Label& label) const
{
  const FeatureHistoryItem* current = GetCurrentRebuildFeature();
  return current != nullptr && current->label == label ? current : GetFeatureByLabel(label);
}
