// The feature history after a document was opened or changed from outside.
#include "features/FeatureHistoryManager.h"

#include "features/internal/FeatureMeta.h"
#include "features/internal/FeatureRelations.h"

#include <algorithm>

void FeatureHistoryManager::RebuildFromLabels(const std::vector<TDF_Label>& labels)
{
  if (labels.empty())
    items.clear();
  if (items.empty())
    nextId = 1;
  MarkLabelIndexDirty();
  if (!labels.empty())
    ReconcileWithLabels(labels);
}

void FeatureHistoryManager::ReconcileWithLabels(const std::vector<TDF_Label>& labels)
{
  DropItemsWithoutLabelIn(labels);
  for (FeatureHistoryItem& item : items)
    ResetIfShapeTypeChanged(item);
  for (const TDF_Label& label : labels)
    if (GetFeatureByLabel(label) == nullptr)
      AddItemFromLabel(label);
  RenumberOrder();
  MarkLabelIndexDirty();
}

void FeatureHistoryManager::DropItemsWithoutLabelIn(const std::vector<TDF_Label>& labels)
{
  const Orvex::LabelSet known(labels.begin(), labels.end());
  const auto isUnknown = [&](const FeatureHistoryItem& item) {
    return item.label.IsNull() || known.count(item.label) == 0;
  };
  items.erase(std::remove_if(items.begin(), items.end(), isUnknown), items.end());
  MarkLabelIndexDirty();
}

void FeatureHistoryManager::ResetIfShapeTypeChanged(FeatureHistoryItem& item)
{
  std::string shapeType = DeriveShapeType(item.label);
  if (!item.shapeType.empty() && item.shapeType != shapeType) {
    FeatureHistoryItem plain;
    plain.id = item.id;
    plain.label = item.label;
    plain.order = item.order;
    plain.type = shapeType;
    plain.name = DeriveDisplayName(item.label, item.id);
    item = std::move(plain);
  }
  item.shapeType = std::move(shapeType);
}

void FeatureHistoryManager::AddItemFromLabel(const TDF_Label& label)
{
  FeatureHistoryItem item;
  item.label = label;
  if (!Orvex::RestoreMetaFromLabel(label, item.type, item.parameters))
    item.type = DeriveShapeType(label);
  item.name = DeriveDisplayName(label, nextId);
  AppendItem(std::move(item));
}
