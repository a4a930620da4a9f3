// orvex new: makes a parametric shape of any kind.
#include "commands/Commands.h"

#include "create/KindRecord.h"
#include "create/ShapeMaking.h"
#include "frame/PendingFile.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"

#include <CLI/CLI.hpp>
#include <QJsonArray>

#include <memory>

namespace Orvex::Cli {

namespace {

// No sound shape takes the kernel anywhere near as long; some values make it loop for ever.
constexpr double kShapeLimitSeconds = 60.0;

struct NewOptions
{
  std::string kind;
  std::vector<std::string> parameters;
  std::string output;
  bool list = false;
  double stallLimitSeconds = kShapeLimitSeconds;
};

ExitCode List(const NewOptions& options, Session& session)
{
  QJsonArray kinds;
  QString text;
  for (const ShapeKind* kind : ShapeKinds()) {
    if (!options.kind.empty() && kind != &KindNamed(options.kind))
      continue;
    kinds.append(KindJson(*kind));
    text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + KindText(kinds.last().toObject());
  }
  if (session.Options().json)
    session.Result(QJsonObject{{"schema", "orvex.kinds"}, {"version", 1}, {"kinds", kinds}});
  else
    session.Result(text);
  return ExitCode::Done;
}

QJsonObject MakeInWorker(const NewShape& wanted, const std::optional<WriteTarget>& target,
                         double stallLimitSeconds, Session& session)
{
  const QString subject = TextFromBytes(wanted.kind->word);
  const WorkerOptions limits{session.Options().timeLimitSeconds, stallLimitSeconds,
                             session.Options().verbose};
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const auto job = [&](const ProgressSink& sink) {
    sink({QStringLiteral("make"), -1.0});
    return MakeShape(wanted, target);
  };
  return ResultOfWorker(job, limits, progress,
                        {ExitCode::KernelFailure, subject, "made", "making",
                         GivenText(*wanted.kind, wanted), AllowedText(*wanted.kind)});
}

ExitCode Make(const NewOptions& options, Session& session)
{
  const ShapeKind& kind = KindNamed(options.kind);
  const NewShape wanted{ReadParameterInput(kind, options.parameters), &kind};
  std::optional<PendingFile> file;
  std::optional<WriteTarget> target;
  if (!options.output.empty()) {
    const FileFormat format = OutputFormat(options.output);
    file.emplace(options.output);
    target = WriteTarget{format, file->Path(), options.output};
  }
  QJsonObject made = MakeInWorker(wanted, target, options.stallLimitSeconds, session);
  if (file)
    file->Commit();
  made.insert("schema", "orvex.new");
  made.insert("version", 1);
  session.Options().json ? session.Result(made) : session.Result(MadeText(made));
  return ExitCode::Done;
}

ExitCode RunNew(const NewOptions& options, Session& session)
{
  if (options.list)
    return List(options, session);
  if (options.kind.empty())
    throw Failure{ExitCode::Usage,
                  {},
                  {},
                  QStringLiteral("KIND is missing"),
                  QStringLiteral("orvex new --list shows the kinds")};
  return Make(options, session);
}

} // namespace

Action DeclareNew(CLI::App& app)
{
  const auto options = std::make_shared<NewOptions>();
  app.add_option("KIND", options->kind, "What to make; --list shows the kinds");
  app.add_option("-p,--param", options->parameters, "A parameter; once for each")
    ->option_text("NAME=VALUE")
    ->take_all()
    ->expected(1);
  app.add_option("-o,--output", options->output, std::string("Write it: ") + kEndings)
    ->option_text("FILE");
  app.add_flag("--list", options->list, "Show the kinds and their parameters");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunNew(*options, session); };
}

} // namespace Orvex::Cli
