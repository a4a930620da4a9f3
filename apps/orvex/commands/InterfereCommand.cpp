// orvex interfere: pairs of parts whose common is not empty, by booleans alone.
#include "commands/Commands.h"

#include "collide/CollisionReport.h"
#include "frame/NumberCheck.h"
#include "frame/Text.h"
#include "frame/Worker.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Orvex::Cli {

namespace {

ExitCode RunInterfere(const InterferenceRequest& request, Session& session)
{
  const QString subject = TextFromBytes(request.files.front());
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const WorkerOptions limits{session.Options().timeLimitSeconds, 0.0, session.Options().verbose};
  QJsonObject report =
    ResultOfWorker([&](const ProgressSink& sink) { return Interfere(request, sink); }, limits,
                   progress, {ExitCode::KernelFailure, subject, "checked", "checking", {}, {}});
  report.insert("schema", "orvex.interfere");
  report.insert("version", 1);
  session.Options().json ? session.Result(report) : session.Result(InterferenceText(report));
  return report.value("pairs").toArray().isEmpty() ? ExitCode::Done : ExitCode::Found;
}

} // namespace

Action DeclareInterfere(CLI::App& app)
{
  const auto request = std::make_shared<InterferenceRequest>();
  app.add_option("FILE", request->files, "STEP, IGES and BRep files, binary documents")->required();
  app.add_option("--tolerance", request->tolerance, "Added around the boxes of parts (0)")
    ->check(NumberFromZero())
    ->option_text("LENGTH");
  app
    .add_option_function<double>(
      "--filter", [request](double linear) { request->linear = linear; },
      "Pass over pairs farther apart than twice this deflection")
    ->check(NumberAboveZero())
    ->option_text("LENGTH");
  app.add_option("--angle", request->angular, "Angle of the filter's meshes (0.5)")
    ->check(NumberAboveZero())
    ->option_text("RADIANS");
  return [request](Session& session) { return RunInterfere(*request, session); };
}

} // namespace Orvex::Cli
