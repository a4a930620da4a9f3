// The dependency graph from the feature history. Stands above the rest of the graph, since it knows
// the kinds of primitives.
#include "features/FeatureHistoryManager.h"
#include "features/ParametricFeatureManager.h"
#include "features/internal/BooleanFeature.h"
#include "features/registration/internal/PrimitiveFeature.h"

// Primitives first, so that the operands of a boolean stand in the graph before it.
void ParametricFeatureManager::rebuildDependenciesFromHistory()
{
  const std::vector<FeatureHistoryItem> items =
    FeatureHistoryManager::GetInstance().GetAllFeatures();
  for (const FeatureHistoryItem& item : items)
    Orvex::RegisterPrimitiveFeatureFromHistory(item);
  for (const FeatureHistoryItem& item : items)
    if (Orvex::IsBooleanKind(item.type))
      Orvex::RegisterBooleanFeatureFromHistory(item);
}
