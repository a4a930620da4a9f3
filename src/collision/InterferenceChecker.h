// Collision checks on a plain list of shapes.
//
// FindCollisions... measure the scene, run an OrvexCollisionEngine and give full records.
// FindInterferences... look at boxes, then make the common of each pair, and give positions in the
// list. The two use different tests and can differ on a pair: parts that touch collide, and
// interfere only if the kernel's common of the two has vertices.
//
// The shapes stay as they are, but for meshes that are put on them. Calls that share no shape may
// run side by side.
#pragma once

#include "collision/OrvexCollisionConfig.h"
#include "collision/OrvexCollisionMetrics.h"
#include "collision/OrvexCollisionResult.h"
#include "collision/OrvexCollisionTrace.h"
#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

class ORVEX_API InterferenceChecker
{
public:
  // A filter before the boolean: pairs farther apart than twice the linear deflection are passed
  // over.
  struct MeshOptions
  {
    bool enabled = false;
    double linearDeflection = 0;  // model units
    double angularDeflection = 0; // radians
  };

  using Shapes = std::vector<TopoDS_Shape>;
  using Results = std::vector<OrvexCollisionResult>;
  // Pairs done, and how many there are.
  using PairProgress = std::function<void(int, int)>;
  // Positions in the list, the smaller first.
  using IndexPairs = std::vector<std::pair<std::size_t, std::size_t>>;
  // Work done, and the number of shapes; false ends the search. The work done counts pairs of
  // shapes, some of them twice, and goes far beyond the number of shapes: no fraction of anything.
  using Continue = std::function<bool(std::size_t, std::size_t)>;

  // As OrvexCollisionEngine::computeFromShapes with the statistics of these shapes. Nothing is kept
  // from one call to the next.
  // Returns: nothing for fewer than two shapes. Null shapes collide with nothing.
  // Errors: Standard_Failure of measuring a shape passes, and what `progress` throws; a failing
  //   pair is counted in the metrics.
  static Results FindCollisionsDetailed(const Shapes& shapes, const OrvexCollisionConfig& config,
                                        const PairProgress& progress,
                                        OrvexCollisionMetrics* metrics,
                                        OrvexCollisionTrace* trace = nullptr);

  // Each pair comes with its common shape and the volume of that, whatever the configuration says.
  static Results FindCollisionsWithOverlapShapes(const Shapes& shapes,
                                                 const OrvexCollisionConfig& config,
                                                 const PairProgress& progress,
                                                 OrvexCollisionMetrics* metrics);

  // With the fast preset.
  static Results FindCollisionsFast(const Shapes& shapes, const PairProgress& progress,
                                    OrvexCollisionMetrics* metrics);

  // With the accurate preset.
  static Results FindCollisionsAccurate(const Shapes& shapes, const PairProgress& progress,
                                        OrvexCollisionMetrics* metrics);

  // Pairs whose common shape has a vertex.
  // Arguments: `tolerance` is added around the boxes of the shapes, in model units.
  // Returns: nothing for fewer than two shapes; null shapes interfere with nothing.
  // Errors: Standard_Failure of a boolean passes, and what was found is lost.
  // Cost: shapes whose boxes meet, one boolean each.
  static IndexPairs FindInterferences(const Shapes& shapes, double tolerance);

  // The same. A callback that is false gets what was found so far.
  static IndexPairs FindInterferencesWithProgress(const Shapes& shapes, double tolerance,
                                                  const Continue& progress);

  // The same with the filter.
  // Errors: Standard_Failure of the mesher (for a deflection of 0) and of distances passes, too.
  static IndexPairs FindInterferencesMeshFiltered(const Shapes& shapes, double tolerance,
                                                  const MeshOptions& options,
                                                  const Continue& progress);
};
