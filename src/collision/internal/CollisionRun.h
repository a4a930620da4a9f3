// One run of the collision engine over a list of parts.
#pragma once

#include "collision/OrvexCollisionEngine.h"
#include "kernel/internal/BoxLimits.h"

#include <chrono>
#include <cstdint>

namespace Orvex {

class CollisionRun
{
public:
  using Results = std::vector<OrvexCollisionResult>;

  // The trace may be null.
  CollisionRun(const OrvexCollisionEngine& engine, const std::vector<OrvexModelPart>& parts,
               const OrvexCollisionEngine::Progress& progress, OrvexCollisionTrace* trace);

  // Leaves the metrics in the engine, also when a callback throws.
  Results Run();

private:
  using Clock = std::chrono::steady_clock;

  // A pair whose boxes meet.
  struct Candidate
  {
    int i, j;
    double overlap; // volume that the boxes have in common
  };

  void Propose();
  void ProposeAll();
  void Consider(int i, int j);
  void SortCandidates();
  std::vector<int> PartsInCandidates() const;
  void FillCaches();
  void TestOneByOne();
  void TestSideBySide();
  OrvexCollisionResult Test(const Candidate& pair, OrvexCollisionStage& stage);
  void Accept(OrvexCollisionResult result, OrvexCollisionStage stage);
  void ReportProgress(std::int64_t done) const;
  void CheckCleared();
  bool OneLiesInTheOther(const OrvexCollisionResult& pair) const;
  bool IsOverdue() const;
  double Seconds() const;
  void KeepMetrics();

  const OrvexCollisionEngine& engine;
  const OrvexCollisionConfig& config;
  const std::vector<OrvexModelPart>& parts;
  const OrvexCollisionEngine::Progress& progress;
  OrvexCollisionTrace* trace;
  Clock::time_point start;
  double tolerance;
  std::vector<Bnd_Box> boxes; // enlarged by the tolerance
  std::vector<BoxLimits> limits;
  std::int64_t proposed = 0;
  // In the order of the tests. Pairs that the box test clears need no place there.
  std::vector<Candidate> candidates;
  std::vector<OrvexCollisionResult> cleared; // kept for the check only
  std::atomic<int> failed = 0;
  OrvexCollisionMetrics metrics;
  Results results;
};

} // namespace Orvex
