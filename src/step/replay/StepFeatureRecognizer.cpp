#include "step/replay/StepFeatureRecognizer.h"

#include "step/replay/internal/FaceRegions.h"
#include "step/replay/internal/SolidRules.h"
#include "step/replay/internal/SortedIds.h"
#include "step/replay/internal/SummaryFacts.h"
#include "step/replay/internal/SurfaceTable.h"

#include <map>

namespace Orvex {

namespace {

using Candidates = std::vector<ReplayFeatureCandidate>;

void AddFaceCandidates(Candidates& candidates, const SummaryFacts& facts)
{
  for (const FaceFacts& face : facts.Faces()) {
    const SurfaceRow* row = face.surface != nullptr ? RowOf(face.surface->kind) : nullptr;
    if (row == nullptr)
      continue;
    ReplayFeatureCandidate& candidate = candidates.emplace_back();
    candidate.kind = row->faceCandidate;
    candidate.confidence = row->faceConfidence;
    candidate.faceIds = {face.record->id};
    candidate.surfaceIds = {face.surface->id};
  }
}

double RegionConfidence(double base, std::size_t faceCount)
{
  constexpr std::size_t kManyFaces = 4;
  return std::min(faceCount >= kManyFaces ? base + 0.05 : base, 0.98);
}

void AddTrimmedRegion(Candidates& candidates, const ReplayFeatureCandidate& region)
{
  ReplayFeatureCandidate trimmed;
  trimmed.kind = "trimmed_freeform_region_candidate";
  trimmed.confidence = 0.8;
  trimmed.faceIds = region.faceIds;
  trimmed.surfaceIds = region.surfaceIds;
  trimmed.trimmedFaceIds = region.faceIds;
  candidates.push_back(std::move(trimmed));
}

void AddRegion(Candidates& candidates, const std::vector<FaceFacts>& faces,
               const std::vector<std::size_t>& members)
{
  const SurfaceRow& row = *RowOf(faces[members.front()].surface->kind);
  ReplayFeatureCandidate region;
  std::int64_t pcurves = 0;
  std::int64_t coedges = 0;
  for (const std::size_t member : members) {
    const FaceFacts& face = faces[member];
    region.faceIds.push_back(face.record->id);
    region.surfaceIds.push_back(face.surface->id);
    pcurves += face.pcurves;
    coedges += face.coedges;
  }
  region.kind = row.regionCandidate;
  region.confidence = RegionConfidence(row.regionConfidence, members.size());
  region.faceIds = SortedIds(std::move(region.faceIds));
  region.surfaceIds = SortedIds(std::move(region.surfaceIds));
  candidates.push_back(region);
  if (row.role == SurfaceRole::Freeform && pcurves >= std::max<std::int64_t>(4, coedges / 2))
    AddTrimmedRegion(candidates, region);
}

void AddRegionCandidates(Candidates& candidates, const SummaryFacts& facts)
{
  for (const std::vector<std::size_t>& members : FaceRegions(facts.Faces()))
    AddRegion(candidates, facts.Faces(), members);
}

struct ShellCounts
{
  std::int64_t freeform = 0;
  std::int64_t analytic = 0;
  std::int64_t pcurves = 0;
  std::vector<ReplayId> trimmedFaces;

  void Add(const FaceFacts& face)
  {
    pcurves += face.pcurves;
    if (face.record->boundCount >= 2 || face.pcurves >= 1)
      trimmedFaces.push_back(face.record->id);
    if (face.surface == nullptr)
      return;
    const bool isFreeform = RoleOf(face.surface->kind) == SurfaceRole::Freeform;
    ++(isFreeform ? freeform : analytic);
  }

  bool IsTrimmedFreeform() const
  {
    return freeform >= 2 && pcurves >= std::max<std::int64_t>(6, 2 * freeform);
  }
};

ReplayFeatureCandidate ShellCandidate(const ReplayShellRecord& shell, const char* kind,
                                      double confidence)
{
  ReplayFeatureCandidate candidate;
  candidate.kind = kind;
  candidate.confidence = confidence;
  candidate.faceIds = shell.faceIds;
  candidate.shellIds = {shell.id};
  return candidate;
}

void AddShell(Candidates& candidates, SummaryFacts& facts, const ReplayShellRecord& shell)
{
  ShellCounts counts;
  for (const ReplayId id : shell.faceIds)
    if (const FaceFacts* face = facts.Face(id); face != nullptr)
      counts.Add(*face);
  if (counts.freeform == 0)
    candidates.push_back(ShellCandidate(shell, "analytic_shell_candidate", 0.75));
  else if (counts.analytic == 0)
    candidates.push_back(ShellCandidate(shell, "freeform_shell_candidate", 0.75));
  else
    candidates.push_back(ShellCandidate(shell, "hybrid_shell_candidate", 0.7));
  if (!counts.IsTrimmedFreeform())
    return;
  candidates.push_back(ShellCandidate(shell, "trimmed_freeform_shell_candidate", 0.79));
  candidates.back().trimmedFaceIds = SortedIds(std::move(counts.trimmedFaces));
}

void AddShellCandidates(Candidates& candidates, SummaryFacts& facts,
                        const std::vector<ReplayShellRecord>& shells)
{
  for (const ReplayShellRecord& shell : shells)
    if (!shell.faceIds.empty())
      AddShell(candidates, facts, shell);
}

class SolidCount
{
public:
  // What all candidates of the solid have in common.
  ReplayFeatureCandidate common;
  SolidCounts counts;

  SolidCount(SummaryFacts& facts, const ReplaySolidRecord& solid)
  {
    common.shellIds = solid.shellIds;
    common.solidIds = {solid.id};
    for (const ReplayId shellId : solid.shellIds)
      if (const ReplayShellRecord* shell = facts.Shell(shellId); shell != nullptr)
        for (const ReplayId faceId : shell->faceIds)
          Add(faceId, facts.Face(faceId));
    for (auto* ids : {&common.faceIds, &common.surfaceIds, &common.capFaceIds,
                      &common.supportFaceIds, &common.trimmedFaceIds})
      *ids = SortedIds(std::move(*ids));
    counts.faces = static_cast<std::int64_t>(common.faceIds.size());
    counts.shells = static_cast<std::int64_t>(solid.shellIds.size());
    TakeHistogram();
  }

private:
  void Add(ReplayId id, const FaceFacts* face)
  {
    common.faceIds.push_back(id);
    if (face == nullptr)
      return;
    counts.pcurves += face->pcurves;
    common.surfaceIds.push_back(face->record->surfaceId);
    if (face->surface == nullptr)
      return;
    ++histogram[face->surface->kind];
    const bool isMultiBound = face->record->boundCount > 1;
    counts.multiBound += isMultiBound ? 1 : 0;
    if (isMultiBound || face->pcurves > 0)
      common.trimmedFaceIds.push_back(id);
    AddByRole(id, RoleOf(face->surface->kind));
  }

  void AddByRole(ReplayId id, SurfaceRole role)
  {
    ++(role == SurfaceRole::Freeform ? counts.freeform : counts.analytic);
    if (role == SurfaceRole::Plane)
      common.capFaceIds.push_back(id);
    else if (role != SurfaceRole::Other)
      common.supportFaceIds.push_back(id);
    counts.planes += role == SurfaceRole::Plane ? 1 : 0;
    counts.extruded += role == SurfaceRole::Extruded ? 1 : 0;
    counts.turned += role == SurfaceRole::Turned ? 1 : 0;
  }

  void TakeHistogram()
  {
    counts.kinds = static_cast<std::int64_t>(histogram.size());
    counts.cylinders = histogram[kCylinderSurface];
    counts.cones = histogram[kConeSurface];
    counts.spheres = histogram[kSphereSurface];
    counts.tori = histogram[kTorusSurface];
  }

  std::map<int, std::int64_t> histogram;
};

void AddSolidCandidates(Candidates& candidates, SummaryFacts& facts,
                        const std::vector<ReplaySolidRecord>& solids)
{
  for (const ReplaySolidRecord& solid : solids) {
    const SolidCount count(facts, solid);
    if (count.common.faceIds.empty())
      continue;
    for (const SolidRule& rule : kSolidRules) {
      if (!rule.holds(count.counts))
        continue;
      ReplayFeatureCandidate& candidate = candidates.emplace_back(count.common);
      candidate.kind = rule.kind;
      candidate.confidence = rule.Confidence(count.counts);
    }
  }
}

} // namespace

std::vector<ReplayFeatureCandidate>
StepFeatureRecognizer::RecognizeSummaryCandidates(const ReplayIRSummary& summary) const
{
  SummaryFacts facts(summary);
  Candidates candidates;
  candidates.reserve(summary.faces.size());
  AddFaceCandidates(candidates, facts);
  AddRegionCandidates(candidates, facts);
  AddShellCandidates(candidates, facts, summary.shells);
  AddSolidCandidates(candidates, facts, summary.solids);
  return candidates;
}

} // namespace Orvex
