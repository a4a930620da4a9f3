#include "features/FeatureHistoryManager.h"

#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/internal/DeleteClosure.h"
#include "features/internal/FeatureMeta.h"
#include "features/internal/FeatureRelations.h"
#include "features/internal/FeatureSnapshot.h"
#include "features/internal/SharedCallable.h"
#include "features/internal/SubShapeReferences.h"

#include <algorithm>

FeatureHistoryManager::FeatureHistoryManager()
    : labelIndex(std::make_unique<Orvex::FeatureLabelIndex>())
{}

FeatureHistoryManager::~FeatureHistoryManager() = default;

FeatureHistoryManager& FeatureHistoryManager::GetInstance()
{
  static FeatureHistoryManager& manager = []() -> FeatureHistoryManager& {
    auto* made = new FeatureHistoryManager();
    ShapeDocMgr::SetDocumentChangedHook([made] { made->RebuildFromLabels({}); });
    return *made;
  }();
  return manager;
}

std::string FeatureHistoryManager::DeriveShapeType(const TDF_Label& label)
{
  const TopoDS_Shape shape =
    label.IsNull() ? TopoDS_Shape() : ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  if (shape.IsNull())
    return "Imported";
  switch (shape.ShapeType()) {
  case TopAbs_COMPOUND:
    return "Compound";
  case TopAbs_COMPSOLID:
    return "CompSolid";
  case TopAbs_SOLID:
    return "Solid";
  case TopAbs_SHELL:
    return "Shell";
  case TopAbs_FACE:
    return "Face";
  case TopAbs_WIRE:
    return "Wire";
  case TopAbs_EDGE:
    return "Edge";
  case TopAbs_VERTEX:
    return "Vertex";
  default:
    return "Shape";
  }
}

std::string FeatureHistoryManager::DeriveDisplayName(const TDF_Label& label, int id)
{
  std::string name = ShapeLabelMgr::GetInstance()->GetShapeNameByLabel(label);
  return name.empty() ? std::string("Shape").append(std::to_string(id)) : name;
}

int FeatureHistoryManager::AddFeature(const std::string& type, const std::string& name,
                                      const TDF_Label& label, const std::vector<TDF_Label>& inputs)
{
  FeatureHistoryItem wanted;
  wanted.type = type;
  wanted.name = name;
  wanted.label = label;
  wanted.inputs = inputs;
  if (FeatureHistoryItem* same = FindSameFeature(wanted)) {
    same->suppressed = false;
    return same->id;
  }
  return AppendItem(std::move(wanted)).id;
}

int FeatureHistoryManager::AddFeature(const std::string& type, const std::string& name,
                                      const TDF_Label& label, const std::vector<TDF_Label>& inputs,
                                      const FeatureParameters& parameters,
                                      FeatureRebuildFunc rebuildFunc)
{
  FeatureHistoryItem wanted;
  wanted.type = type;
  wanted.name = name;
  wanted.label = label;
  wanted.inputs = inputs;
  wanted.parameters = parameters;
  wanted.rebuildFunc = Orvex::Shared(std::move(rebuildFunc));
  if (FeatureHistoryItem* same = FindSameFeature(wanted)) {
    same->suppressed = false;
    if (wanted.rebuildFunc)
      same->rebuildFunc = std::move(wanted.rebuildFunc);
    return same->id;
  }
  const int id = AppendItem(std::move(wanted)).id;
  Orvex::PersistMetaToLabel(label, type, parameters);
  return id;
}

FeatureHistoryItem* FeatureHistoryManager::FindSameFeature(const FeatureHistoryItem& wanted)
{
  FeatureHistoryItem* item = GetFeatureByLabel(wanted.label);
  const bool same = item != nullptr && item->type == wanted.type && item->name == wanted.name &&
                    item->label == wanted.label && item->inputs == wanted.inputs &&
                    item->parameters == wanted.parameters &&
                    static_cast<bool>(item->rebuildFunc) == static_cast<bool>(wanted.rebuildFunc);
  return same ? item : nullptr;
}

FeatureHistoryItem& FeatureHistoryManager::AppendItem(FeatureHistoryItem item)
{
  item.id = nextId++;
  item.order = static_cast<int>(items.size());
  item.suppressed = false;
  item.shapeType = DeriveShapeType(item.label);
  // The index reads what is behind its end when it is asked next.
  items.push_back(std::move(item));
  return items.back();
}

bool FeatureHistoryManager::UpsertFeature(const std::string& type, const std::string& name,
                                          const TDF_Label& label,
                                          const std::vector<TDF_Label>& inputs)
{
  if (label.IsNull())
    return false;
  FeatureHistoryItem* item = GetFeatureByLabel(label);
  if (item == nullptr) {
    AddFeature(type, name, label, inputs);
    return true;
  }
  if (!Orvex::InputsPrecedeFeature(items, IndexOf(*item), inputs))
    return false;
  item->type = type;
  item->name = name;
  item->inputs = inputs;
  item->suppressed = false;
  item->shapeType = DeriveShapeType(label);
  return true;
}

bool FeatureHistoryManager::RemoveFeature(int id)
{
  const int index = IndexOf(id);
  return index >= 0 && RemoveItems(Orvex::DependentsFrom(items, index));
}

bool FeatureHistoryManager::RemoveFeaturesByLabel(const TDF_Label& label)
{
  return RemoveItems(Orvex::DependentsOfLabel(items, label));
}

bool FeatureHistoryManager::RemoveItems(const std::vector<int>& indices)
{
  if (indices.empty())
    return false;
  std::vector<FeatureHistoryItem> kept;
  kept.reserve(items.size() - indices.size());
  auto removed = indices.begin();
  for (std::size_t index = 0; index < items.size(); ++index) {
    if (removed != indices.end() && static_cast<std::size_t>(*removed) == index)
      ++removed;
    else
      kept.push_back(std::move(items[index]));
  }
  items = std::move(kept);
  RenumberOrder();
  MarkLabelIndexDirty();
  return true;
}

bool FeatureHistoryManager::ReorderFeature(int id, int newIndex)
{
  const int index = IndexOf(id);
  if (newIndex < 0 || static_cast<std::size_t>(newIndex) >= items.size() || index < 0 ||
      !Orvex::KeepsProvidersWhenMoved(items, index, newIndex))
    return false;
  const auto from = items.begin() + index;
  const auto to = items.begin() + newIndex;
  if (from < to)
    std::rotate(from, from + 1, to + 1);
  else
    std::rotate(to, from, from + 1);
  RenumberOrder();
  MarkLabelIndexDirty();
  return true;
}

void FeatureHistoryManager::RenumberOrder()
{
  int order = 0;
  for (FeatureHistoryItem& item : items)
    item.order = order++;
}

int FeatureHistoryManager::IndexOf(int id) const
{
  const auto found = std::find_if(items.begin(), items.end(),
                                  [id](const FeatureHistoryItem& item) { return item.id == id; });
  return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

int FeatureHistoryManager::IndexOf(const FeatureHistoryItem& item) const
{
  return static_cast<int>(&item - items.data());
}

bool FeatureHistoryManager::SuppressFeature(int id)
{
  const int index = IndexOf(id);
  if (index < 0)
    return false;
  FeatureHistoryItem& item = items[static_cast<std::size_t>(index)];
  if (item.suppressed)
    return true;
  item.suppressed = true;
  ApplyVisibility(Orvex::DependentsFrom(items, index));
  return true;
}

void FeatureHistoryManager::ApplyVisibility(const std::vector<int>& indices)
{
  if (ShapeDocMgr::GetInstance()->GetDoc().IsNull())
    return;
  const std::vector<bool> suppressed = Orvex::EffectiveSuppression(items);
  ShapeLabelMgr* registry = ShapeLabelMgr::GetInstance();
  for (const int index : indices) {
    const auto place = static_cast<std::size_t>(index);
    if (place >= items.size())
      continue;
    TopoDS_Shape shape = registry->GetShapeByLabel(items[place].label);
    registry->SetShapeVisibilty(shape, !suppressed[place]);
  }
}

bool FeatureHistoryManager::IsFeatureDirectlySuppressed(int id)
{
  const FeatureHistoryItem* item = GetFeature(id);
  return item != nullptr && item->suppressed;
}

bool FeatureHistoryManager::IsFeatureEffectivelySuppressed(int id)
{
  const int index = IndexOf(id);
  return index >= 0 && Orvex::EffectiveSuppression(items)[static_cast<std::size_t>(index)];
}

bool FeatureHistoryManager::IsInputOfAnyFeature(const TDF_Label& label)
{
  return !label.IsNull() &&
         std::any_of(items.begin(), items.end(), [&](const FeatureHistoryItem& item) {
           return std::find(item.inputs.begin(), item.inputs.end(), label) != item.inputs.end();
         });
}

std::vector<TDF_Label>
FeatureHistoryManager::CollectDeleteClosureLabels(const std::vector<TDF_Label>& labels)
{
  return Orvex::CollectDeleteClosure(items, labels);
}

std::vector<FeatureHistoryItem> FeatureHistoryManager::GetAllFeatures()
{
  std::vector<FeatureHistoryItem> copies = items;
  const std::vector<bool> suppressed = Orvex::EffectiveSuppression(items);
  for (std::size_t index = 0; index < copies.size(); ++index)
    copies[index].suppressed = suppressed[index];
  return copies;
}

FeatureHistoryItem* FeatureHistoryManager::GetFeature(int id)
{
  const int index = IndexOf(id);
  return index < 0 ? nullptr : &items[static_cast<std::size_t>(index)];
}

const FeatureHistoryItem* FeatureHistoryManager::GetFeature(int id) const
{
  const int index = IndexOf(id);
  return index < 0 ? nullptr : &items[static_cast<std::size_t>(index)];
}

FeatureHistoryItem* FeatureHistoryManager::GetFeatureByLabel(const TDF_Label& label)
{
  const int index = labelIndex->Find(items, label);
  return index < 0 ? nullptr : &items[static_cast<std::size_t>(index)];
}

const FeatureHistoryItem* FeatureHistoryManager::GetFeatureByLabel(const TDF_Label& label) const
{
  const int index = labelIndex->Find(items, label);
  return index < 0 ? nullptr : &items[static_cast<std::size_t>(index)];
}

void FeatureHistoryManager::MarkLabelIndexDirty()
{
  labelIndex->MarkDirty();
}

FeatureParameters FeatureHistoryManager::GetFeatureParameters(const TDF_Label& label)
{
  const FeatureHistoryItem* item = GetFeatureByLabel(label);
  return item == nullptr ? FeatureParameters() : item->parameters;
}

FeatureParameters FeatureHistoryManager::GetFeatureParameters(int id)
{
  const FeatureHistoryItem* item = GetFeature(id);
  return item == nullptr ? FeatureParameters() : item->parameters;
}

bool FeatureHistoryManager::SetFeatureParameters(const TDF_Label& label,
                                                 const FeatureParameters& parameters)
{
  return SetParametersOf(GetFeatureByLabel(label), parameters);
}

bool FeatureHistoryManager::SetFeatureParameters(int id, const FeatureParameters& parameters)
{
  return SetParametersOf(GetFeature(id), parameters);
}

bool FeatureHistoryManager::SetParametersOf(FeatureHistoryItem* item,
                                            const FeatureParameters& parameters)
{
  if (item == nullptr || !Orvex::InputsPrecedeFeature(items, IndexOf(*item), item->inputs))
    return false;
  item->parameters = Orvex::RefreshReferences(item->type, parameters);
  item->shapeType = DeriveShapeType(item->label);
  Orvex::PersistMetaToLabel(item->label, item->type, item->parameters);
  return true;
}

bool FeatureHistoryManager::SetFeatureRebuildFunc(const TDF_Label& label,
                                                  FeatureRebuildFunc rebuildFunc)
{
  return SetRebuildFuncOf(GetFeatureByLabel(label), std::move(rebuildFunc));
}

bool FeatureHistoryManager::SetFeatureRebuildFunc(int id, FeatureRebuildFunc rebuildFunc)
{
  return SetRebuildFuncOf(GetFeature(id), std::move(rebuildFunc));
}

bool FeatureHistoryManager::SetRebuildFuncOf(FeatureHistoryItem* item,
                                             FeatureRebuildFunc rebuildFunc)
{
  if (item == nullptr || !Orvex::InputsPrecedeFeature(items, IndexOf(*item), item->inputs))
    return false;
  item->rebuildFunc = Orvex::Shared(std::move(rebuildFunc));
  item->shapeType = DeriveShapeType(item->label);
  return true;
}
