// A plan with its inputs: for each step, which list of ids feeds each named parameter (bindings),
// and the ids that come out of that (input groups).
//
//   a sweep's "sections" are the cap faces, or, where there are none, all faces of the step:
//   binding {"sections", "capFaces", ["faces", "supportFaces"]}, input group {"sections", [1, 2]}
//
// Guarantees: input groups have distinct names and come in the byte order of these; their ids are
// sorted, each once, and never empty.
#pragma once

#include "step/replay/ReplayPlan.h"

namespace Orvex {

// Where the ids of one parameter come from.
struct ReplayParameterBinding
{
  // One of the step's parameter keys.
  std::string parameterName;
  // "faces", "supportFaces", "capFaces" or "trimmedFaces" for the step's lists; any other key
  // stands for nothing.
  std::string sourceKey;
  // Asked in this order while the source gives no ids.
  std::vector<std::string> fallbackSourceKeys;
};

struct ReplayInputGroup
{
  // A parameter, or one of the four lists of the step.
  std::string name;
  std::vector<ReplayId> ids;
};

// One step; fields without a comment are those of the step.
struct ReplayCommandRequest
{
  ReplayId stepId = 0;
  std::string kind;
  std::string scope;
  ReplayId entityId = 0;
  // The step's, or the bundle's where the step has none.
  std::string contractName;
  std::string commandName;
  std::string targetKind;
  std::string resultKey;
  std::vector<ReplayId> dependsOn;
  std::vector<ReplayId> faceIds;
  std::vector<ReplayId> shellIds;
  std::vector<ReplayId> solidIds;
  std::vector<ReplayId> supportFaceIds;
  std::vector<ReplayId> capFaceIds;
  std::vector<ReplayId> trimmedFaceIds;
  std::vector<std::string> apiCandidates;
  // One for each parameter key of the step, in their order.
  std::vector<ReplayParameterBinding> bindings;
  std::vector<ReplayInputGroup> inputGroups;
  std::vector<std::string> tags;
};

struct ReplayCommandRequestBundle
{
  // "face", "shell" or "solid", and its id.
  std::string scope;
  ReplayId entityId = 0;
  // The plan's, or "ReplayCommandRequestV1" where the plan has none.
  std::string contractName;
  std::string primaryStrategy;
  std::string semanticStrategy;
  // In the order of the plan's steps.
  std::vector<ReplayCommandRequest> requests;
};

ORVEX_API ReplayCommandRequestBundle BuildCommandRequests(const ReplayPlan& plan);

// One JSON object, keys in the order of the fields.
ORVEX_API std::string ToJson(const ReplayCommandRequestBundle& bundle);

} // namespace Orvex
