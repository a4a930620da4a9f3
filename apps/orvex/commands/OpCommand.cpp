// orvex op: a modelling operation on shapes from files.
#include "commands/Commands.h"

#include "frame/PendingFile.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "operate/OperationRecord.h"
#include "operate/OperationRun.h"

#include <CLI/CLI.hpp>
#include <QJsonArray>

#include <memory>

namespace Orvex::Cli {

namespace {

// Some shapes make the kernel loop for ever.
constexpr double kStallLimitSeconds = 300.0;

struct OpOptions
{
  std::string name;
  std::vector<std::string> inputs;
  std::vector<std::string> options;
  std::string output;
  bool list = false;
};

ExitCode List(const OpOptions& options, Session& session)
{
  QJsonArray operations;
  QString text;
  for (const Operation* operation : Operations()) {
    if (!options.name.empty() && operation != &OperationNamed(options.name))
      continue;
    operations.append(OperationJson(*operation));
    text += (text.isEmpty() ? QString() : QStringLiteral("\n")) +
            OperationText(operations.last().toObject());
  }
  if (session.Options().json)
    session.Result(
      QJsonObject{{"schema", "orvex.operations"}, {"version", 1}, {"operations", operations}});
  else
    session.Result(text);
  return ExitCode::Done;
}

void CheckOutput(const Operation& operation, const std::string& output)
{
  const auto wrong = [&](const QString& reason, const QString& advice) {
    return Failure{ExitCode::Usage, TextFromBytes(operation.name), {}, reason, advice};
  };
  if (operation.givesShape == output.empty())
    throw operation.givesShape
      ? wrong(QStringLiteral("there is no file for the result"), QStringLiteral("-o FILE"))
      : wrong(QStringLiteral("it gives no shape to write"), QStringLiteral("leave out -o"));
  if (operation.onlyFormat && OutputFormat(output) != *operation.onlyFormat)
    throw wrong(
      QStringLiteral("%1 is no %2").arg(TextFromBytes(output), FormatName(*operation.onlyFormat)),
      QStringLiteral("end the name with .igs or .iges"));
}

QJsonObject RunInWorker(const OperationRequest& request, const std::optional<WriteTarget>& target,
                        Session& session)
{
  const QString subject = TextFromBytes(request.operation->name);
  const WorkerOptions limits{session.Options().timeLimitSeconds, kStallLimitSeconds,
                             session.Options().verbose};
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const auto job = [&](const ProgressSink& sink) {
    sink({QStringLiteral("operate"), -1.0});
    return RunOperation(request, target);
  };
  return ResultOfWorker(job, limits, progress,
                        {ExitCode::KernelFailure, subject, "done", "operating", GivenText(request),
                         AllowedText(request)});
}

// A shape that is not valid is written, for a look at it, and told.
ExitCode Finish(const QJsonObject& outcome, Session& session)
{
  session.Options().json ? session.Result(outcome) : session.Result(OutcomeText(outcome));
  const QJsonObject result = outcome.value("result").toObject();
  if (result.isEmpty() || result.value("valid").toBool())
    return ExitCode::Done;
  session.Warn(
    QStringLiteral("%1: the result is not valid (BRepCheck); see whether an input is open "
                   "or crosses itself")
      .arg(outcome.value("file").toString()));
  return ExitCode::Partial;
}

ExitCode RunOp(const OpOptions& options, Session& session)
{
  if (options.list)
    return List(options, session);
  if (options.name.empty())
    throw Failure{ExitCode::Usage,
                  {},
                  {},
                  QStringLiteral("NAME is missing"),
                  QStringLiteral("orvex op --list shows the operations")};
  const Operation& operation = OperationNamed(options.name);
  CheckOutput(operation, options.output);
  const OperationRequest request = RequestFor(operation, options.inputs, options.options);
  std::optional<PendingFile> file;
  std::optional<WriteTarget> target;
  if (!options.output.empty()) {
    const FileFormat format = OutputFormat(options.output);
    file.emplace(options.output);
    target = WriteTarget{format, file->Path(), options.output};
  }
  QJsonObject outcome = RunInWorker(request, target, session);
  if (file)
    file->Commit();
  outcome.insert("schema", "orvex.op");
  outcome.insert("version", 1);
  return Finish(outcome, session);
}

} // namespace

Action DeclareOp(CLI::App& app)
{
  const auto options = std::make_shared<OpOptions>();
  app.add_option("NAME", options->name, "What to do; --list shows the operations");
  app.add_option("INPUT", options->inputs, "Shapes: .brep, .step or .stp");
  app.add_option("-p,--param", options->options, "An option of the operation; once for each")
    ->option_text("NAME=VALUE")
    ->take_all()
    ->expected(1);
  app.add_option("-o,--output", options->output, std::string("Write the result: ") + kEndings)
    ->option_text("FILE");
  app.add_flag("--list", options->list, "Show the operations, their inputs and options");
  return [options](Session& session) { return RunOp(*options, session); };
}

} // namespace Orvex::Cli
