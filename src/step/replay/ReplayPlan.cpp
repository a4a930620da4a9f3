#include "step/replay/ReplayPlan.h"

#include "step/replay/internal/StepJson.h"

namespace Orvex {

namespace {

void WriteStep(JsonWriter& json, const ReplayPlanStep& step)
{
  json.BeginObject();
  json.Field("id", step.id);
  WriteStepFields(json, step);
  json.Field("parameterKeys", step.parameterKeys);
  json.Field("tags", step.tags);
  json.EndObject();
}

} // namespace

std::string ToJson(const ReplayPlan& plan)
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field("scope", plan.scope);
  json.Field("entityId", plan.entityId);
  json.Field("primaryStrategy", plan.primaryStrategy);
  json.Field("semanticStrategy", plan.semanticStrategy);
  json.Field("contractName", plan.contractName);
  json.Field("featureHints", plan.featureHints);
  json.ArrayField("steps", plan.steps, [&](const ReplayPlanStep& step) { WriteStep(json, step); });
  json.EndObject();
  return text;
}

} // namespace Orvex
