// orvex info: what is in files of models.
#include "commands/Commands.h"

#include "frame/Interrupt.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "info/InfoText.h"
#include "info/InputCheck.h"
#include "info/ModelInfo.h"
#include "info/StepInfo.h"

#include <CLI/CLI.hpp>
#include <QJsonArray>

#include <algorithm>
#include <memory>

namespace Orvex::Cli {

namespace {

constexpr int kLossesShown = 10;

struct InfoOptions
{
  std::vector<std::string> files;
  StepInfoOptions read;
  bool inProcess = false;
  double stallLimitSeconds = kStallLimitSeconds;
};

// A name that tells nothing is taken for a STEP file.
FileFormat FormatOf(const std::string& path)
{
  return FormatOfName(path).value_or(FileFormat::Step);
}

QJsonObject DescribeHere(const std::string& path, const StepInfoOptions& options,
                         const ProgressSink& sink)
{
  const FileFormat format = FormatOf(path);
  return format == FileFormat::Step ? DescribeStepFile(path, options, sink)
                                    : DescribeModelFile(path, format, options.tree, sink);
}

QJsonObject DescribeIsolated(const std::string& path, const InfoOptions& options, Session& session,
                             ProgressDisplay& progress)
{
  const auto job = [&](const ProgressSink& sink) {
    // The time is kept out here, where a kernel that hangs cannot stop the clock.
    StepInfoOptions read = options.read;
    read.timeLimitSeconds = 0.0;
    return DescribeHere(path, read, sink);
  };
  const WorkerOptions limits{options.read.timeLimitSeconds, options.stallLimitSeconds,
                             session.Options().verbose};
  const WorkerReply reply = RunInWorker(job, limits, progress);
  if (reply.end == WorkerReply::End::Replied)
    return reply.value;
  return FailedEntry(FailureOfWorker(
    reply, limits, {ExitCode::Unreadable, TextFromBytes(path), "read", "reading", {}, {}}));
}

QJsonObject DescribeFile(const std::string& path, const InfoOptions& options, Session& session)
{
  if (const auto problem = CheckInput(path, FormatOf(path)))
    return FailedEntry(*problem);
  ProgressDisplay progress(session.Streams(), session.Options(), TextFromBytes(path));
  if (!options.inProcess)
    return DescribeIsolated(path, options, session, progress);
  return DescribeHere(path, options.read,
                      [&progress](const ProgressStep& step) { progress.Show(step); });
}

void WarnOfLosses(const QJsonObject& entry, Session& session)
{
  const QString file = entry.value("file").toString();
  const QJsonArray losses = entry.value("losses").toArray();
  const qsizetype shown = std::min<qsizetype>(losses.size(), kLossesShown);
  for (qsizetype i = 0; i < shown; ++i)
    session.Warn(QStringLiteral("%1: %2: %3")
                   .arg(file, losses[i]["entity"].toString(), losses[i]["outcome"].toString()));
  if (losses.size() > shown)
    session.Warn(QStringLiteral("%1: and %2 more entities that were lost (--json lists them)")
                   .arg(file)
                   .arg(losses.size() - shown));
}

void NoteOfRead(const QJsonObject& entry, Session& session)
{
  QString note = QStringLiteral("%1: read in %2 s")
                   .arg(entry.value("file").toString(), Decimal(entry.value("seconds").toDouble()));
  if (entry.contains("entities"))
    note += QStringLiteral(", %1 entities of which %2 in error, %3 messages")
              .arg(entry["entities"]["all"].toInt())
              .arg(entry["entities"]["inError"].toInt())
              .arg(entry.value("messages").toArray().size());
  session.Note(note);
}

void Show(const QJsonObject& entry, Session& session)
{
  if (HasFailed(entry)) {
    Failure failure = FailureFromJson(entry.value("error").toObject());
    failure.subject = entry.value("file").toString();
    session.Report(failure);
    return;
  }
  if (!session.Options().json)
    session.Result(
      InfoText(entry, {session.Streams().ColouredResult(), session.Options().verbose}));
  WarnOfLosses(entry, session);
  NoteOfRead(entry, session);
}

ExitCode CodeOf(const QJsonObject& entry)
{
  if (HasFailed(entry))
    return FailureFromJson(entry.value("error").toObject()).code;
  return entry.value("status") == "incomplete" ? ExitCode::Partial : ExitCode::Done;
}

// One code for all files: theirs, if they agree; a good file among bad ones makes the result
// partial; of several ways to fail the first counts.
ExitCode Combined(ExitCode all, ExitCode next)
{
  const auto good = [](ExitCode code) {
    return code == ExitCode::Done || code == ExitCode::Partial;
  };
  if (all == next || (!good(all) && !good(next)))
    return all;
  return ExitCode::Partial;
}

ExitCode RunInfo(const InfoOptions& options, Session& session)
{
  std::optional<ExitCode> code;
  QJsonArray entries;
  for (const std::string& path : options.files) {
    const QJsonObject entry = DescribeFile(path, options, session);
    Show(entry, session);
    const ExitCode own = CodeOf(entry);
    if (own == ExitCode::Interrupted)
      return own;
    code = code ? Combined(*code, own) : own;
    entries.append(entry);
  }
  if (session.Options().json)
    session.Result(QJsonObject{{"schema", "orvex.info"}, {"version", 1}, {"files", entries}});
  return *code;
}

} // namespace

Action DeclareInfo(CLI::App& app)
{
  const auto options = std::make_shared<InfoOptions>();
  app.add_option("FILE", options->files, "STEP, IGES and BRep files, binary documents")->required();
  app.add_flag("--tree", options->read.tree, "Show the product tree");
  app.add_flag("--plain", options->read.plain, "Read shapes and names only, no products, colours");
  app.add_flag("--in-process", options->inProcess,
               "Read without the protection of a worker process");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) {
    options->read.timeLimitSeconds = session.Options().timeLimitSeconds;
    return RunInfo(*options, session);
  };
}

} // namespace Orvex::Cli
