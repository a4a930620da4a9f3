// How a face, a shell or a solid is to be rebuilt: the steps in order, each with the command that
// it needs, what it depends on, the faces it works on and the name of its result. No geometry.
#pragma once

#include "step/replay/ReplayIRSummary.h"

namespace Orvex {

struct ReplayPlanStep
{
  // From 1 within the plan.
  ReplayId id = 0;
  // "define_surface", "sew_shell", "build_solid", ...
  std::string kind;
  // "face", "shell" or "solid", and its id.
  std::string scope;
  ReplayId entityId = 0;
  std::string contractName = "ReplayCommandV1";
  std::string commandName;
  std::string targetKind;
  std::string resultKey;
  // Ids of steps.
  std::vector<ReplayId> dependsOn;
  std::vector<ReplayId> faceIds;
  std::vector<ReplayId> shellIds;
  std::vector<ReplayId> solidIds;
  std::vector<ReplayId> supportFaceIds;
  std::vector<ReplayId> capFaceIds;
  std::vector<ReplayId> trimmedFaceIds;
  // Names that a host may offer for the step.
  std::vector<std::string> apiCandidates;
  std::vector<std::string> parameterKeys;
  std::vector<std::string> tags;
};

struct ReplayPlan
{
  // "face", "shell" or "solid", and the id that was asked for.
  std::string scope;
  ReplayId entityId = 0;
  // What the steps follow.
  std::string primaryStrategy;
  // What the model means; differs from the primary one for a fused solid.
  std::string semanticStrategy;
  std::string contractName;
  // Kinds of candidates, sorted, each once.
  std::vector<std::string> featureHints;
  // In the order of execution.
  std::vector<ReplayPlanStep> steps;
};

// One JSON object, keys in the order of the fields.
ORVEX_API std::string ToJson(const ReplayPlan& plan);

} // namespace Orvex
