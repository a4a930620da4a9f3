// Tests of two meshes on their trees.
//
// The walk over two trees visits each pair of nodes at most once. It descends the second tree to
// its leaves first, the right child before the left, and the first tree below that: leaf pairs come
// in the order in which a walk that descends either tree at each step would meet them first.
#pragma once

#include "collision/internal/TriBVH.h"

namespace Orvex {

using TriBVH = OrvexCollisionEngine::TriBVH;

struct MeshDistance
{
  // A distance was found; without it the two below mean nothing.
  bool isKnown = false;
  // Not less than what the boxes of the trees are apart; the true one unless a limit ended the
  // search.
  double distance = BoxLimits::kNone;
  // Some triangles are not farther apart than the tolerance.
  bool isWithin = false;
};

struct MeshDistanceLimits
{
  int maxNodePairVisits = 10000000; // below 1: this many
  double farFactor = 100.0;         // not above 0: this much
};

// Boxes of two leaves overlap, each enlarged by the tolerance. No triangle is looked at.
bool LeavesMayOverlap(const TriBVH& a, const TriBVH& b, double tolerance);

// Two triangles meet.
bool MeshesMeet(const TriBVH& a, const TriBVH& b, double tolerance);

// The distance between two meshes, as far as it is needed to know whether it is within the
// tolerance: parts whose boxes are ten tolerances apart get the distance of the boxes, and a search
// whose first leaves are more than farFactor tolerances apart ends there.
MeshDistance DistanceOf(const TriBVH& a, const TriBVH& b, double tolerance,
                        const MeshDistanceLimits& limits);

// The same from triangles whose centres share a cell of a grid over both parts, and no others.
// Unknown if there are none. Triangles that meet are 0 apart.
MeshDistance DistanceInGrid(const TriBVH& a, const TriBVH& b, double tolerance);

} // namespace Orvex
