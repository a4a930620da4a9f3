#include "info/StepInfo.h"

#include "assembly/AssemblyTreeMgr.h"
#include "frame/Interrupt.h"
#include "frame/Text.h"
#include "info/TreeRecord.h"
#include "model/FileFormat.h"
#include "model/ShapeRecord.h"
#include "step/CStepFileReader.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>
#include <chrono>

namespace Orvex::Cli {

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
  return std::chrono::duration<double>(Clock::now() - start).count();
}

QString EntityText(int id, const std::string& type)
{
  if (id <= 0)
    return TextFromBytes(type);
  return QStringLiteral("#%1 %2").arg(id).arg(TextFromBytes(type)).trimmed();
}

// The readers' texts are fixed; what they mean to somebody with a file in hand is told here.
struct Explanation
{
  const char* text;
  const char* reason;
};

constexpr Explanation kExplanations[] = {
  {"XCAF ReadFile failed", "the parser cannot make sense of it"},
  {"XCAF Transfer failed", "nothing in it could be translated into shapes"},
  {"XCAF reader returned no shapes", "there are no shapes in it"},
  {"basic STEP reader returned no shapes", "there are no shapes in it, or it cannot be parsed"},
  {"XCAF reader crashed with SEH", "the kernel crashed while translating it"},
  {"basic STEP reader crashed", "the kernel crashed while translating it"},
};

bool EndIsMissing(const std::string& path)
{
  QFile file(TextFromBytes(path));
  if (!file.open(QIODevice::ReadOnly))
    return false;
  file.seek(std::max<qint64>(0, file.size() - 4096));
  const QByteArray tail = file.readAll();
  return !tail.contains("END-ISO-10303-21") && !tail.contains("ENDSTEP");
}

// The complaint that most likely tells why a read failed. Sound files give rise to complaints too,
// about units and annotations; a reference that leads nowhere or to the wrong thing is what breaks
// a translation.
const StepMessage* TellingComplaint(const std::vector<StepMessage>& messages)
{
  const StepMessage* first = nullptr;
  for (const StepMessage& message : messages) {
    if (!message.isFailure || message.entityId <= 0)
      continue;
    if (message.text.find("illegal type") != std::string::npos ||
        message.text.find("nresolved") != std::string::npos)
      return &message;
    if (first == nullptr)
      first = &message;
  }
  return first;
}

Failure FailureOfRead(const std::string& path, const CStepFileReader& reader)
{
  const QString text = reader.GetLastError();
  Failure failure{ExitCode::Unreadable, TextFromBytes(path), {}, text, {}};
  for (const Explanation& known : kExplanations)
    if (text == QLatin1String(known.text))
      failure.reason = QStringLiteral("%1: %2").arg(known.reason, text);
  if (const StepMessage* complaint = TellingComplaint(reader.GetReadReport().messages)) {
    failure.entity = EntityText(complaint->entityId, complaint->entityType);
    failure.reason += QStringLiteral("; ") + TextFromBytes(complaint->text);
  }
  if (EndIsMissing(path))
    failure.advice = QStringLiteral("END-ISO-10303-21 is missing: the file seems to be cut off");
  return failure;
}

// Turns an interrupt or the end of the time into a request to cancel.
StepReadOptions ReadOptions(CStepFileReader& reader, const StepInfoOptions& options,
                            const ProgressSink& progress, Clock::time_point start)
{
  StepReadOptions readOptions;
  readOptions.collectReport = true;
  readOptions.progress = [&reader, &progress, start,
                          limit = options.timeLimitSeconds](const StepProgress& step) {
    progress({TextFromBytes(step.stage), step.fraction});
    if (InterruptRequested() || (limit > 0.0 && SecondsSince(start) > limit))
      reader.RequestCancel();
  };
  return readOptions;
}

void Read(CStepFileReader& reader, const std::string& path, const StepInfoOptions& options,
          const ProgressSink& progress, Clock::time_point start)
{
  reader.SetInputFileName(TextFromBytes(path));
  reader.SetReadOptions(ReadOptions(reader, options, progress, start));
  const bool read = options.plain ? reader.TryReadStepsMapNew() : reader.ReadSynchronously();
  if (InterruptRequested())
    throw Failure{
      ExitCode::Interrupted, TextFromBytes(path), {}, QStringLiteral("interrupted"), {}};
  if (reader.WasCancelled())
    throw Failure{ExitCode::TimeLimit,
                  TextFromBytes(path),
                  {},
                  QStringLiteral("not read within the time limit"),
                  {}};
  if (!read)
    throw FailureOfRead(path, reader);
}

QJsonArray ColorsJson(const std::vector<StepColor>& colors)
{
  QJsonArray json;
  for (const StepColor& color : colors)
    json.append(Hex(color.r, color.g, color.b));
  return json;
}

QJsonArray LossesJson(const std::vector<StepLoss>& losses)
{
  QJsonArray json;
  for (const StepLoss& loss : losses)
    json.append(QJsonObject{{"entity", EntityText(loss.entityId, loss.entityType)},
                            {"outcome", TextFromBytes(loss.outcome)}});
  return json;
}

QJsonArray MessagesJson(const std::vector<StepMessage>& messages)
{
  QJsonArray json;
  for (const StepMessage& message : messages)
    json.append(QJsonObject{{"entity", EntityText(message.entityId, message.entityType)},
                            {"text", TextFromBytes(message.text)},
                            {"failure", message.isFailure},
                            {"stage", message.duringTransfer ? "transfer" : "parse"}});
  return json;
}

QJsonObject ReportJson(const StepReadReport& report)
{
  return {{"schema", TextFromBytes(report.schema)},
          {"unit", QJsonObject{{"name", TextFromBytes(report.lengthUnit)},
                               {"millimetres", report.lengthUnitInMillimetres}}},
          {"colors", ColorsJson(report.colors)},
          {"entities", QJsonObject{{"all", report.entities}, {"inError", report.entitiesInError}}},
          {"solidsInFile", report.solidsInFile},
          {"facesInFile", report.facesInFile},
          {"losses", LossesJson(report.losses)},
          {"messages", MessagesJson(report.messages)}};
}

QJsonObject StructureJson(const StepReadReport& report, const TreeRecord& tree)
{
  return {{"roots", report.roots},
          {"freeShapes", report.freeShapes},
          {"assemblies", report.assemblies},
          {"parts", report.parts},
          {"components", report.components},
          {"namedProducts", report.namedProducts},
          {"namedComponents", report.namedComponents},
          {"occurrences", tree.occurrences},
          {"leaves", tree.leaves},
          {"depth", tree.depth}};
}

QJsonObject ShapeJson(const std::string& name, const QString& colour)
{
  QJsonObject json{{"name", TextFromBytes(name)}};
  if (!colour.isEmpty())
    json.insert("color", colour);
  return json;
}

// The shapes that came in: of the full reader with colours, of the plain one by name.
struct ImportedShapes
{
  std::vector<TopoDS_Shape> shapes;
  std::map<std::string, QString> colours; // by name, of those that have one
  QJsonArray json;
};

ImportedShapes Collect(const CStepFileReader& reader, bool plain)
{
  ImportedShapes imported;
  const auto add = [&imported](const std::string& name, const TopoDS_Shape& shape,
                               const QString& colour) {
    imported.shapes.push_back(shape);
    imported.json.append(ShapeJson(name, colour));
    if (!colour.isEmpty())
      imported.colours.emplace(name, colour);
  };
  if (plain)
    for (const auto& [name, shape] : reader.GetImportShapesMap())
      add(name, shape, {});
  else
    for (const StepShapeData& item : reader.GetImportShapeDataList())
      add(item.name, item.shape, item.hasColor ? Hex(item.r, item.g, item.b) : QString());
  return imported;
}

void DescribeTree(QJsonObject& entry, const ImportedShapes& imported, const StepReadReport& report,
                  bool withNodes)
{
  const TreeRecord tree = RecordTree(AssemblyTreeMgr::GetInstance(), imported.colours);
  entry.insert("structure", StructureJson(report, tree));
  entry.insert("definitions", tree.definitions);
  if (withNodes)
    entry.insert("tree", tree.roots);
}

QJsonObject Describe(const std::string& path, const StepInfoOptions& options,
                     const ProgressSink& progress)
{
  const auto start = Clock::now();
  CStepFileReader reader;
  Read(reader, path, options, progress, start);
  progress({QStringLiteral("count"), -1.0});
  const StepReadReport& report = reader.GetReadReport();
  const ImportedShapes imported = Collect(reader, options.plain);
  const ShapeCounts counts = CountShapes(imported.shapes);

  QJsonObject entry = ReportJson(report);
  entry.insert("file", TextFromBytes(path));
  entry.insert("format", FormatWord(FileFormat::Step));
  entry.insert("status", report.losses.empty() ? "read" : "incomplete");
  entry.insert("reader", options.plain ? "plain" : "full");
  entry.insert("shapes", imported.json);
  entry.insert("counts", CountsJson(counts));
  entry.insert("box", BoxJson(counts.box));
  if (!options.plain)
    DescribeTree(entry, imported, report, options.tree);
  entry.insert("seconds", SecondsSince(start));
  return entry;
}

} // namespace

QJsonObject DescribeStepFile(const std::string& path, const StepInfoOptions& options,
                             const ProgressSink& progress)
{
  try {
    return Describe(path, options, progress);
  } catch (...) {
    return FailedEntry(FailureOfCurrentException(ExitCode::Unreadable, TextFromBytes(path)));
  }
}

std::vector<TopoDS_Shape> ReadStepShapes(const std::string& path)
{
  StepInfoOptions plain;
  plain.plain = true;
  CStepFileReader reader;
  Read(
    reader, path, plain, [](const ProgressStep&) {}, Clock::now());
  return Collect(reader, true).shapes;
}

std::vector<StepShapeData> ReadStepModel(const std::string& path, const ProgressSink& progress)
{
  CStepFileReader reader;
  Read(reader, path, {}, progress, Clock::now());
  return reader.GetImportShapeDataList();
}

QJsonObject FailedEntry(const Failure& failure)
{
  return {{"file", failure.subject}, {"status", "failed"}, {"error", ToJson(failure)}};
}

bool HasFailed(const QJsonObject& entry)
{
  return entry.value("status") == "failed";
}

} // namespace Orvex::Cli
