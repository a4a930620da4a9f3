#include "collision/OrvexCollisionEngine.h"

#include "collision/internal/CacheFilling.h"
#include "collision/internal/CollisionRun.h"
#include "collision/internal/ExactStages.h"
#include "collision/internal/PartRecords.h"
#include "collision/internal/SpaceIndexes.h"
#include "collision/internal/TriBVHTests.h"

#include <Standard_Failure.hxx>

namespace {

// No number counts as none.
double FuzzyToleranceOf(const OrvexCollisionConfig& config, const OrvexSceneStats& stats)
{
  return std::max(0.0, config.relativeFuzzy * stats.sceneDiagonal);
}

} // namespace

OrvexCollisionEngine::OrvexCollisionEngine() : OrvexCollisionEngine(0.05)
{}

OrvexCollisionEngine::OrvexCollisionEngine(double fuzzyTolerance)
    : OrvexCollisionEngine(OrvexCollisionConfig(), OrvexSceneStats())
{
  fuzzy = fuzzyTolerance;
}

OrvexCollisionEngine::OrvexCollisionEngine(const OrvexCollisionConfig& config_,
                                           const OrvexSceneStats& stats_)
    : fuzzy(FuzzyToleranceOf(config_, stats_)), configuration(config_), stats(stats_),
      triBVHCache(std::make_unique<Orvex::PartCache<TriBVH>>()),
      faceBVHCache(std::make_unique<Orvex::PartCache<FaceBVH>>()),
      faceOctreeCache(std::make_unique<Orvex::PartCache<FaceOctree>>())
{}

OrvexCollisionEngine::~OrvexCollisionEngine() = default;
OrvexCollisionEngine::OrvexCollisionEngine(OrvexCollisionEngine&&) noexcept = default;
OrvexCollisionEngine& OrvexCollisionEngine::operator=(OrvexCollisionEngine&&) noexcept = default;

void OrvexCollisionEngine::setStrategy(const OrvexCollisionConfig& config_,
                                       const OrvexSceneStats& stats_)
{
  configuration = config_;
  stats = stats_;
  fuzzy = FuzzyToleranceOf(config_, stats_);
  triBVHCache->Clear();
}

void OrvexCollisionEngine::setFuzzyTolerance(double value)
{
  fuzzy = std::max(0.0, value);
}

double OrvexCollisionEngine::fuzzyTolerance() const
{
  return fuzzy;
}

const OrvexCollisionConfig& OrvexCollisionEngine::config() const
{
  return configuration;
}

const OrvexSceneStats& OrvexCollisionEngine::sceneStats() const
{
  return stats;
}

OrvexCollisionMetrics OrvexCollisionEngine::lastMetrics() const
{
  return metricsOfLastRun;
}

std::vector<OrvexCollisionResult>
OrvexCollisionEngine::compute(const std::vector<OrvexModelPart>& parts, const Progress& progress,
                              OrvexCollisionMetrics* metrics) const
{
  return compute(parts, progress, metrics, nullptr);
}

std::vector<OrvexCollisionResult>
OrvexCollisionEngine::compute(const std::vector<OrvexModelPart>& parts, const Progress& progress,
                              OrvexCollisionMetrics* metrics, OrvexCollisionTrace* trace) const
{
  if (parts.size() < 2)
    return {};
  std::vector<OrvexCollisionResult> results =
    Orvex::CollisionRun(*this, parts, progress, trace).Run();
  if (metrics != nullptr)
    *metrics = metricsOfLastRun;
  return results;
}

std::vector<OrvexCollisionResult>
OrvexCollisionEngine::computeFromShapes(const std::vector<TopoDS_Shape>& shapes,
                                        const Progress& progress,
                                        OrvexCollisionMetrics* metrics) const
{
  return compute(Orvex::PartsOf(shapes), progress, metrics);
}

void OrvexCollisionEngine::buildSpaceIndex(const Parts& parts) const
{
  if (configuration.useMortonIndex == 1)
    spaceIndex = std::make_unique<LBVHIndex>(parts, configuration.mortonNeighbours);
  else if (configuration.spaceIndexKind == 2)
    spaceIndex = std::make_unique<OctreeIndex>(parts, configuration.octreeMaxDepth,
                                               configuration.maxItemsPerLeaf);
  else if (configuration.spaceIndexKind == 3)
    spaceIndex = std::make_unique<RTreeIndex>(parts, configuration.maxItemsPerLeaf);
  else
    spaceIndex = std::make_unique<GridIndex>(
      parts, GridIndex::CellSizeFor(stats.sceneDiagonal, configuration.sceneProfile));
}

OrvexCollisionEngine::Pairs OrvexCollisionEngine::generateCandidatePairs(const Parts& parts) const
{
  if (spaceIndex == nullptr)
    return {};
  Pairs pairs = spaceIndex->collectPairs(parts);
  const double median = stats.medianVolume;
  if (configuration.sceneProfile == 3 && median > 0 && stats.largestVolume >= 100 * median) {
    const auto isSmall = [&](int part) {
      return parts[static_cast<std::size_t>(part)].volume < 50 * median;
    };
    std::erase_if(pairs,
                  [&](const auto& pair) { return isSmall(pair.first) && isSmall(pair.second); });
  }
  return pairs;
}

void OrvexCollisionEngine::buildMeshBVHCache(const Parts& parts) const
{
  const int mode = configuration.narrowPhaseMode;
  const bool isUsed = mode == 0 || (mode >= 2 && mode <= 4) || configuration.exactMode == 0;
  if (isUsed)
    triBVHCache->SetShapes(Orvex::ShapesOf(parts), Orvex::MeshDeflection(configuration, stats));
  else
    triBVHCache->Clear();
}

void OrvexCollisionEngine::buildFaceBVHCache(const Parts& parts) const
{
  faceBVHCache->SetShapes(Orvex::ShapesOf(parts));
}

void OrvexCollisionEngine::buildFaceOctreeCache(const Parts& parts) const
{
  faceOctreeCache->SetShapes(Orvex::ShapesOf(parts));
}

double OrvexCollisionEngine::contactTolerance() const
{
  return std::max(1e-7, fuzzy);
}

OrvexCollisionResult OrvexCollisionEngine::processPair(int i, int j, const Parts& parts,
                                                       double tolerance, std::atomic<int>* failed,
                                                       OrvexCollisionStage& stage) const
{
  OrvexCollisionResult result;
  result.partA = i;
  result.partB = j;
  result.distance = Orvex::BoxLimits::kNone;
  stage = OrvexCollisionStage::Mesh;
  if (isDecidedByFilter(tolerance, result) || isDecidedByMeshDistance(result))
    return result;
  try {
    decideExactly(parts, result, stage);
  } catch (...) {
    ++*failed;
  }
  return result;
}

bool OrvexCollisionEngine::isDecidedByFilter(double tolerance, OrvexCollisionResult& result) const
{
  const int i = result.partA, j = result.partB;
  switch (configuration.narrowPhaseMode) {
  case 0:
    return !triBVHPossibleOverlap(i, j, tolerance);
  case 4: {
    double distance;
    bool hit;
    if (!triOctreeIntersect(i, j, contactTolerance(), distance, hit))
      return false;
    result.distance = hit ? 0 : distance;
    result.inContact = hit;
    result.state = hit ? OrvexCollisionResult::Intersect : OrvexCollisionResult::Clear;
    return true;
  }
  case 5:
    return !faceBVHPossibleOverlap(i, j, tolerance);
  case 6:
    return !faceOctreePossibleOverlap(i, j, tolerance);
  default:
    return false;
  }
}

bool OrvexCollisionEngine::isDecidedByMeshDistance(OrvexCollisionResult& result) const
{
  double distance;
  bool within;
  if (configuration.exactMode != 0 ||
      !triBVHDistance(result.partA, result.partB, contactTolerance(), distance, within))
    return false;
  result.distance = distance;
  if (!within && !(distance <= contactTolerance()))
    return true;
  result.state = OrvexCollisionResult::Intersect;
  result.inContact = true;
  result.distance = within ? 0 : distance;
  return true;
}

void OrvexCollisionEngine::decideExactly(const Parts& parts, OrvexCollisionResult& result,
                                         OrvexCollisionStage& stage) const
{
  stage = OrvexCollisionStage::Exact;
  const auto distance = Orvex::ExactDistanceOf(parts[static_cast<std::size_t>(result.partA)].shape,
                                               parts[static_cast<std::size_t>(result.partB)].shape);
  if (!distance)
    return;
  result.distance = distance->value;
  result.inContact = contactTolerance() >= distance->value;
  if (distance->points) {
    result.pointOnA = distance->points->onFirst;
    result.pointOnB = distance->points->onSecond;
  }
  if (!result.inContact)
    return;
  if (configuration.exactMode != 1) {
    result.state = OrvexCollisionResult::Intersect;
    return;
  }
  stage = OrvexCollisionStage::Boolean;
  decideByCommon(parts, result);
}

void OrvexCollisionEngine::decideByCommon(const Parts& parts, OrvexCollisionResult& result) const
{
  const TopoDS_Shape common = Orvex::CommonOf(parts[static_cast<std::size_t>(result.partA)].shape,
                                              parts[static_cast<std::size_t>(result.partB)].shape,
                                              fuzzy, !configuration.serial);
  if (common.IsNull())
    return;
  if (configuration.computeOverlapVolume)
    result.overlapVolume = Orvex::VolumeOf(common);
  if (configuration.keepOverlapShape)
    result.overlapShape = common;
  result.state = OrvexCollisionResult::Intersect;
}

bool OrvexCollisionEngine::faceBVHPossibleOverlap(int i, int j, double tolerance) const
{
  const auto a = faceBVHCache->At(i), b = faceBVHCache->At(j);
  if (a == nullptr || b == nullptr)
    return triBVHPossibleOverlap(i, j, tolerance);
  return Orvex::FacesMayOverlap(*a, *b, tolerance);
}

bool OrvexCollisionEngine::faceOctreePossibleOverlap(int i, int j, double tolerance) const
{
  const auto a = faceOctreeCache->At(i), b = faceOctreeCache->At(j);
  if (a == nullptr || b == nullptr)
    return triBVHPossibleOverlap(i, j, tolerance);
  return Orvex::FacesMayOverlap(*a, *b, tolerance);
}

// What is not known rules nothing out.
bool OrvexCollisionEngine::triBVHPossibleOverlap(int i, int j, double tolerance) const
{
  const auto a = triBVHCache->At(i), b = triBVHCache->At(j);
  return a == nullptr || b == nullptr || Orvex::LeavesMayOverlap(*a, *b, tolerance);
}

bool OrvexCollisionEngine::triBVHDistance(int i, int j, double tolerance, double& distance,
                                          bool& within) const
{
  const auto a = triBVHCache->At(i), b = triBVHCache->At(j);
  Orvex::MeshDistance found;
  if (a != nullptr && b != nullptr)
    found = Orvex::DistanceOf(*a, *b, tolerance,
                              {configuration.maxNodePairVisits, configuration.farFactor});
  distance = found.distance;
  within = found.isWithin;
  return found.isKnown;
}

bool OrvexCollisionEngine::triOctreeIntersect(int i, int j, double tolerance, double& distance,
                                              bool& hit) const
{
  const auto a = triBVHCache->At(i), b = triBVHCache->At(j);
  Orvex::MeshDistance found;
  if (a != nullptr && b != nullptr)
    found = Orvex::DistanceInGrid(*a, *b, tolerance);
  distance = found.distance;
  hit = found.isWithin;
  return found.isKnown;
}
