// Primitives as features, from the history: what kind of shape stands on a label, which of its
// children are parameters, and how it is made again.
#pragma once

#include "features/FeatureHistoryItem.h"
#include "features/ParametricFeatureManager.h"

#include <TDF_Label.hxx>

#include <set>
#include <string>

namespace Orvex {

// Enters the primitive on the item's label in the dependency graph. It depends on its parameters
// only: the profile of a sweep does not enter the graph by this way. Its rebuild answers false only
// when the primitive is gone from its label; what fails in it is thrown.
// Returns: false, and nothing is entered, for a null label, one without a shape, and a shape that
// is no primitive with a rebuild (lines, arcs, polygons, splines and compounds among them).
bool RegisterPrimitiveFeatureFromHistory(const FeatureHistoryItem& item);

// Adds the parameter children of a label to the record: those with one of the names; any named
// child if the set of names is empty.
void CollectParamLabels(const TDF_Label& label, const std::set<std::string>& names,
                        ParametricFeatureManager::FeatureInfo& info);

} // namespace Orvex
