#include "step/replay/ReplayFeatureCandidate.h"

#include "step/replay/internal/JsonWriter.h"

namespace Orvex {

namespace {

void WriteCandidate(JsonWriter& json, const ReplayFeatureCandidate& candidate)
{
  json.BeginObject();
  json.Field("kind", candidate.kind);
  json.Field("confidence", candidate.confidence);
  json.Field("faceIds", candidate.faceIds);
  json.Field("surfaceIds", candidate.surfaceIds);
  json.Field("shellIds", candidate.shellIds);
  json.Field("solidIds", candidate.solidIds);
  json.Field("supportFaceIds", candidate.supportFaceIds);
  json.Field("capFaceIds", candidate.capFaceIds);
  json.Field("trimmedFaceIds", candidate.trimmedFaceIds);
  json.EndObject();
}

} // namespace

std::string ToJson(const std::vector<ReplayFeatureCandidate>& candidates)
{
  std::string text;
  JsonWriter json(text);
  json.BeginArray();
  for (const ReplayFeatureCandidate& candidate : candidates)
    WriteCandidate(json, candidate);
  json.EndArray();
  return text;
}

} // namespace Orvex
