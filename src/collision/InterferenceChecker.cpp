#include "collision/InterferenceChecker.h"

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/InterferenceSearch.h"
#include "collision/internal/PartRecords.h"

InterferenceChecker::Results InterferenceChecker::FindCollisionsDetailed(
  const Shapes& shapes, const OrvexCollisionConfig& config, const PairProgress& progress,
  OrvexCollisionMetrics* metrics, OrvexCollisionTrace* trace)
{
  if (shapes.size() < 2)
    return {};
  const std::vector<OrvexModelPart> parts = Orvex::PartsOf(shapes);
  return OrvexCollisionEngine(config, OrvexSceneStats::fromParts(parts))
    .compute(parts, progress, metrics, trace);
}

InterferenceChecker::Results InterferenceChecker::FindCollisionsWithOverlapShapes(
  const Shapes& shapes, const OrvexCollisionConfig& config, const PairProgress& progress,
  OrvexCollisionMetrics* metrics)
{
  OrvexCollisionConfig withShapes = config;
  withShapes.exactMode = 1;
  withShapes.computeOverlapVolume = true;
  withShapes.keepOverlapShape = true;
  return FindCollisionsDetailed(shapes, withShapes, progress, metrics);
}

InterferenceChecker::Results InterferenceChecker::FindCollisionsFast(const Shapes& shapes,
                                                                     const PairProgress& progress,
                                                                     OrvexCollisionMetrics* metrics)
{
  return FindCollisionsDetailed(shapes, OrvexCollisionConfig::createFastConfig(), progress,
                                metrics);
}

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
