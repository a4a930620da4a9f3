// orvex check: the model check of files.
#include "commands/Commands.h"

#include "analyse/CheckRecord.h"
#include "frame/NumberCheck.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "info/StepInfo.h"

#include <CLI/CLI.hpp>
#include <QJsonArray>

#include <memory>
#include <optional>

namespace Orvex::Cli {

namespace {

struct CheckOptions
{
  std::vector<std::string> files;
  ModelCheckOptions limits;
  double stallLimitSeconds = 0;
};

QJsonObject CheckFile(const std::string& path, const CheckOptions& options, Session& session)
{
  const QString subject = TextFromBytes(path);
  try {
    ProgressDisplay progress(session.Streams(), session.Options(), subject);
    const WorkerOptions limits{session.Options().timeLimitSeconds, options.stallLimitSeconds,
                               session.Options().verbose};
    return ResultOfWorker(
      [&](const ProgressSink& sink) { return CheckModel(path, options.limits, sink); }, limits,
      progress, {ExitCode::KernelFailure, subject, "checked", "checking", {}, {}});
  } catch (const Failure& failure) {
    Failure own = failure;
    if (own.subject.isEmpty())
      own.subject = subject;
    if (own.code == ExitCode::Interrupted || own.code == ExitCode::Usage)
      throw own;
    session.Report(own);
    QJsonObject entry = FailedEntry(own);
    entry.insert("file", subject);
    return entry;
  }
}

ExitCode CodeOf(const QJsonObject& entry)
{
  if (HasFailed(entry))
    return FailureFromJson(entry.value("error").toObject()).code;
  return entry["critical"].toInt() > 0 ? ExitCode::Found : ExitCode::Done;
}

// What could not be checked makes the whole partial, unless nothing could.
ExitCode Combined(ExitCode all, ExitCode next)
{
  const auto isChecked = [](ExitCode code) {
    return code == ExitCode::Done || code == ExitCode::Found;
  };
  if (isChecked(all) && isChecked(next))
    return all == ExitCode::Done ? next : all;
  return isChecked(all) || isChecked(next) || all == ExitCode::Partial ? ExitCode::Partial : all;
}

ExitCode RunCheck(const CheckOptions& options, Session& session)
{
  std::optional<ExitCode> code;
  QJsonArray entries;
  for (const std::string& path : options.files) {
    const QJsonObject entry = CheckFile(path, options, session);
    if (!HasFailed(entry) && !session.Options().json)
      session.Result(CheckText(entry, session.Options().verbose));
    code = code ? Combined(*code, CodeOf(entry)) : CodeOf(entry);
    entries.append(entry);
  }
  if (session.Options().json)
    session.Result(QJsonObject{{"schema", "orvex.check"}, {"version", 1}, {"files", entries}});
  return *code;
}

} // namespace

Action DeclareCheck(CLI::App& app)
{
  const auto options = std::make_shared<CheckOptions>();
  app.add_option("FILE", options->files, "STEP, IGES and BRep files, binary documents")->required();
  const auto limit = [&](const char* name, double& value, const char* help) {
    app
      .add_option(name, value,
                  QStringLiteral("%1 (%2; 0: no check)").arg(help).arg(value).toStdString())
      ->check(NumberFromZero())
      ->option_text("SIZE");
  };
  limit("--short-edge", options->limits.shortEdgeThreshold, "Length below which an edge is short");
  limit("--hole-radius", options->limits.smallHoleRadius, "Radius below which a hole is small");
  limit("--blend-radius", options->limits.smallBlendRadius, "Radius below which a blend is small");
  limit("--chamfer-width", options->limits.smallChamferWidth,
        "Width below which a chamfer is small");
  limit("--face-area", options->limits.tinyFaceArea, "Area below which a face is tiny");
  app
    .add_option("--most", options->limits.maxIssuesPerShape,
                "Issues kept of one part, the first ones (200)")
    ->option_text("N");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunCheck(*options, session); };
}

} // namespace Orvex::Cli
