// orvex pick: what lines hit in a model.
#include "commands/Commands.h"

#include "frame/NumberCheck.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "pick/PickRecord.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>

namespace Orvex::Cli {

namespace {

struct PickOptions
{
  PickRequest request;
  std::vector<std::string> rays;
  std::string rayFile;
  double stallLimitSeconds = kStallLimitSeconds;
};

std::vector<gp_Lin> RaysOf(const PickOptions& options)
{
  std::vector<gp_Lin> rays;
  for (const std::string& text : options.rays) {
    const std::optional<gp_Lin> ray = RayFromText(text);
    if (!ray)
      throw Failure{ExitCode::Usage, QStringLiteral("--ray"), TextFromBytes(text),
                    QStringLiteral("it is not six numbers, with a direction in the last three"),
                    QStringLiteral("as 0,0,10,0,0,-1")};
    rays.push_back(*ray);
  }
  if (!options.rayFile.empty())
    for (const gp_Lin& ray : RaysFromFile(options.rayFile))
      rays.push_back(ray);
  return rays;
}

ExitCode RunPick(const PickOptions& options, Session& session)
{
  PickRequest request = options.request;
  request.rays = RaysOf(options);
  const QString subject = TextFromBytes(request.path);
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const WorkerOptions limits{session.Options().timeLimitSeconds, options.stallLimitSeconds,
                             session.Options().verbose};
  QJsonObject result =
    ResultOfWorker([&](const ProgressSink& sink) { return PickModel(request, sink); }, limits,
                   progress, {ExitCode::KernelFailure, subject, "picked", "picking", {}, {}});
  result.insert("schema", "orvex.pick");
  result.insert("version", 1);
  session.Options().json ? session.Result(result) : session.Result(PickText(result));
  return ExitCode::Done;
}

} // namespace

Action DeclarePick(CLI::App& app)
{
  const auto options = std::make_shared<PickOptions>();
  PickRequest& request = options->request;
  app.add_option("FILE", request.path, "A STEP, IGES or BRep file, a binary document")->required();
  CLI::Option_group* rays = app.add_option_group("rays");
  rays->require_option(1, 2);
  rays->add_option("--ray", options->rays, "Origin and direction; may be given again")
    ->expected(1)
    ->take_all()
    ->option_text("OX,OY,OZ,DX,DY,DZ");
  rays->add_option("--rays", options->rayFile, "A file with a ray in each line")
    ->option_text("FILE");
  static const std::map<std::string, PickingLevel> kLevels = {{"vertex", PickingLevel::Vertex},
                                                              {"edge", PickingLevel::Edge},
                                                              {"face", PickingLevel::Face},
                                                              {"solid", PickingLevel::Solid}};
  app.add_option("--level", request.level, "vertex, edge, face or solid (face)")
    ->transform(CLI::CheckedTransformer(kLevels).description(""))
    ->option_text("LEVEL");
  app
    .add_option_function<double>(
      "--tolerance", [&request](double tolerance) { request.tolerance = tolerance; },
      "How far from the ray an edge may lie (0.1)")
    ->check(NumberFromZero())
    ->option_text("LENGTH");
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunPick(*options, session); };
}

} // namespace Orvex::Cli
