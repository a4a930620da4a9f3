// orvex quality: surface analyses of a model.
#include "commands/Commands.h"

#include "analyse/QualityRecord.h"
#include "create/ParameterInput.h"
#include "frame/NumberCheck.h"
#include "frame/OutputDescriptor.h"
#include "frame/PendingFile.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <memory>
#include <vector>

namespace Orvex::Cli {

namespace {

struct KindRow
{
  const char* option;
  QualityKind kind;
  const char* help;
};

constexpr KindRow kKinds[] = {
  {"--curvature", QualityKind::Curvature, "Gaussian and mean curvature"},
  {"--zebra", QualityKind::Zebra, "Stripes of lamps in --direction"},
  {"--draft", QualityKind::Draft, "Angle against a pull in --direction"},
  {"--min-radius", QualityKind::MinRadius, "The smaller radius of curvature"},
  {"--thickness", QualityKind::Thickness, "Way through the material"},
  {"--reflection", QualityKind::Reflection, "A checkered world, seen in --direction"},
  {"--continuity", QualityKind::Continuity, "How neighbouring faces meet"},
};

struct QualityOptions
{
  QualityRequest request;
  std::vector<double> direction = {0, 0, 1};
  std::string csv;
  double stallLimitSeconds = 0;
};

gp_Dir DirectionOf(const std::vector<double>& given)
{
  const gp_XYZ direction(given[0], given[1], given[2]);
  if (!std::isfinite(direction.SquareModulus()) || direction.Modulus() <= gp::Resolution())
    throw Failure{ExitCode::Usage,
                  {},
                  QStringLiteral("--direction"),
                  QStringLiteral("it has no direction"),
                  QStringLiteral("as 0,0,1")};
  return direction;
}

ExitCode RunQuality(const QualityOptions& options, Session& session)
{
  QualityRequest request = options.request;
  request.direction = DirectionOf(options.direction);
  request.withSamples = session.Options().json || !options.csv.empty();
  std::optional<PendingFile> csv;
  if (!options.csv.empty())
    csv.emplace(options.csv);
  const QString subject = TextFromBytes(request.path);
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const WorkerOptions limits{session.Options().timeLimitSeconds, options.stallLimitSeconds,
                             session.Options().verbose};
  QJsonObject result =
    ResultOfWorker([&](const ProgressSink& sink) { return AnalyseQuality(request, sink); }, limits,
                   progress, {ExitCode::KernelFailure, subject, "analysed", "analysing", {}, {}});
  if (csv) {
    OutputDescriptor output(csv->Path(), OutputDescriptor::Place::Existing);
    WriteWhole(output.Get(), QualityCsv(result).toStdString(), options.csv);
    output.Finish();
    csv->Commit();
  }
  result.insert("schema", "orvex.quality");
  result.insert("version", 1);
  session.Options().json ? session.Result(result) : session.Result(QualityText(result));
  return ExitCode::Done;
}

} // namespace

Action DeclareQuality(CLI::App& app)
{
  const auto options = std::make_shared<QualityOptions>();
  QualityRequest& request = options->request;
  app.add_option("FILE", request.path, "A STEP, IGES or BRep file, a binary document")->required();
  CLI::Option_group* kinds = app.add_option_group("analysis");
  kinds->require_option(1);
  for (const KindRow& row : kKinds)
    kinds->add_flag(
      row.option, [&request, kind = row.kind](std::int64_t) { request.kind = kind; }, row.help);
  app.add_option("--grid", request.grid, "Samples each way on a face (10)")
    ->check(CLI::Range(2, 1000).description(""))
    ->option_text("N");
  app.add_option("--direction", options->direction, "Of light, pull or view (0,0,1)")
    ->delimiter(',')
    ->expected(3)
    ->option_text("X,Y,Z");
  app.add_option("--min-angle", request.minAngleDegrees, "Draft that is required, degrees (1)")
    ->check(NumberFromZero())
    ->option_text("A");
  app.add_option("--frequency", request.frequency, "Of the stripes (10)")
    ->check(AnyNumber())
    ->option_text("F");
  app.add_option("--tile", request.tileSize, "Size of the checkered tiles, radians (0.2)")
    ->check(NumberAboveZero())
    ->option_text("R");
  app.add_option("--csv", options->csv, "Write all samples")->option_text("FILE");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunQuality(*options, session); };
}

} // namespace Orvex::Cli
