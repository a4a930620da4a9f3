#include "replay/ReplayExport.h"

#include "frame/Failure.h"
#include "frame/OutputDescriptor.h"
#include "frame/Text.h"
#include "model/StepReading.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <chrono>
#include <map>

namespace Orvex::Cli {

namespace {

using WholeText = std::string (CStepFileReader::*)() const;
using EntityText = std::string (CStepFileReader::*)(std::uint64_t) const;

const std::map<ReplayForm, WholeText> kWhole = {
  {ReplayForm::Manifest, &CStepFileReader::BuildReplayManifestJson},
  {ReplayForm::Summary, &CStepFileReader::BuildReplayIRSummaryJson},
  {ReplayForm::Features, &CStepFileReader::BuildReplayFeatureCandidatesJson},
  {ReplayForm::Bundle, &CStepFileReader::BuildReplayBundleJson},
  {ReplayForm::Script, &CStepFileReader::BuildReplayManifestPythonScript},
};

// For faces, shells and solids.
struct EntityRow
{
  EntityText face, shell, solid;
};

// clang-format off
const std::map<ReplayForm, EntityRow> kEntity = {
  {ReplayForm::Plan,     {&CStepFileReader::BuildReplayFacePlanJson, &CStepFileReader::BuildReplayShellPlanJson, &CStepFileReader::BuildReplaySolidPlanJson}},
  {ReplayForm::Contract, {&CStepFileReader::BuildReplayFaceCommandContractJson, &CStepFileReader::BuildReplayShellCommandContractJson, &CStepFileReader::BuildReplaySolidCommandContractJson}},
  {ReplayForm::Requests, {&CStepFileReader::BuildReplayFaceCommandRequestsJson, &CStepFileReader::BuildReplayShellCommandRequestsJson, &CStepFileReader::BuildReplaySolidCommandRequestsJson}},
  {ReplayForm::Payload,  {&CStepFileReader::ExpandReplayFacePayloadJson, &CStepFileReader::ExpandReplayShellPayloadJson, &CStepFileReader::ExpandReplaySolidPayloadJson}},
  {ReplayForm::Bundle,   {&CStepFileReader::BuildReplayFaceBundleJson, &CStepFileReader::BuildReplayShellBundleJson, &CStepFileReader::BuildReplaySolidBundleJson}},
  {ReplayForm::Script,   {&CStepFileReader::BuildReplayFacePythonScript, &CStepFileReader::BuildReplayShellPythonScript, &CStepFileReader::BuildReplaySolidPythonScript}},
};
// clang-format on

struct Counted
{
  const char* word;
  std::size_t count;
};

Counted CountedOf(const CStepFileReader& reader, ReplayScopeWord scope)
{
  const ReplayIRSummary summary = reader.BuildReplayIRSummary();
  switch (scope) {
  case ReplayScopeWord::Face:
    return {"face", summary.faces.size()};
  case ReplayScopeWord::Shell:
    return {"shell", summary.shells.size()};
  default:
    return {"solid", summary.solids.size()};
  }
}

void RequireEntity(const CStepFileReader& reader, const std::string& path, const ReplayWish& wish)
{
  const auto [word, count] = CountedOf(reader, wish.scope);
  if (wish.id == 0 || wish.id > count)
    throw Failure{
      ExitCode::Usage, TextFromBytes(path), QStringLiteral("%1 %2").arg(word).arg(wish.id),
      QStringLiteral("the model does not have it"),
      count == 0 ? QStringLiteral("it has none") : QStringLiteral("allowed: 1 to %1").arg(count)};
}

std::string TextOf(const CStepFileReader& reader, const ReplayWish& wish)
{
  if (wish.scope == ReplayScopeWord::Model)
    return (reader.*kWhole.at(wish.form))();
  const EntityRow& row = kEntity.at(wish.form);
  const EntityText text = wish.scope == ReplayScopeWord::Face    ? row.face
                          : wish.scope == ReplayScopeWord::Shell ? row.shell
                                                                 : row.solid;
  return (reader.*text)(wish.id);
}

void WriteFile(const std::string& file, const std::string& text)
{
  OutputDescriptor output(file, OutputDescriptor::Place::New);
  WriteWhole(output.Get(), text, file);
  output.Finish();
}

QJsonObject ExportScript(const CStepFileReader& reader, std::uint64_t id, const std::string& folder)
{
  const auto start = std::chrono::steady_clock::now();
  const std::string name = std::string("solid_").append(std::to_string(id)).append(".py");
  const std::string script = reader.BuildReplaySolidPythonScript(id);
  WriteFile(std::string(folder).append("/").append(name), script);
  const QJsonDocument plan =
    QJsonDocument::fromJson(QByteArray::fromStdString(reader.BuildReplaySolidPlanJson(id)));
  return {
    {"id", static_cast<qint64>(id)},
    {"strategy", plan["primaryStrategy"]},
    {"file", TextFromBytes(name)},
    {"bytes", static_cast<qint64>(script.size())},
    {"seconds", std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()}};
}

} // namespace

QJsonObject ExportReplay(const std::string& path, const ReplayWish& wish, int descriptor,
                         const std::string& output, const ProgressSink& progress)
{
  CStepFileReader reader;
  ReadStep(reader, path, progress);
  progress({QStringLiteral("replay"), -1.0});
  if (wish.scope != ReplayScopeWord::Model)
    RequireEntity(reader, path, wish);
  std::string text = TextOf(reader, wish);
  if (wish.form != ReplayForm::Script)
    text.push_back('\n');
  WriteWhole(descriptor, text, output);
  return {{"bytes", static_cast<qint64>(text.size())}};
}

QJsonObject ExportAllScripts(const std::string& path, const std::string& folder,
                             const ProgressSink& progress)
{
  CStepFileReader reader;
  ReadStep(reader, path, progress);
  const std::size_t solids = reader.BuildReplayIRSummary().solids.size();
  QJsonArray exported;
  for (std::uint64_t id = 1; id <= solids; ++id) {
    progress(
      {QStringLiteral("scripts"), static_cast<double>(id - 1) / static_cast<double>(solids)});
    exported.append(ExportScript(reader, id, folder));
  }
  return {{"solids", exported}};
}

QString ScriptsText(const QJsonObject& exported)
{
  QString text;
  for (const QJsonValue& solid : exported.value("solids").toArray())
    text += QStringLiteral("%1  %2  %3 bytes  %4 s\n")
              .arg(solid["file"].toString().leftJustified(14),
                   solid["strategy"].toString().leftJustified(18))
              .arg(solid["bytes"].toInteger(), 9)
              .arg(Decimal(solid["seconds"].toDouble()));
  return text.isEmpty() ? QStringLiteral("no solids\n") : text;
}

} // namespace Orvex::Cli
