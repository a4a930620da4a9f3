// How a run of the collision engine came to its results, for those who want to know: at which stage
// pairs were cleared or found, what was meshed, and where the kernel's exact distance is wrong.
#pragma once

#include "collision/OrvexCollisionResult.h"

#include <array>
#include <cstddef>
#include <vector>

// Stages in the order in which a pair passes them.
enum class OrvexCollisionStage { Box, Mesh, Exact, Boolean };

// Two parts that a run cleared, though they overlap.
struct OrvexMissedOverlap
{
  int partA = -1;
  int partB = -1;
  // What the run took for their distance, in model units; +infinity if a filter cleared them.
  double reportedDistance = 0;
  // Of the common solid, in cubic model units.
  double overlapVolume = 0;
};

struct OrvexCollisionTrace
{
  static constexpr std::size_t kStageCount = 4;

  // To be set before the run: pairs that come out clear though their boxes meet are checked. Where
  // their meshes cross, or the box of one lies in that of the other, the common solid is made; if
  // it has a volume, the pair is listed below. The results of the run stay what they are without
  // the check. What it finds is what the configuration overlooks (see OrvexCollisionEngine) or
  // where the kernel's exact distance is wrong.
  bool checkCleared = false;

  // Pairs by the stage that decided, with OrvexCollisionStage as the index. A pair whose exact
  // stages failed counts as cleared by the stage it failed in.
  std::array<int, kStageCount> cleared{};
  std::array<int, kStageCount> collided{};

  // Made in this run; what was kept from an earlier one does not count. Shapes that parts share
  // are meshed once.
  int meshedShapes = 0;
  int meshedParts = 0;
  std::size_t triangles = 0;
  // Memory of the trees over these triangles.
  std::size_t treeBytes = 0;

  // In the order of the pairs.
  std::vector<OrvexMissedOverlap> missedOverlaps;

  // What was found before a callback threw; empty for a run that returned.
  std::vector<OrvexCollisionResult> foundBeforeThrow;

  int clearedBy(OrvexCollisionStage stage) const
  {
    return cleared[static_cast<std::size_t>(stage)];
  }

  int collidedAt(OrvexCollisionStage stage) const
  {
    return collided[static_cast<std::size_t>(stage)];
  }
};
