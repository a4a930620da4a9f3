// orvex history: how a saved document was made.
#include "commands/Commands.h"

#include "frame/Text.h"
#include "frame/Worker.h"
#include "history/HistoryRecord.h"
#include "info/InputCheck.h"
#include "model/Documents.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Orvex::Cli {

namespace {

ExitCode RunHistory(const std::string& path, Session& session)
{
  if (const auto problem = CheckInput(path, FileFormat::Document))
    throw *problem;
  const QString subject = TextFromBytes(path);
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const auto job = [&](const ProgressSink& sink) {
    sink({QStringLiteral("read"), -1.0});
    const OpenModel model(path);
    return HistoryJson();
  };
  const WorkerOptions limits{session.Options().timeLimitSeconds, 0.0, session.Options().verbose};
  QJsonObject history = ResultOfWorker(job, limits, progress,
                                       {ExitCode::Unreadable, subject, "read", "reading", {}, {}});
  history.insert("schema", "orvex.history");
  history.insert("version", 1);
  history.insert("file", subject);
  session.Options().json ? session.Result(history) : session.Result(HistoryText(history));
  return ExitCode::Done;
}

} // namespace

Action DeclareHistory(CLI::App& app)
{
  const auto path = std::make_shared<std::string>();
  app.add_option("DOC", *path, "A saved document (.xbf)")->required();
  return [path](Session& session) { return RunHistory(*path, session); };
}

} // namespace Orvex::Cli
