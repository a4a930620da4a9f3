#include "collision/InterferenceChecker.h"

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/InterferenceSearch.h"
#include "collision/internal/PartRecords.h"

InterferenceChecker::Results
InterferenceChecker::FindCollisionsAccurate(const Shapes& shapes, const PairProgress& progress,
                                            OrvexCollisionMetrics* metrics)
{
  return FindCollisionsDetailed(shapes, OrvexCollisionConfig::createAccurateConfig(), progress,
                                metrics);
}

InterferenceChecker::IndexPairs InterferenceChecker::FindInterferences(const Shapes& shapes,
                                                                       double tolerance)
{
  return FindInterferencesWithProgress(shapes, tolerance, {});
}

InterferenceChecker::IndexPairs
InterferenceChecker::FindInterferencesWithProgress(const Shapes& shapes, double tolerance,
                                                   const Continue& progress)
{
  return FindInterferencesMeshFiltered(shapes, tolerance, {}, progress);
}

InterferenceChecker::IndexPairs InterferenceChecker::FindInterferencesMeshFiltered(
  const Shapes& shapes, double tolerance, const MeshOptions& options, const Continue& progress)
{
  if (shapes.size() < 2)
    return {};
  return Orvex::InterferenceSearch(shapes, tolerance, options, progress).Run();
}
