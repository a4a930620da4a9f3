// Measures of a whole scene. Tolerances and mesh sizes of a configuration are shares of its
// diagonal.
#pragma once

#include "foundation/Export.h"

#include <cstddef>

struct ORVEX_API OrvexSceneStats
{
  std::size_t partCount = 0;
  // Of the box around all parts, in model units. 0: unknown. Meshes are then as fine as they can
  // be, which takes minutes for curved parts.
  double sceneDiagonal = 0;
  // In cubic model units.
  double largestVolume = 0;
  double medianVolume = 0;
  // For callers; the library leaves them 0 and false.
  double measureA = 0;
  double measureB = 0;
  double measureC = 0;
  double measureD = 0;
  bool flag = false;

  // Adds the counts, keeps the larger of each measure and sets the flag if either has it.
  void merge(const OrvexSceneStats& other);
};
