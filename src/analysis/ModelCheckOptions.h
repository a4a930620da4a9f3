// What a model check takes for small.
#pragma once

#include <cstdint>

// Lengths in model units. A limit of 0, a negative one and one that is not a number switch their
// check off.
struct ModelCheckOptions
{
  // An edge shorter than this is a short edge.
  double shortEdgeThreshold = 1.0;
  // A circular edge, or a cylinder between circular edges, below this radius is a small hole.
  double smallHoleRadius = 1.0;
  // Any other cylinder, a sphere or a torus below this radius is a small blend.
  double smallBlendRadius = 1.0;
  // A small planar face whose shortest edge is below this is a small chamfer.
  double smallChamferWidth = 1.0;
  // A face below this area is tiny; one below three times as much can be a chamfer.
  double tinyFaceArea = 2.0;
  // Of each shape so many issues are kept, the first ones. Below 1 counts as 1.
  std::int32_t maxIssuesPerShape = 200;
};
