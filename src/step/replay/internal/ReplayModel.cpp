#include "step/replay/internal/ReplayModel.h"

#include "step/replay/ReplayCommandContract.h"
#include "step/replay/ReplayCommandRequests.h"
#include "step/replay/StepFeatureRecognizer.h"
#include "step/replay/StepPythonReplayExporter.h"
#include "step/replay/StepReplayIRBuilder.h"
#include "step/replay/StepReplayPlanBuilder.h"
#include "step/replay/internal/JsonWriter.h"

#include <array>
#include <map>

namespace Orvex {

namespace {

using Candidates = std::vector<ReplayFeatureCandidate>;

// What sets the three scopes apart.
struct ScopeRow
{
  const char* word;
  const char* idKey;
  std::vector<ReplayId> ReplayFeatureCandidate::*ids;
  ReplayPlan (StepReplayPlanBuilder::*plan)(const ReplayIRSummary&, const Candidates&,
                                            ReplayId) const;
  std::string (StepGeometryPayloadStore::*payload)(ReplayId) const;
};

// In the order of ReplayScope.
const std::array<ScopeRow, 3> kScopes = {{
  {"face", "faceId", &ReplayFeatureCandidate::faceIds, &StepReplayPlanBuilder::BuildFacePlan,
   &StepGeometryPayloadStore::ExpandFacePayloadJson},
  {"shell", "shellId", &ReplayFeatureCandidate::shellIds, &StepReplayPlanBuilder::BuildShellPlan,
   &StepGeometryPayloadStore::ExpandShellPayloadJson},
  {"solid", "solidId", &ReplayFeatureCandidate::solidIds, &StepReplayPlanBuilder::BuildSolidPlan,
   &StepGeometryPayloadStore::ExpandSolidPayloadJson},
}};

const ScopeRow& RowOf(ReplayScope scope)
{
  return kScopes[static_cast<std::size_t>(scope)];
}

void WriteCounts(JsonWriter& json, const ReplayIRSummary& summary)
{
  json.Key("counts");
  json.BeginObject();
  json.Field("vertices", summary.vertices.size());
  json.Field("curves", summary.curves.size());
  json.Field("surfaces", summary.surfaces.size());
  json.Field("faces", summary.faces.size());
  json.Field("shells", summary.shells.size());
  json.Field("solids", summary.solids.size());
  json.EndObject();
}

void WriteHistogram(JsonWriter& json, const Candidates& candidates)
{
  std::map<std::string, int> histogram;
  for (const ReplayFeatureCandidate& candidate : candidates)
    ++histogram[candidate.kind];
  json.Key("featureHistogram");
  json.BeginObject();
  for (const auto& [kind, count] : histogram)
    json.Field(kind, count);
  json.EndObject();
}

template <typename Record>
void WriteIds(JsonWriter& json, const char* key, const std::vector<Record>& records)
{
  json.ArrayField(key, records, [&](const Record& record) { json.Value(record.id); });
}

} // namespace

ReplayModel::ReplayModel(std::vector<TopoDS_Shape> rootShapes, std::string name)
    : roots(std::move(rootShapes)), sourceName(std::move(name))
{}

const ReplayIRSummary& ReplayModel::Summary()
{
  if (!summary)
    summary = StepReplayIRBuilder().BuildSummary(roots, sourceName);
  return *summary;
}

const std::vector<ReplayFeatureCandidate>& ReplayModel::Candidates()
{
  if (!candidates)
    candidates = StepFeatureRecognizer().RecognizeSummaryCandidates(Summary());
  return *candidates;
}

const StepGeometryPayloadStore& ReplayModel::Store()
{
  if (!store)
    store.emplace().BuildIndex(roots);
  return *store;
}

std::string ReplayModel::ManifestJson()
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field("sourceName", Summary().sourceName);
  WriteCounts(json, Summary());
  WriteIds(json, "solidIds", Summary().solids);
  WriteIds(json, "shellIds", Summary().shells);
  WriteHistogram(json, Candidates());
  json.EndObject();
  return text;
}

std::string ReplayModel::BundleJson()
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.RawField("manifest", ManifestJson());
  json.RawField("summary", ToJson(Summary()));
  json.RawField("features", ToJson(Candidates()));
  json.EndObject();
  return text;
}

// A candidate that names the same entity twice is there once.
const ReplayModel::CandidateIndex& ReplayModel::IndexOf(ReplayScope scope)
{
  std::optional<CandidateIndex>& byEntity = candidatesByEntity[static_cast<std::size_t>(scope)];
  if (byEntity)
    return *byEntity;
  byEntity.emplace();
  const auto& all = Candidates();
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const ReplayId id : all[i].*RowOf(scope).ids)
      if (std::vector<std::size_t>& places = (*byEntity)[id]; places.empty() || places.back() != i)
        places.push_back(i);
  return *byEntity;
}

std::vector<ReplayFeatureCandidate> ReplayModel::CandidatesOf(ReplayScope scope, ReplayId id)
{
  std::vector<ReplayFeatureCandidate> selected;
  const CandidateIndex& byEntity = IndexOf(scope);
  if (const auto found = byEntity.find(id); found != byEntity.end())
    for (const std::size_t place : found->second)
      selected.push_back(Candidates()[place]);
  return selected;
}

// Candidates that do not name the entity have no part in its plan.
ReplayPlan ReplayModel::PlanOf(ReplayScope scope, ReplayId id)
{
  return (StepReplayPlanBuilder().*RowOf(scope).plan)(Summary(), CandidatesOf(scope, id), id);
}

std::string ReplayModel::PlanJson(ReplayScope scope, ReplayId id)
{
  return ToJson(PlanOf(scope, id));
}

std::string ReplayModel::ContractJson(ReplayScope scope, ReplayId id)
{
  return ToJson(BuildCommandContract(PlanOf(scope, id)));
}

std::string ReplayModel::RequestsJson(ReplayScope scope, ReplayId id)
{
  return ToJson(BuildCommandRequests(PlanOf(scope, id)));
}

std::string ReplayModel::EntityBundleJson(ReplayScope scope, ReplayId id)
{
  const ScopeRow& row = RowOf(scope);
  const ReplayPlan plan = PlanOf(scope, id);
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field(row.idKey, id);
  json.RawField("payload", (Store().*row.payload)(id));
  json.RawField("features", ToJson(CandidatesOf(scope, id)));
  json.RawField("plan", ToJson(plan));
  json.RawField("commandContract", ToJson(BuildCommandContract(plan)));
  json.RawField("commandRequests", ToJson(BuildCommandRequests(plan)));
  json.EndObject();
  return text;
}

std::string ReplayModel::ManifestScript()
{
  return StepPythonReplayExporter().ExportReplayBundleScript(ManifestJson(), "manifest", 0);
}

std::string ReplayModel::EntityScript(ReplayScope scope, ReplayId id)
{
  return StepPythonReplayExporter().ExportReplayBundleScript(EntityBundleJson(scope, id),
                                                             RowOf(scope).word, id);
}

} // namespace Orvex
