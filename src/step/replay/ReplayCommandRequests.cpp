#include "step/replay/ReplayCommandRequests.h"

#include "step/replay/internal/SortedIds.h"
#include "step/replay/internal/StepJson.h"

#include <map>

namespace Orvex {

namespace {

struct BindingRow
{
  const char* parameterName;
  const char* sourceKey;
  // Null ends them.
  const char* fallbackSourceKeys[3];
};

// clang-format off
constexpr BindingRow kBindings[] = {
  {"faces",          "faces",        {}},
  {"supportFaces",   "supportFaces", {"faces"}},
  {"capFaces",       "capFaces",     {"faces"}},
  {"trimmedFaces",   "trimmedFaces", {"faces"}},
  {"sections",       "capFaces",     {"faces", "supportFaces"}},
  {"guides",         "supportFaces", {"faces"}},
  {"profileFaces",   "capFaces",     {"faces", "supportFaces"}},
  {"axisFaces",      "supportFaces", {"faces"}},
  {"operands",       "faces",        {"supportFaces", "capFaces"}},
  {"cuts",           "trimmedFaces", {"faces"}},
  {"surfaceSets",    "supportFaces", {"faces"}},
  {"trimBoundaries", "trimmedFaces", {"faces"}},
};

struct SourceRow
{
  const char* key;
  std::vector<ReplayId> ReplayPlanStep::* ids;
};

constexpr SourceRow kSources[] = {
  {"faces",        &ReplayPlanStep::faceIds},
  {"supportFaces", &ReplayPlanStep::supportFaceIds},
  {"capFaces",     &ReplayPlanStep::capFaceIds},
  {"trimmedFaces", &ReplayPlanStep::trimmedFaceIds},
};
// clang-format on

ReplayParameterBinding BindingOf(const std::string& parameter)
{
  for (const BindingRow& row : kBindings) {
    if (parameter != row.parameterName)
      continue;
    ReplayParameterBinding binding{parameter, row.sourceKey, {}};
    for (const char* const* key = row.fallbackSourceKeys; *key != nullptr; ++key)
      binding.fallbackSourceKeys.emplace_back(*key);
    return binding;
  }
  return {parameter, parameter, {}};
}

const std::vector<ReplayId>& IdsOf(const std::string& sourceKey, const ReplayPlanStep& step)
{
  static const std::vector<ReplayId> kNone;
  for (const SourceRow& row : kSources)
    if (sourceKey == row.key)
      return step.*row.ids;
  return kNone;
}

const std::vector<ReplayId>& IdsOf(const ReplayParameterBinding& binding,
                                   const ReplayPlanStep& step)
{
  const std::vector<ReplayId>* ids = &IdsOf(binding.sourceKey, step);
  for (const std::string& key : binding.fallbackSourceKeys)
    if (ids->empty())
      ids = &IdsOf(key, step);
  return *ids;
}

// By name in byte order. Of one name the first group stays; any other would hold the same ids.
using GroupsByName = std::map<std::string, std::vector<ReplayId>>;

void Offer(GroupsByName& groups, const std::string& name, const std::vector<ReplayId>& ids)
{
  if (!ids.empty() && groups.count(name) == 0)
    groups.emplace(name, SortedIds(ids));
}

std::vector<ReplayInputGroup> InputGroups(const ReplayPlanStep& step,
                                          const std::vector<ReplayParameterBinding>& bindings)
{
  GroupsByName groups;
  for (const SourceRow& row : kSources)
    Offer(groups, row.key, step.*row.ids);
  for (const ReplayParameterBinding& binding : bindings)
    Offer(groups, binding.parameterName, IdsOf(binding, step));
  std::vector<ReplayInputGroup> list;
  list.reserve(groups.size());
  for (auto& [name, ids] : groups)
    list.push_back({name, std::move(ids)});
  return list;
}

ReplayCommandRequest RequestOf(const ReplayPlanStep& step, const std::string& bundleContract)
{
  ReplayCommandRequest request;
  request.stepId = step.id;
  request.kind = step.kind;
  request.scope = step.scope;
  request.entityId = step.entityId;
  request.contractName = step.contractName.empty() ? bundleContract : step.contractName;
  request.commandName = step.commandName;
  request.targetKind = step.targetKind;
  request.resultKey = step.resultKey;
  request.dependsOn = step.dependsOn;
  request.faceIds = step.faceIds;
  request.shellIds = step.shellIds;
  request.solidIds = step.solidIds;
  request.supportFaceIds = step.supportFaceIds;
  request.capFaceIds = step.capFaceIds;
  request.trimmedFaceIds = step.trimmedFaceIds;
  request.apiCandidates = step.apiCandidates;
  for (const std::string& parameter : step.parameterKeys)
    request.bindings.push_back(BindingOf(parameter));
  request.inputGroups = InputGroups(step, request.bindings);
  request.tags = step.tags;
  return request;
}

void WriteBinding(JsonWriter& json, const ReplayParameterBinding& binding)
{
  json.BeginObject();
  json.Field("parameterName", binding.parameterName);
  json.Field("sourceKey", binding.sourceKey);
  json.Field("fallbackSourceKeys", binding.fallbackSourceKeys);
  json.EndObject();
}

void WriteGroup(JsonWriter& json, const ReplayInputGroup& group)
{
  json.BeginObject();
  json.Field("name", group.name);
  json.Field("ids", group.ids);
  json.EndObject();
}

void WriteRequest(JsonWriter& json, const ReplayCommandRequest& request)
{
  json.BeginObject();
  json.Field("stepId", request.stepId);
  WriteStepFields(json, request);
  json.ArrayField("bindings", request.bindings,
                  [&](const ReplayParameterBinding& binding) { WriteBinding(json, binding); });
  json.ArrayField("inputGroups", request.inputGroups,
                  [&](const ReplayInputGroup& group) { WriteGroup(json, group); });
  json.Field("tags", request.tags);
  json.EndObject();
}

} // namespace

ReplayCommandRequestBundle BuildCommandRequests(const ReplayPlan& plan)
{
  ReplayCommandRequestBundle bundle;
  bundle.scope = plan.scope;
  bundle.entityId = plan.entityId;
  bundle.contractName = plan.contractName.empty() ? "ReplayCommandRequestV1" : plan.contractName;
  bundle.primaryStrategy = plan.primaryStrategy;
  bundle.semanticStrategy = plan.semanticStrategy;
  bundle.requests.reserve(plan.steps.size());
  for (const ReplayPlanStep& step : plan.steps)
    bundle.requests.push_back(RequestOf(step, bundle.contractName));
  return bundle;
}

std::string ToJson(const ReplayCommandRequestBundle& bundle)
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field("scope", bundle.scope);
  json.Field("entityId", bundle.entityId);
  json.Field("contractName", bundle.contractName);
  json.Field("primaryStrategy", bundle.primaryStrategy);
  json.Field("semanticStrategy", bundle.semanticStrategy);
  json.ArrayField("requests", bundle.requests,
                  [&](const ReplayCommandRequest& request) { WriteRequest(json, request); });
  json.EndObject();
  return text;
}

} // namespace Orvex
