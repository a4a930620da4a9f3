// orvex compare: whether two models are the same for practical purposes.
#include "commands/Commands.h"

#include "analyse/CompareRecord.h"
#include "frame/NumberCheck.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Orvex::Cli {

namespace {

struct CompareOptions
{
  std::string source;
  std::string candidate;
  ShapeEquivalenceOptions limits;
  double stallLimitSeconds = 0;
};

ExitCode RunCompare(const CompareOptions& options, Session& session)
{
  const QString subject =
    QStringLiteral("%1, %2").arg(TextFromBytes(options.source), TextFromBytes(options.candidate));
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const WorkerOptions limits{session.Options().timeLimitSeconds, options.stallLimitSeconds,
                             session.Options().verbose};
  QJsonObject compared = ResultOfWorker(
    [&](const ProgressSink& sink) {
      return CompareModels(options.source, options.candidate, options.limits, sink);
    },
    limits, progress, {ExitCode::KernelFailure, subject, "compared", "comparing", {}, {}});
  compared.insert("schema", "orvex.compare");
  compared.insert("version", 1);
  session.Options().json ? session.Result(compared) : session.Result(CompareText(compared));
  return compared["equivalent"].toBool() ? ExitCode::Done : ExitCode::Found;
}

} // namespace

Action DeclareCompare(CLI::App& app)
{
  const auto options = std::make_shared<CompareOptions>();
  app.add_option("SOURCE", options->source, "A STEP, IGES or BRep file, a binary document")
    ->required();
  app.add_option("CANDIDATE", options->candidate, "What is compared with it")->required();
  const auto tolerance = [&](const char* name, double& value, const char* help) {
    app.add_option(name, value, QStringLiteral("%1 (%2)").arg(help).arg(value).toStdString())
      ->check(NumberFromZero())
      ->option_text("T");
  };
  tolerance("--relative", options->limits.relativeTolerance,
            "Share that volume and area may differ");
  tolerance("--absolute", options->limits.absoluteTolerance,
            "What counts as no volume and area; what a box may differ besides");
  const auto without = [&](const char* name, bool& check, const char* help) {
    app.add_flag(
      name, [&check](std::int64_t) { check = false; }, help);
  };
  without("--no-volume", options->limits.checkVolume, "Do not compare volumes");
  without("--no-area", options->limits.checkArea, "Do not compare areas");
  without("--no-box", options->limits.checkBoundingBox, "Do not compare boxes");
  without("--no-topology", options->limits.checkTopology, "Do not compare numbers of faces, edges");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunCompare(*options, session); };
}

} // namespace Orvex::Cli
