#include "step/replay/StepReplayPlanBuilder.h"

#include "step/replay/internal/IdIndex.h"
#include "step/replay/internal/PlanTables.h"
#include "step/replay/internal/SortedIds.h"

#include <set>

namespace Orvex {

namespace {

using Candidates = std::vector<ReplayFeatureCandidate>;
using Ids = std::vector<ReplayId>;

// What the steps of one face, shell or solid are about.
struct Subject
{
  const char* scope;
  ReplayId id;
  Ids faces = {};
  Ids shells = {};
  Ids solids = {};
  Ids supports = {};
  Ids caps = {};
  Ids trimmed = {};
  // The steps that later ones depend on, in ascending order.
  Ids gathered = {};
};

Ids Union(const Ids& a, const Ids& b)
{
  Ids all = a;
  all.insert(all.end(), b.begin(), b.end());
  return SortedIds(std::move(all));
}

Ids ListedFaces(const Subject& subject)
{
  return Union(Union(subject.supports, subject.caps), subject.trimmed);
}

Ids FacesFor(Faces faces, const Subject& subject)
{
  switch (faces) {
  case Faces::None:
    return {};
  case Faces::Own:
    return subject.faces;
  case Faces::Caps:
    return subject.caps;
  case Faces::Supports:
    return subject.supports;
  case Faces::Trimmed:
    return subject.trimmed;
  case Faces::CapsOrSupports:
    return subject.caps.empty() ? subject.supports : subject.caps;
  case Faces::SupportsOrOwn:
    return subject.supports.empty() ? subject.faces : subject.supports;
  case Faces::Listed:
    return ListedFaces(subject);
  case Faces::ListedAndOwn:
    return Union(ListedFaces(subject), subject.faces);
  }
  return {};
}

Ids NeededSteps(Needs needs, ReplayId step, const Subject& subject)
{
  switch (needs) {
  case Needs::Nothing:
    return {};
  case Needs::Previous:
    return {step - 1};
  case Needs::PreviousTwo:
    return {step - 2, step - 1};
  case Needs::Gathered:
    return subject.gathered;
  }
  return {};
}

// The step stays where it is until the next one is added.
ReplayPlanStep& AddStep(ReplayPlan& plan, const StepRow& row, const Subject& subject)
{
  ReplayPlanStep& step = plan.steps.emplace_back();
  step.id = plan.steps.size();
  step.kind = row.kind;
  step.scope = subject.scope;
  step.entityId = subject.id;
  step.commandName = row.commandName;
  step.targetKind = row.targetKind;
  step.resultKey = row.resultKey;
  step.dependsOn = NeededSteps(row.needs, step.id, subject);
  step.faceIds = FacesFor(row.faces, subject);
  step.solidIds = subject.solids;
  if ((row.lists & kShells) != 0)
    step.shellIds = subject.shells;
  if ((row.lists & kSupports) != 0)
    step.supportFaceIds = subject.supports;
  if ((row.lists & kCaps) != 0)
    step.capFaceIds = subject.caps;
  if ((row.lists & kTrimmed) != 0)
    step.trimmedFaceIds = subject.trimmed;
  step.apiCandidates = row.apiCandidates.Texts();
  step.parameterKeys = row.parameterKeys.Texts();
  step.tags = row.tags.Texts();
  return step;
}

// The kinds of the candidates that name the entity in one of their lists.
std::vector<std::string> FeatureHints(const Candidates& candidates,
                                      Ids ReplayFeatureCandidate::*list, ReplayId id)
{
  std::set<std::string> kinds;
  for (const ReplayFeatureCandidate& candidate : candidates)
    if (HoldsId(candidate.*list, id))
      kinds.insert(candidate.kind);
  return {kinds.begin(), kinds.end()};
}

bool SpeaksFor(const StrategyRow& row, const std::string& hint, bool semantic)
{
  return row.candidateKinds.Hold(hint) ||
         (semantic && row.semanticKind != nullptr && hint == row.semanticKind);
}

std::string Strategy(const std::vector<std::string>& hints, bool semantic,
                     const std::string& otherwise)
{
  for (const StrategyRow& row : kStrategies)
    for (const std::string& hint : hints)
      if (SpeaksFor(row, hint, semantic))
        return row.strategy;
  return otherwise;
}

ReplayPlan EmptyPlan(const ScopeRow& scope, ReplayId id, std::vector<std::string> hints)
{
  ReplayPlan plan;
  plan.scope = scope.scope;
  plan.entityId = id;
  plan.primaryStrategy = Strategy(hints, false, scope.strategy);
  plan.semanticStrategy = Strategy(hints, true, plan.primaryStrategy);
  plan.contractName = scope.contractName;
  plan.featureHints = std::move(hints);
  return plan;
}

void AddFaceSteps(ReplayPlan& plan, ReplayId faceId)
{
  const Subject face{.scope = kFaceScope.scope, .id = faceId, .faces = {faceId}};
  for (const StepRow& row : kFaceSteps)
    AddStep(plan, row, face);
}

// The steps of the shell's faces, and the one that sews them.
ReplayPlanStep& AddSewnShell(ReplayPlan& plan, const ReplayShellRecord& shell)
{
  Subject subject{
    .scope = kShellScope.scope, .id = shell.id, .faces = shell.faceIds, .shells = {shell.id}};
  for (const ReplayId face : shell.faceIds) {
    AddFaceSteps(plan, face);
    subject.gathered.push_back(plan.steps.back().id);
  }
  return AddStep(plan, kSewStep, subject);
}

// Of the first kind that any candidate of the solid has, the one with the highest confidence, and
// of equals the first.
const ReplayFeatureCandidate* BestCandidate(const Candidates& candidates, const ChoiceRow& row,
                                            ReplayId solidId)
{
  for (const char* kind : row.candidateKinds.items) {
    const ReplayFeatureCandidate* best = nullptr;
    for (const ReplayFeatureCandidate& candidate : candidates)
      if (kind != nullptr && candidate.kind == kind && HoldsId(candidate.solidIds, solidId) &&
          (best == nullptr || candidate.confidence > best->confidence))
        best = &candidate;
    if (best != nullptr)
      return best;
  }
  return nullptr;
}

void TakeListsOfCandidate(Subject& solid, const std::string& strategy, const Candidates& candidates)
{
  for (const ChoiceRow& row : kChoices) {
    if (strategy != row.strategy)
      continue;
    const ReplayFeatureCandidate* chosen = BestCandidate(candidates, row, solid.id);
    if (chosen == nullptr)
      return;
    solid.supports = SortedIds(chosen->supportFaceIds);
    solid.caps = SortedIds(chosen->capFaceIds);
    solid.trimmed = SortedIds(chosen->trimmedFaceIds);
  }
}

void AddShellsOfSolid(ReplayPlan& plan, Subject& subject, const ReplayIRSummary& summary)
{
  RecordIndex<ReplayShellRecord> shells(summary.shells);
  for (const ReplayId id : subject.shells) {
    const ReplayShellRecord* shell = shells.Find(id);
    if (shell == nullptr)
      continue;
    subject.gathered.push_back(AddSewnShell(plan, *shell).id);
    subject.faces.insert(subject.faces.end(), shell->faceIds.begin(), shell->faceIds.end());
  }
  subject.faces = SortedIds(std::move(subject.faces));
}

void AddExtractions(ReplayPlan& plan, Subject& solid)
{
  Ids extractions;
  for (const ExtractionRow& row : kExtractions)
    if (row.strategies.Hold(plan.primaryStrategy) &&
        (!row.onlyWithTrimmedFaces || !solid.trimmed.empty()))
      extractions.push_back(AddStep(plan, row.step, solid).id);
  solid.gathered.insert(solid.gathered.end(), extractions.begin(), extractions.end());
}

const StepRow& RebuildStep(const std::string& strategy)
{
  for (const RebuildRow& row : kRebuilds)
    if (row.strategies.Hold(strategy))
      return row.step;
  return kRebuilds.back().step;
}

} // namespace

ReplayPlan StepReplayPlanBuilder::BuildFacePlan(const ReplayIRSummary& summary,
                                                const Candidates& candidates, ReplayId faceId) const
{
  ReplayPlan plan = EmptyPlan(kFaceScope, faceId,
                              FeatureHints(candidates, &ReplayFeatureCandidate::faceIds, faceId));
  const ReplayFaceRecord* face = RecordIndex(summary.faces).Find(faceId);
  if (face == nullptr)
    return plan;
  AddFaceSteps(plan, faceId);
  plan.steps.front().tags = plan.featureHints;
  plan.steps.back().tags = plan.featureHints;
  if (face->boundCount > 1)
    plan.steps[1].tags.emplace_back("has_inner_loops");
  if (face->edgeCount > 0)
    plan.steps[1].tags.emplace_back("has_edges");
  return plan;
}

ReplayPlan StepReplayPlanBuilder::BuildShellPlan(const ReplayIRSummary& summary,
                                                 const Candidates& candidates,
                                                 ReplayId shellId) const
{
  ReplayPlan plan = EmptyPlan(kShellScope, shellId,
                              FeatureHints(candidates, &ReplayFeatureCandidate::shellIds, shellId));
  const ReplayShellRecord* shell = RecordIndex(summary.shells).Find(shellId);
  if (shell == nullptr)
    return plan;
  ReplayPlanStep& sew = AddSewnShell(plan, *shell);
  sew.tags = plan.featureHints;
  if (shell->isClosed)
    sew.tags.emplace_back("closed_shell");
  ReplayPlanStep& validation = AddStep(
    plan, kValidateShellStep, {.scope = kShellScope.scope, .id = shellId, .shells = {shellId}});
  if (shell->isClosed)
    validation.tags.emplace_back("expect_closed");
  return plan;
}

ReplayPlan StepReplayPlanBuilder::BuildSolidPlan(const ReplayIRSummary& summary,
                                                 const Candidates& candidates,
                                                 ReplayId solidId) const
{
  ReplayPlan plan = EmptyPlan(kSolidScope, solidId,
                              FeatureHints(candidates, &ReplayFeatureCandidate::solidIds, solidId));
  const ReplaySolidRecord* solid = RecordIndex(summary.solids).Find(solidId);
  if (solid == nullptr)
    return plan;
  Subject subject{
    .scope = kSolidScope.scope, .id = solidId, .shells = solid->shellIds, .solids = {solidId}};
  AddShellsOfSolid(plan, subject, summary);
  TakeListsOfCandidate(subject, plan.primaryStrategy, candidates);
  ReplayPlanStep& inference = AddStep(plan, kInferStep, subject);
  inference.tags = plan.featureHints;
  subject.gathered.push_back(inference.id);
  AddExtractions(plan, subject);
  ReplayPlanStep& rebuild = AddStep(plan, RebuildStep(plan.primaryStrategy), subject);
  rebuild.tags = plan.featureHints;
  const Ids rebuilt = rebuild.faceIds;
  AddStep(plan, kValidateSolidStep, subject).faceIds = rebuilt;
  return plan;
}

} // namespace Orvex
