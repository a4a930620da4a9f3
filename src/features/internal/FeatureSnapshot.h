// What a failed rebuild puts back: flags and parameters of the items that it may touch, and the
// shapes on their labels as text, since a rebuild function may change a shape in place.
//
// Cost: writing a shape takes far longer than the rest. Of items that share a label, only the first
// holds its shape.
#pragma once

#include "features/internal/FeatureRelations.h"

namespace Orvex {

struct FeatureSnapshot
{
  int index = 0;
  bool suppressed = false;
  FeatureParameters parameters;
  std::string brep;
  bool hadShape = false;
};

std::vector<FeatureSnapshot> CaptureSnapshot(const FeatureItems& items,
                                             const std::vector<int>& indices);

// Restored shapes are new objects. A label that had no shape stays as the failed rebuild left it.
void RestoreSnapshot(FeatureItems& items, const std::vector<FeatureSnapshot>& snapshots);

} // namespace Orvex
