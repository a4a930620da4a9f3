// Measures of a whole scene. Tolerances and mesh sizes of a configuration are shares of its
// diagonal.
#pragma once

#include "foundation/Export.h"

#include <cstddef>
#include <vector>

struct OrvexModelPart;

struct ORVEX_API OrvexSceneStats
{
  std::size_t partCount = 0;
  // Of the box around all parts, in model units. 0: unknown; meshes are then as fine as they can
  // be, which takes seconds for a curved part.
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

  // Of all parts, also those without a shape, which count and measure nothing. Of an even number of
  // volumes the median is the upper one in the middle; volumes count without their sign.
  static OrvexSceneStats fromParts(const std::vector<OrvexModelPart>& parts);

  // Adds the counts, keeps the larger of each measure and sets the flag if either has it.
  void merge(const OrvexSceneStats& other);
};
