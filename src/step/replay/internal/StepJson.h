// What a plan step and a request for it have in common in their JSON: the keys from "kind" to
// "apiCandidates".
#pragma once

#include "step/replay/internal/JsonWriter.h"

namespace Orvex {

template <typename Step>
void WriteStepFields(JsonWriter& json, const Step& step)
{
  json.Field("kind", step.kind);
  json.Field("scope", step.scope);
  json.Field("entityId", step.entityId);
  json.Field("contractName", step.contractName);
  json.Field("commandName", step.commandName);
  json.Field("targetKind", step.targetKind);
  json.Field("resultKey", step.resultKey);
  json.Field("dependsOn", step.dependsOn);
  json.Field("faceIds", step.faceIds);
  json.Field("shellIds", step.shellIds);
  json.Field("solidIds", step.solidIds);
  json.Field("supportFaceIds", step.supportFaceIds);
  json.Field("capFaceIds", step.capFaceIds);
  json.Field("trimmedFaceIds", step.trimmedFaceIds);
  json.Field("apiCandidates", step.apiCandidates);
}

} // namespace Orvex
