// The replay documents of a reader.
#include "step/CStepFileReader.h"

#include "step/replay/internal/ReplayModel.h"

using Orvex::ReplayScope;

std::vector<TopoDS_Shape> CStepFileReader::CollectReplayRootShapes() const
{
  std::vector<TopoDS_Shape> roots;
  for (const StepShapeData& item : shapeDataList)
    if (!item.shape.IsNull())
      roots.push_back(item.shape);
  if (!roots.empty())
    return roots;
  for (const auto& [name, shape] : importShapes)
    if (!shape.IsNull())
      roots.push_back(shape);
  return roots;
}

Orvex::ReplayModel& CStepFileReader::Replay() const
{
  if (replay == nullptr)
    replay =
      std::make_unique<Orvex::ReplayModel>(CollectReplayRootShapes(), baseName.toStdString());
  return *replay;
}

Orvex::ReplayIRSummary CStepFileReader::BuildReplayIRSummary() const
{
  return Replay().Summary();
}

std::string CStepFileReader::BuildReplayIRSummaryJson() const
{
  return Orvex::ToJson(Replay().Summary());
}

std::vector<Orvex::ReplayFeatureCandidate> CStepFileReader::BuildReplayFeatureCandidates() const
{
  return Replay().Candidates();
}

std::string CStepFileReader::BuildReplayFeatureCandidatesJson() const
{
  return Orvex::ToJson(Replay().Candidates());
}

std::string CStepFileReader::BuildReplayManifestJson() const
{
  return Replay().ManifestJson();
}

std::string CStepFileReader::BuildReplayBundleJson() const
{
  return Replay().BundleJson();
}

std::string CStepFileReader::BuildReplayManifestPythonScript() const
{
  return Replay().ManifestScript();
}

std::string CStepFileReader::BuildReplayFacePlanJson(std::uint64_t id) const
{
  return Replay().PlanJson(ReplayScope::Face, id);
}

std::string CStepFileReader::BuildReplayShellPlanJson(std::uint64_t id) const
{
  return Replay().PlanJson(ReplayScope::Shell, id);
}

std::string CStepFileReader::BuildReplaySolidPlanJson(std::uint64_t id) const
{
  return Replay().PlanJson(ReplayScope::Solid, id);
}

std::string CStepFileReader::BuildReplayFaceCommandContractJson(std::uint64_t id) const
{
  return Replay().ContractJson(ReplayScope::Face, id);
}

std::string CStepFileReader::BuildReplayShellCommandContractJson(std::uint64_t id) const
{
  return Replay().ContractJson(ReplayScope::Shell, id);
}

std::string CStepFileReader::BuildReplaySolidCommandContractJson(std::uint64_t id) const
{
  return Replay().ContractJson(ReplayScope::Solid, id);
}

std::string CStepFileReader::BuildReplayFaceCommandRequestsJson(std::uint64_t id) const
{
  return Replay().RequestsJson(ReplayScope::Face, id);
}

std::string CStepFileReader::BuildReplayShellCommandRequestsJson(std::uint64_t id) const
{
  return Replay().RequestsJson(ReplayScope::Shell, id);
}

std::string CStepFileReader::BuildReplaySolidCommandRequestsJson(std::uint64_t id) const
{
  return Replay().RequestsJson(ReplayScope::Solid, id);
}

std::string CStepFileReader::BuildReplayFaceBundleJson(std::uint64_t id) const
{
  return Replay().EntityBundleJson(ReplayScope::Face, id);
}

std::string CStepFileReader::BuildReplayShellBundleJson(std::uint64_t id) const
{
  return Replay().EntityBundleJson(ReplayScope::Shell, id);
}

std::string CStepFileReader::BuildReplaySolidBundleJson(std::uint64_t id) const
{
  return Replay().EntityBundleJson(ReplayScope::Solid, id);
}

std::string CStepFileReader::BuildReplayFacePythonScript(std::uint64_t id) const
{
  return Replay().EntityScript(ReplayScope::Face, id);
}

std::string CStepFileReader::BuildReplayShellPythonScript(std::uint64_t id) const
{
  return Replay().EntityScript(ReplayScope::Shell, id);
}

std::string CStepFileReader::BuildReplaySolidPythonScript(std::uint64_t id) const
{
  return Replay().EntityScript(ReplayScope::Solid, id);
}

std::string CStepFileReader::ExpandReplayCurvePayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandCurvePayloadJson(id);
}

std::string CStepFileReader::ExpandReplaySurfacePayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandSurfacePayloadJson(id);
}

std::string CStepFileReader::ExpandReplayFacePayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandFacePayloadJson(id);
}

std::string CStepFileReader::ExpandReplayFaceTrimPayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandFaceTrimPayloadJson(id);
}

std::string CStepFileReader::ExpandReplayShellPayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandShellPayloadJson(id);
}

std::string CStepFileReader::ExpandReplaySolidPayloadJson(std::uint64_t id) const
{
  return Replay().Store().ExpandSolidPayloadJson(id);
}
