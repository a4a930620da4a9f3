// Finds the pairs of parts in a scene that touch or overlap.
//
// A run proposes pairs by a space index, drops those whose boxes are apart, filters the rest on
// meshes or boxes of faces, and lets what is left be decided by the kernel's exact distance and
// common solid, or by the distance between the meshes: the configuration tells which.
//
//   OrvexCollisionEngine engine(OrvexCollisionConfig::createBalancedConfig(), stats);
//   for (const OrvexCollisionResult& pair : engine.computeFromShapes(shapes, {}, nullptr)) ...
//
// Guarantees:
// - The same input gives the same results in the same order, with one thread or many.
// - Shapes stay as they are, but for meshes that are put on them. Parts may share what is below
//   their locations: each distinct shape is meshed once, and never by two threads at a time.
// - Only what stands in a pair whose boxes meet is meshed.
//
// Caveats: what a configuration overlooks.
// - The octree pairs parts of one leaf only, and the curve (useMortonIndex) only neighbours; grid
//   and R-tree lose no parts whose boxes meet. Contacts of parts that are apart, by less than the
//   tolerance, can be lost by all of them.
// - The filters on meshes and faces look at surfaces: a part wholly inside another one, away from
//   its surface, is cleared. So is, by the distance between meshes, any part inside another.
// - Meshes cut corners: parts that touch on curved surfaces can come out apart.
// - The distance between meshes (exactMode 0, the fast preset) is that of edges and corners: it is
//   positive for parts that cross each other's faces, and is given up early for large parts
//   (farFactor). It finds parts that touch rather than parts that overlap.
// - The kernel's exact distance is positive for a few overlapping pairs.
// OrvexCollisionTrace finds what was overlooked, the proposals of an index apart.
// The settings that overlook none of this, the last apart: spaceIndexKind 0, narrowPhaseMode 1,
// exactMode 1.
//
// For one thread at a time; a run uses threads of its own. Two runs at a time must share no shapes.
#pragma once

#include "collision/OrvexCollisionConfig.h"
#include "collision/OrvexCollisionMetrics.h"
#include "collision/OrvexCollisionResult.h"
#include "collision/OrvexCollisionTrace.h"
#include "collision/OrvexModelPart.h"
#include "collision/OrvexSceneStats.h"
#include "foundation/Export.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Orvex {
class CollisionRun;
template <typename Entry>
class PartCache;
} // namespace Orvex

class ORVEX_API OrvexCollisionEngine
{
public:
  // Pairs done, and how many there are. Called on the thread that computes, after the work is done
  // when threads share it. What it throws ends the run and goes to the caller; the engine is as
  // good as before, and what was found is in lastMetrics() and the trace.
  using Progress = std::function<void(int, int)>;

  // The default configuration without statistics: give those of the scene before a run.
  OrvexCollisionEngine();
  explicit OrvexCollisionEngine(double fuzzyTolerance);
  OrvexCollisionEngine(const OrvexCollisionConfig& config, const OrvexSceneStats& stats);
  ~OrvexCollisionEngine();
  OrvexCollisionEngine(OrvexCollisionEngine&&) noexcept;
  OrvexCollisionEngine& operator=(OrvexCollisionEngine&&) noexcept;

  // Takes over configuration and statistics with the fuzzy tolerance that follows from them, and
  // forgets the meshes; boxes of faces stay.
  void setStrategy(const OrvexCollisionConfig& config, const OrvexSceneStats& stats);

  // In model units; what is below 0 counts as 0.
  void setFuzzyTolerance(double value);

  double fuzzyTolerance() const;
  const OrvexCollisionConfig& config() const;
  const OrvexSceneStats& sceneStats() const;
  OrvexCollisionMetrics lastMetrics() const;

  // The pairs that collide, those whose boxes overlap most first (config().keepPairOrder).
  // Arguments: `progress` may be empty, `metrics` and `trace` may be null.
  // Returns: nothing, with the metrics untouched, for fewer than two parts.
  // Errors: a pair whose exact test fails is counted in failedPairs and left out. Only what
  //   `progress` throws passes.
  std::vector<OrvexCollisionResult> compute(const std::vector<OrvexModelPart>& parts,
                                            const Progress& progress,
                                            OrvexCollisionMetrics* metrics) const;
  std::vector<OrvexCollisionResult> compute(const std::vector<OrvexModelPart>& parts,
                                            const Progress& progress,
                                            OrvexCollisionMetrics* metrics,
                                            OrvexCollisionTrace* trace) const;

  // The same for shapes, as parts "Part_0", "Part_1", ... Null shapes collide with nothing.
  // Errors: Standard_Failure of measuring a shape passes, too.
  std::vector<OrvexCollisionResult> computeFromShapes(const std::vector<TopoDS_Shape>& shapes,
                                                      const Progress& progress,
                                                      OrvexCollisionMetrics* metrics) const;

  // Defined where they are needed, inside the library.
  class SpaceIndexBase;
  class GridIndex;
  class OctreeIndex;
  class RTreeIndex;
  class LBVHIndex;
  struct TriBVH;
  struct FaceBVH;
  struct FaceOctree;

private:
  friend class Orvex::CollisionRun;
  using Parts = std::vector<OrvexModelPart>;
  using Pairs = std::vector<std::pair<int, int>>;

  void buildSpaceIndex(const Parts& parts) const;
  Pairs generateCandidatePairs(const Parts& parts) const;
  void buildMeshBVHCache(const Parts& parts) const;
  void buildFaceBVHCache(const Parts& parts) const;
  void buildFaceOctreeCache(const Parts& parts) const;

  double contactTolerance() const;

  // What is known of the pair after the stages behind the box test, and which of them decided.
  OrvexCollisionResult processPair(int i, int j, const Parts& parts, double tolerance,
                                   std::atomic<int>* failed, OrvexCollisionStage& stage) const;
  bool isDecidedByFilter(double tolerance, OrvexCollisionResult& result) const;
  bool isDecidedByMeshDistance(OrvexCollisionResult& result) const;
  void decideExactly(const Parts& parts, OrvexCollisionResult& result,
                     OrvexCollisionStage& stage) const;
  void decideByCommon(const Parts& parts, OrvexCollisionResult& result) const;

  // May overlap, as far as the boxes of faces tell.
  bool faceBVHPossibleOverlap(int i, int j, double tolerance) const;
  bool faceOctreePossibleOverlap(int i, int j, double tolerance) const;
  bool triBVHPossibleOverlap(int i, int j, double tolerance) const;
  bool triBVHDistance(int i, int j, double tolerance, double& distance, bool& within) const;
  bool triOctreeIntersect(int i, int j, double tolerance, double& distance, bool& hit) const;

  double fuzzy;
  OrvexCollisionConfig configuration;
  OrvexSceneStats stats;
  mutable std::unique_ptr<SpaceIndexBase> spaceIndex;
  mutable OrvexCollisionMetrics metricsOfLastRun;
  mutable std::unique_ptr<Orvex::PartCache<TriBVH>> triBVHCache;
  mutable std::unique_ptr<Orvex::PartCache<FaceBVH>> faceBVHCache;
  mutable std::unique_ptr<Orvex::PartCache<FaceOctree>> faceOctreeCache;
};
