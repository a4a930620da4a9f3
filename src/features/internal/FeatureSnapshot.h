// What a failed rebuild puts back: flags, parameters and kinds of shape of the items that it may
// touch, and the shapes on their labels as text, since a rebuild function may change a shape in
// place.
//
// Cost: writing a shape takes far longer than the rest.
#pragma once

#include "features/internal/FeatureRelations.h"

namespace Orvex {

struct FeatureSnapshot
{
  int index = 0;
  bool suppressed = false;
  FeatureParameters parameters;
  std::string shapeType;
  // Whether there was a shape on the label, and its text; of several items on one label only the
  // first has the text.
  bool hadShape = false;
  std::string brep;
};

std::vector<FeatureSnapshot> CaptureSnapshot(const FeatureItems& items,
                                             const std::vector<int>& indices);

// Restored shapes are new objects. A label that had no shape stays as the failed rebuild left it,
// and so does the kind of shape of its items.
void RestoreSnapshot(FeatureItems& items, const std::vector<FeatureSnapshot>& snapshots);

} // namespace Orvex
