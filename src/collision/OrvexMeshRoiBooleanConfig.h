// How OrvexMeshRoiBoolean looks for the region and clips to it. Lengths in model units.
#pragma once

struct OrvexMeshRoiBooleanConfig
{
  // Around the region, as a share of its diagonal; the larger of this and the next counts.
  double relativeMargin = 0.05;
  // At 0 or below: twice the fuzzy tolerance.
  double absoluteMargin = 0;
  // Linear deflection of the meshes, at least 0.0001.
  double meshDeflection = 0.1;
  // 1: six slabs are cut away, one after the other. Any other value: the common with a box.
  int clipMode = 0;
  // Take the whole shapes where clipping, or the boolean on the pieces, fails.
  bool fallbackFull = true;
};
