#include "collision/InterferenceChecker.h"

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/InterferenceSearch.h"
#include "collision/internal/PartRecords.h"

#include <algorithm>

namespace {

double DiagonalOf(const Bnd_Box& box)
{
  if (box.IsVoid())
    return 0;
  gp_Pnt low, high;
  box.Get(low.ChangeCoord().ChangeData()[0], low.ChangeCoord().ChangeData()[1],
          low.ChangeCoord().ChangeData()[2], high.ChangeCoord().ChangeData()[0],
          high.ChangeCoord().ChangeData()[1], high.ChangeCoord().ChangeData()[2]);
  return low.Distance(high);
}

// The median is the upper one of two in the middle.
OrvexSceneStats StatsOf(const std::vector<OrvexModelPart>& parts)
{
  OrvexSceneStats stats;
  stats.partCount = parts.size();
  Bnd_Box box;
  std::vector<double> volumes;
  for (const OrvexModelPart& part : parts) {
    if (!part.isValid())
      continue;
    box.Add(part.box);
    volumes.push_back(std::abs(part.volume));
  }
  stats.sceneDiagonal = DiagonalOf(box);
  if (!volumes.empty()) {
    std::sort(volumes.begin(), volumes.end());
    stats.largestVolume = volumes.back();
    stats.medianVolume = volumes[volumes.size() / 2];
  }
  return stats;
}

} // namespace

InterferenceChecker::Results InterferenceChecker::FindCollisionsDetailed(
  const Shapes& shapes, const OrvexCollisionConfig& config, const PairProgress& progress,
  OrvexCollisionMetrics* metrics, OrvexCollisionTrace* trace)
{
  if (shapes.size() < 2)
    return {};
  const std::vector<OrvexModelPart> parts = Orvex::PartsOf(shapes);
  return OrvexCollisionEngine(config, StatsOf(parts)).compute(parts, progress, metrics, trace);
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
