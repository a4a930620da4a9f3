#include "collision/internal/CollisionRun.h"

#include "collision/internal/CacheFilling.h"
#include "collision/internal/ExactStages.h"
#include "collision/internal/ParallelLoop.h"
#include "collision/internal/TriBVHTests.h"

#include <omp.h>

#include <limits>
#include <tuple>

namespace Orvex {

namespace {

// Held to what the metrics and the callbacks can tell.
int Told(std::int64_t count)
{
  return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

double OverlapVolume(const BoxLimits& a, const BoxLimits& b)
{
  double volume = 1;
  for (std::size_t axis = 0; axis < 3; ++axis)
    volume *=
      std::max(std::min(a.max[axis], b.max[axis]) - std::max(a.min[axis], b.min[axis]), 0.0);
  return volume;
}

} // namespace

CollisionRun::CollisionRun(const OrvexCollisionEngine& engine_,
                           const std::vector<OrvexModelPart>& parts_,
                           const OrvexCollisionEngine::Progress& progress_,
                           OrvexCollisionTrace* trace_)
    : engine(engine_), config(engine_.configuration), parts(parts_), progress(progress_),
      trace(trace_), start(Clock::now()),
      tolerance(std::max(engine.fuzzy, engine.stats.sceneDiagonal * config.relativeTolerance))
{
  if (std::isnan(tolerance))
    tolerance = 0;
  for (const OrvexModelPart& part : parts) {
    boxes.push_back(part.box);
    if (!part.box.IsVoid())
      boxes.back().Enlarge(tolerance);
    limits.push_back(LimitsOf(boxes.back()).value_or(BoxLimits()));
  }
}

CollisionRun::Results CollisionRun::Run()
{
  try {
    Propose();
    metrics.broadPhaseSeconds = Seconds();
    FillCaches();
    metrics.cacheSeconds = Seconds() - metrics.broadPhaseSeconds;
    const bool oneByOne = config.timeLimitSeconds > 0 || config.serial;
    oneByOne ? TestOneByOne() : TestSideBySide();
    metrics.processedPairs = metrics.timedOut ? Told(std::ssize(results)) : Told(proposed);
    CheckCleared();
  } catch (...) {
    metrics.processedPairs = Told(std::ssize(results));
    KeepMetrics();
    if (trace != nullptr)
      trace->foundBeforeThrow = std::move(results);
    throw;
  }
  KeepMetrics();
  return std::move(results);
}

void CollisionRun::Propose()
{
  constexpr std::size_t kTooFewForAnIndex = 10;
  if (!config.serial && config.spaceIndexKind != 0 && parts.size() > kTooFewForAnIndex) {
    engine.buildSpaceIndex(parts);
    const auto pairs = engine.generateCandidatePairs(parts);
    proposed = std::ssize(pairs);
    for (const auto& [i, j] : pairs)
      Consider(i, j);
  }
  if (proposed == 0)
    ProposeAll();
  SortCandidates();
  if (trace != nullptr)
    trace->cleared[static_cast<std::size_t>(OrvexCollisionStage::Box)] =
      Told(proposed - std::ssize(candidates));
}

void CollisionRun::ProposeAll()
{
  const int count = Told(std::ssize(parts));
  proposed = std::int64_t(count) * (count - 1) / 2;
  for (int i = 0; i < count; ++i)
    for (int j = i + 1; j < count; ++j)
      Consider(i, j);
}

void CollisionRun::Consider(int i, int j)
{
  const auto a = static_cast<std::size_t>(i), b = static_cast<std::size_t>(j);
  if (!boxes[a].IsOut(boxes[b]))
    candidates.push_back({i, j, SortKey(OverlapVolume(limits[a], limits[b]))});
}

// Of equal overlaps the pair of the first parts comes first, so that the order is always the same.
void CollisionRun::SortCandidates()
{
  if (config.keepPairOrder != 0)
    return;
  std::sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
    return std::tie(b.overlap, a.i, a.j) < std::tie(a.overlap, b.i, b.j);
  });
}

std::vector<int> CollisionRun::PartsInCandidates() const
{
  std::vector<bool> isIn(parts.size());
  for (const Candidate& pair : candidates)
    isIn[static_cast<std::size_t>(pair.i)] = isIn[static_cast<std::size_t>(pair.j)] = true;
  std::vector<int> found;
  for (std::size_t i = 0; i < isIn.size(); ++i)
    if (isIn[i])
      found.push_back(static_cast<int>(i));
  return found;
}

void CollisionRun::FillCaches()
{
  const auto refill = [this](std::size_t size) {
    return !config.reuseCaches || size != parts.size();
  };
  const std::vector<int> needed = PartsInCandidates();
  const auto isOver = [this] { return IsOverdue(); };
  if (config.narrowPhaseMode == 5) {
    if (refill(engine.faceBVHCache->Size()))
      engine.buildFaceBVHCache(parts);
    MakeFaceBoxes(*engine.faceBVHCache, needed);
  } else if (config.narrowPhaseMode == 6) {
    if (refill(engine.faceOctreeCache->Size()))
      engine.buildFaceOctreeCache(parts);
    MakeFaceBoxes(*engine.faceOctreeCache, needed);
  } else {
    if (refill(engine.triBVHCache->Size()))
      engine.buildMeshBVHCache(parts);
    MakeTrees(*engine.triBVHCache, needed, isOver, trace);
  }
}

// Pairs that the box test has cleared come last: they cost nothing.
void CollisionRun::TestOneByOne()
{
  for (std::int64_t k = 0; k < proposed; ++k) {
    if (IsOverdue()) {
      metrics.timedOut = true;
      ReportProgress(proposed);
      return;
    }
    if (k < std::ssize(candidates)) {
      const Candidate& pair = candidates[static_cast<std::size_t>(k)];
      auto stage = OrvexCollisionStage::Mesh;
      OrvexCollisionResult result = Test(pair, stage);
      Accept(std::move(result), stage);
    }
    ReportProgress(k + 1);
  }
}

void CollisionRun::TestSideBySide()
{
  Results tested(candidates.size());
  std::vector<OrvexCollisionStage> stages(candidates.size(), OrvexCollisionStage::Mesh);
  ForEachInParallel(Told(std::ssize(candidates)), [&](int k) {
    const auto at = static_cast<std::size_t>(k);
    tested[at] = Test(candidates[at], stages[at]);
  });
  for (std::int64_t k = 0; k < proposed; ++k) {
    if (const auto at = static_cast<std::size_t>(k); at < candidates.size()) {
      Accept(std::move(tested[at]), stages[at]);
    }
    ReportProgress(k + 1);
  }
}

OrvexCollisionResult CollisionRun::Test(const Candidate& pair, OrvexCollisionStage& stage)
{
  return engine.processPair(pair.i, pair.j, parts, tolerance, &failed, stage);
}

void CollisionRun::Accept(OrvexCollisionResult result, OrvexCollisionStage stage)
{
  if (trace != nullptr) {
    ++(result.hasCollision() ? trace->collided : trace->cleared)[static_cast<std::size_t>(stage)];
    if (trace->checkCleared && !result.hasCollision())
      cleared.push_back(result);
  }
  if (result.hasCollision())
    results.push_back(std::move(result));
}

void CollisionRun::ReportProgress(std::int64_t done) const
{
  if (progress)
    progress(Told(done), Told(proposed));
}

// With meshes of its own: those of the engine must not tell which runs were checked.
void CollisionRun::CheckCleared()
{
  std::vector<int> needed;
  for (const OrvexCollisionResult& pair : cleared)
    needed.insert(needed.end(), {pair.partA, pair.partB});
  std::sort(needed.begin(), needed.end());
  needed.erase(std::unique(needed.begin(), needed.end()), needed.end());
  PartCache<TriBVH> trees;
  trees.SetShapes(ShapesOf(parts), MeshDeflection(config, engine.stats));
  MakeTrees(
    trees, needed, [this] { return IsOverdue(); }, nullptr);

  std::vector<double> volumes(cleared.size(), 0.0);
  ForEachInParallel(Told(std::ssize(cleared)), [&](int k) {
    const OrvexCollisionResult& pair = cleared[static_cast<std::size_t>(k)];
    const auto a = trees.At(pair.partA), b = trees.At(pair.partB);
    const bool cross = a != nullptr && b != nullptr && MeshesMeet(*a, *b, 0);
    if (IsOverdue() || !(cross || OneLiesInTheOther(pair)))
      return;
    volumes[static_cast<std::size_t>(k)] =
      CommonVolumeOrNone(parts[static_cast<std::size_t>(pair.partA)].shape,
                         parts[static_cast<std::size_t>(pair.partB)].shape, engine.fuzzy);
  });
  for (std::size_t k = 0; k < volumes.size(); ++k)
    if (volumes[k] > 0)
      trace->missedOverlaps.push_back(
        {cleared[k].partA, cleared[k].partB, cleared[k].distance, volumes[k]});
}

bool CollisionRun::OneLiesInTheOther(const OrvexCollisionResult& pair) const
{
  const BoxLimits& a = limits[static_cast<std::size_t>(pair.partA)];
  const BoxLimits& b = limits[static_cast<std::size_t>(pair.partB)];
  const auto isIn = [](const BoxLimits& inner, const BoxLimits& outer) {
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (inner.min[axis] < outer.min[axis] || inner.max[axis] > outer.max[axis])
        return false;
    return true;
  };
  return isIn(a, b) || isIn(b, a);
}

bool CollisionRun::IsOverdue() const
{
  return config.timeLimitSeconds > 0 && Seconds() >= config.timeLimitSeconds;
}

double CollisionRun::Seconds() const
{
  return std::chrono::duration<double>(Clock::now() - start).count();
}

void CollisionRun::KeepMetrics()
{
  metrics.partCount = Told(std::ssize(parts));
  metrics.candidatePairs = Told(proposed);
  metrics.collisionCount = Told(std::ssize(results));
  metrics.totalSeconds = Seconds();
  metrics.narrowPhaseSeconds =
    metrics.totalSeconds - metrics.broadPhaseSeconds - metrics.cacheSeconds;
  metrics.failedPairs = failed;
  metrics.threadCount = omp_get_max_threads();
  metrics.reportedDeflection = config.reportedDeflection;
  engine.metricsOfLastRun = metrics;
}

} // namespace Orvex
