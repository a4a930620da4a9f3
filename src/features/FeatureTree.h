// The feature history in a document that is saved: what it needs beyond the types and parameters
// that features leave on their labels.
//
//   Orvex::StoreFeatureTree();                  // before saving
//   ...
//   ShapeDocMgr::GetInstance()->SetDoc(doc);    // after opening
//   Orvex::RestoreFeatureTree();
//   ParametricFeatureManager::GetInstance().RecomputeAllRegisteredFeatures(true);
//
// The record of a label stands beside the feature meta: order, type, name, inputs, suppression and
// the expressions of its parameters, as JSON. Of several items on one label the last one is kept.
// Rebuild functions of the history are not stored; the application gives them again with
// FeatureHistoryManager::SetFeatureRebuildFunc. Booleans and parametric shapes need none: the
// dependency graph knows how to make them.
#pragma once

#include "foundation/Export.h"

namespace Orvex {

// Writes the history on the labels of the current document, in a command of its own or in the one
// that is open. Records of labels that are no longer in the history go.
ORVEX_API void StoreFeatureTree();

// Replaces the history by what stands on the shape labels of the current document, and gives the
// stored expressions to the dependency graph. Labels without a record come last, as plain entries.
// A record that cannot be read counts as none; inputs that would come after their consumer are left
// out.
ORVEX_API void RestoreFeatureTree();

} // namespace Orvex
