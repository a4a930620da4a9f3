// A plan without ids: for each step its command and the names of the command's parameters, which a
// host can check against its command table before it starts.
#pragma once

#include "step/replay/ReplayPlan.h"

namespace Orvex {

// The command of one step; all fields are those of the step.
struct ReplayContractCommand
{
  ReplayId stepId = 0;
  std::string contractName;
  std::string commandName;
  // What the command makes: "surface", "face", "solid", ...
  std::string targetKind;
  // The name under which later steps find the result.
  std::string resultKey;
  // Ids of the steps that come before.
  std::vector<ReplayId> dependsOn;
  // Names that a host may offer instead of the command, best first.
  std::vector<std::string> apiCandidates;
  std::vector<std::string> parameterKeys;
  std::vector<std::string> tags;
};

struct ReplayCommandContract
{
  // "face", "shell" or "solid", and its id.
  std::string scope;
  ReplayId entityId = 0;
  // The plan's, or "ReplayCommandContractV1" where the plan has none.
  std::string contractName;
  std::string primaryStrategy;
  std::string semanticStrategy;
  // In the order of the plan's steps.
  std::vector<ReplayContractCommand> commands;
};

ORVEX_API ReplayCommandContract BuildCommandContract(const ReplayPlan& plan);

// One JSON object, keys in the order of the fields.
ORVEX_API std::string ToJson(const ReplayCommandContract& contract);

} // namespace Orvex
