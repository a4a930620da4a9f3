// orvex rebuild: changes parameters of a saved document and rebuilds what depends on them.
#include "commands/Commands.h"

#include "frame/PendingFile.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "history/DocumentRebuild.h"
#include "info/InputCheck.h"
#include "model/Documents.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <optional>

namespace Orvex::Cli {

namespace {

struct RebuildOptions
{
  RebuildRequest request;
  std::string output;
};

void RequireDocumentName(const std::string& path)
{
  if (FormatOfName(path) != FileFormat::Document)
    throw Failure{ExitCode::Usage,
                  TextFromBytes(path),
                  {},
                  QStringLiteral("a rebuilt document is written as a document"),
                  QStringLiteral("end the name with .xbf")};
}

ExitCode RunRebuild(const RebuildOptions& options, Session& session)
{
  RequireDocumentName(options.output);
  if (const auto problem = CheckInput(options.request.path, FileFormat::Document))
    throw *problem;
  const QString subject = TextFromBytes(options.request.path);
  // Global parameters come from a file beside the document, or from the command line.
  const bool withParameters = !options.request.globals.empty() ||
                              std::filesystem::exists(ParameterFileOf(options.request.path));
  PendingFile document(options.output);
  std::optional<PendingFile> parameters;
  if (withParameters)
    parameters.emplace(ParameterFileOf(options.output));

  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const auto job = [&](const ProgressSink& sink) {
    sink({QStringLiteral("rebuild"), -1.0});
    try {
      return RebuildDocument(options.request,
                             {document.Path(), parameters ? parameters->Path() : std::string()});
    } catch (Failure& failure) {
      if (failure.subject.isEmpty())
        failure.subject = subject;
      throw;
    }
  };
  const WorkerOptions limits{session.Options().timeLimitSeconds, 0.0, session.Options().verbose};
  QJsonObject rebuilt = ResultOfWorker(
    job, limits, progress, {ExitCode::KernelFailure, subject, "rebuilt", "rebuilding", {}, {}});
  // The document last: until it is there, the earlier one belongs to the earlier parameters.
  if (parameters)
    parameters->Commit();
  document.Commit();
  rebuilt.insert("schema", "orvex.rebuild");
  rebuilt.insert("version", 1);
  rebuilt.insert("file", subject);
  rebuilt.insert("output", TextFromBytes(options.output));
  session.Options().json ? session.Result(rebuilt) : session.Result(RebuildText(rebuilt));
  return ExitCode::Done;
}

} // namespace

Action DeclareRebuild(CLI::App& app)
{
  const auto options = std::make_shared<RebuildOptions>();
  RebuildRequest& request = options->request;
  const auto addList = [&app](const char* name, std::vector<std::string>& list, const char* help,
                              const char* form) {
    app.add_option(name, list, help)->option_text(form)->take_all()->expected(1);
  };
  app.add_option("DOC", request.path, "A saved document (.xbf)")->required();
  addList("--set", request.values, "A parameter of a feature", "LABEL:PARAMETER=VALUE");
  addList("--expr", request.expressions, "An expression for a parameter; empty ends it",
          "LABEL:PARAMETER=EXPRESSION");
  addList("-p,--param", request.globals, "A global parameter", "NAME=VALUE");
  app.add_option("-o,--output", options->output, "Write the result: .xbf")
    ->option_text("FILE")
    ->required();
  return [options](Session& session) { return RunRebuild(*options, session); };
}

} // namespace Orvex::Cli
