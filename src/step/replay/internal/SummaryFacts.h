// What recognition asks of a summary's faces, counted once.
#pragma once

#include "step/replay/internal/IdIndex.h"

namespace Orvex {

struct FaceFacts
{
  const ReplayFaceRecord* record = nullptr;
  // Null when the summary lacks it.
  const ReplaySurfaceRecord* surface = nullptr;
  // Coedges with a p-curve in all loops, and coedges at all.
  std::int64_t pcurves = 0;
  std::int64_t coedges = 0;
};

// The summary must outlive the facts and stay as it is.
class SummaryFacts
{
public:
  explicit SummaryFacts(const ReplayIRSummary& summary);

  // In the order of the summary.
  const std::vector<FaceFacts>& Faces() const
  {
    return faces;
  }
  // Null for an id that the summary lacks.
  const FaceFacts* Face(ReplayId id);
  const ReplayShellRecord* Shell(ReplayId id)
  {
    return shellIndex.Find(id);
  }

private:
  const ReplayIRSummary& summary;
  RecordIndex<ReplayFaceRecord> faceIndex;
  RecordIndex<ReplayShellRecord> shellIndex;
  std::vector<FaceFacts> faces;
};

} // namespace Orvex
