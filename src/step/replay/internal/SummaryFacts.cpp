#include "step/replay/internal/SummaryFacts.h"

namespace Orvex {

namespace {

// By loop, so that a loop that many faces name is counted once.
std::vector<std::int64_t> PcurvesOfLoops(const ReplayIRSummary& summary)
{
  RecordIndex<ReplayCoedgeRecord> coedges(summary.coedges);
  std::vector<std::int64_t> counts;
  counts.reserve(summary.loops.size());
  for (const ReplayLoopRecord& loop : summary.loops) {
    std::int64_t& count = counts.emplace_back(0);
    for (const ReplayId id : loop.coedgeIds)
      if (const ReplayCoedgeRecord* coedge = coedges.Find(id); coedge != nullptr)
        count += coedge->hasPcurve ? 1 : 0;
  }
  return counts;
}

} // namespace

SummaryFacts::SummaryFacts(const ReplayIRSummary& summary_)
    : summary(summary_), faceIndex(summary.faces), shellIndex(summary.shells)
{
  const std::vector<std::int64_t> pcurves = PcurvesOfLoops(summary);
  RecordIndex<ReplaySurfaceRecord> surfaces(summary.surfaces);
  RecordIndex<ReplayLoopRecord> loops(summary.loops);
  faces.reserve(summary.faces.size());
  for (const ReplayFaceRecord& face : summary.faces) {
    FaceFacts& facts = faces.emplace_back();
    facts.record = &face;
    facts.surface = surfaces.Find(face.surfaceId);
    for (const ReplayId id : face.loopIds)
      if (const ReplayLoopRecord* loop = loops.Find(id); loop != nullptr) {
        facts.pcurves += pcurves[static_cast<std::size_t>(loop - summary.loops.data())];
        facts.coedges += static_cast<std::int64_t>(loop->coedgeIds.size());
      }
  }
}

const FaceFacts* SummaryFacts::Face(ReplayId id)
{
  const ReplayFaceRecord* face = faceIndex.Find(id);
  return face != nullptr ? &faces[static_cast<std::size_t>(face - summary.faces.data())] : nullptr;
}

} // namespace Orvex
