// What replay knows of one read model, built when it is first asked for, and the documents made of
// it: manifest, bundles, plans, contracts, requests, scripts.
//
// Holds the root shapes, the summary (some hundred bytes per face), the candidates, which of them
// name which entity, and the payload store (an index, and what was expanded of it). Documents are
// made anew with each call and not kept.
#pragma once

#include "step/replay/ReplayFeatureCandidate.h"
#include "step/replay/ReplayPlan.h"
#include "step/replay/StepGeometryPayloadStore.h"

#include <TopoDS_Shape.hxx>

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvex {

enum class ReplayScope { Face, Shell, Solid };

class ReplayModel
{
public:
  // The shapes are the roots in the order of their ids; null ones are passed over.
  ReplayModel(std::vector<TopoDS_Shape> rootShapes, std::string name);

  const ReplayIRSummary& Summary();
  const std::vector<ReplayFeatureCandidate>& Candidates();
  const StepGeometryPayloadStore& Store();

  std::string ManifestJson();
  std::string BundleJson();
  std::string ManifestScript();

  // An id that the model does not have gives a plan without steps, no candidates, and {} for the
  // payload.
  std::string PlanJson(ReplayScope scope, ReplayId id);
  std::string ContractJson(ReplayScope scope, ReplayId id);
  std::string RequestsJson(ReplayScope scope, ReplayId id);
  std::string EntityBundleJson(ReplayScope scope, ReplayId id);
  std::string EntityScript(ReplayScope scope, ReplayId id);

private:
  // Places of the candidates that name an entity.
  using CandidateIndex = std::unordered_map<ReplayId, std::vector<std::size_t>>;

  const CandidateIndex& IndexOf(ReplayScope scope);
  std::vector<ReplayFeatureCandidate> CandidatesOf(ReplayScope scope, ReplayId id);
  ReplayPlan PlanOf(ReplayScope scope, ReplayId id);

  std::vector<TopoDS_Shape> roots;
  std::string sourceName;
  std::optional<ReplayIRSummary> summary;
  std::optional<std::vector<ReplayFeatureCandidate>> candidates;
  // In the order of ReplayScope.
  std::array<std::optional<CandidateIndex>, 3> candidatesByEntity;
  std::optional<StepGeometryPayloadStore> store;
};

} // namespace Orvex
