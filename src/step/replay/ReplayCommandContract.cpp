#include "step/replay/ReplayCommandContract.h"

#include "step/replay/internal/JsonWriter.h"

namespace Orvex {

namespace {

ReplayContractCommand CommandOf(const ReplayPlanStep& step)
{
  ReplayContractCommand command;
  command.stepId = step.id;
  command.contractName = step.contractName;
  command.commandName = step.commandName;
  command.targetKind = step.targetKind;
  command.resultKey = step.resultKey;
  command.dependsOn = step.dependsOn;
  command.apiCandidates = step.apiCandidates;
  command.parameterKeys = step.parameterKeys;
  command.tags = step.tags;
  return command;
}

void WriteCommand(JsonWriter& json, const ReplayContractCommand& command)
{
  json.BeginObject();
  json.Field("stepId", command.stepId);
  json.Field("contractName", command.contractName);
  json.Field("commandName", command.commandName);
  json.Field("targetKind", command.targetKind);
  json.Field("resultKey", command.resultKey);
  json.Field("dependsOn", command.dependsOn);
  json.Field("apiCandidates", command.apiCandidates);
  json.Field("parameterKeys", command.parameterKeys);
  json.Field("tags", command.tags);
  json.EndObject();
}

} // namespace

ReplayCommandContract BuildCommandContract(const ReplayPlan& plan)
{
  ReplayCommandContract contract;
  contract.scope = plan.scope;
  contract.entityId = plan.entityId;
  contract.contractName = plan.contractName.empty() ? "ReplayCommandContractV1" : plan.contractName;
  contract.primaryStrategy = plan.primaryStrategy;
  contract.semanticStrategy = plan.semanticStrategy;
  contract.commands.reserve(plan.steps.size());
  for (const ReplayPlanStep& step : plan.steps)
    contract.commands.push_back(CommandOf(step));
  return contract;
}

std::string ToJson(const ReplayCommandContract& contract)
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field("scope", contract.scope);
  json.Field("entityId", contract.entityId);
  json.Field("contractName", contract.contractName);
  json.Field("primaryStrategy", contract.primaryStrategy);
  json.Field("semanticStrategy", contract.semanticStrategy);
  json.ArrayField("commands", contract.commands,
                  [&](const ReplayContractCommand& command) { WriteCommand(json, command); });
  json.EndObject();
  return text;
}

} // namespace Orvex
