#include "features/internal/FeatureSnapshot.h"

#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "kernel/internal/BrepText.h"

namespace Orvex {

namespace {

bool HasDocument()
{
  return !ShapeDocMgr::GetInstance()->GetDoc().IsNull();
}

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return label.IsNull() || !HasDocument() ? TopoDS_Shape()
                                          : ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

void RestoreShape(const TDF_Label& label, const FeatureSnapshot& snapshot)
{
  if (snapshot.brep.empty() || label.IsNull() || !HasDocument())
    return;
  TopoDS_Shape shape = ShapeOfBrepText(snapshot.brep);
  if (!shape.IsNull())
    ShapeLabelMgr::GetInstance()->ConnectShapeAndLable(shape, label);
}

} // namespace

std::vector<FeatureSnapshot> CaptureSnapshot(const FeatureItems& items,
                                             const std::vector<int>& indices)
{
  std::vector<FeatureSnapshot> snapshots;
  LabelSet captured;
  for (const int index : indices) {
    if (index < 0 || static_cast<std::size_t>(index) >= items.size())
      continue;
    const FeatureHistoryItem& item = items[static_cast<std::size_t>(index)];
    FeatureSnapshot snapshot{index, item.suppressed, item.parameters, item.shapeType, false, {}};
    snapshot.hadShape = !ShapeOn(item.label).IsNull();
    if (snapshot.hadShape && captured.insert(item.label).second)
      snapshot.brep = BrepText(ShapeOn(item.label));
    snapshots.push_back(std::move(snapshot));
  }
  return snapshots;
}

void RestoreSnapshot(FeatureItems& items, const std::vector<FeatureSnapshot>& snapshots)
{
  for (const FeatureSnapshot& snapshot : snapshots) {
    if (static_cast<std::size_t>(snapshot.index) >= items.size())
      continue;
    FeatureHistoryItem& item = items[static_cast<std::size_t>(snapshot.index)];
    item.suppressed = snapshot.suppressed;
    item.parameters = snapshot.parameters;
    if (snapshot.hadShape)
      item.shapeType = snapshot.shapeType;
    RestoreShape(item.label, snapshot);
  }
}

} // namespace Orvex
