// orvex collide: which parts of models touch or overlap.
#include "commands/Commands.h"

#include "collide/CollisionReport.h"
#include "frame/NumberCheck.h"
#include "frame/PendingFile.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "model/FileFormat.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

namespace Orvex::Cli {

namespace {

struct CollideOptions
{
  CollisionRequest request;
  double tolerance = -1.0;
  std::string overlap;
  bool region = false;
  bool csv = false;
};

Failure Wrong(const QString& reason, const QString& advice)
{
  return {ExitCode::Usage, {}, {}, reason, advice};
}

void RequireSense(const CollideOptions& options, const Session& session)
{
  if (options.region && options.request.files.size() != 2)
    throw Wrong(QStringLiteral("--roi takes two files, not %1").arg(options.request.files.size()),
                QStringLiteral("orvex collide --roi A B"));
  if (options.csv && (options.region || session.Options().json))
    throw Wrong(QStringLiteral("--csv goes with neither --json nor --roi"),
                QStringLiteral("choose one form of the result"));
  if (!options.overlap.empty() && !FormatOfName(options.overlap))
    throw Wrong(QStringLiteral("the ending of %1 tells no format to write")
                  .arg(TextFromBytes(options.overlap)),
                QStringLiteral("one of %1").arg(QLatin1String(kEndings)));
  if (!options.overlap.empty() && !options.region &&
      options.request.preset == CollisionPreset::Fast)
    throw Wrong(QStringLiteral("the fast preset makes no overlap to write"),
                QStringLiteral("take --preset balanced, or leave out --overlap"));
}

QJsonObject InWorker(const CollideOptions& options, Session& session, const WorkerJob& job)
{
  const QString subject = TextFromBytes(options.request.files.front());
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  // The engine keeps the limit itself, so that what it found is told. One pair that takes for ever
  // is ended from here.
  const double limit = session.Options().timeLimitSeconds;
  const WorkerOptions limits{limit > 0 ? 2 * limit + 30 : 0.0, 0.0, session.Options().verbose};
  return ResultOfWorker(job, limits, progress,
                        {ExitCode::KernelFailure, subject, "checked", "checking", {}, {}});
}

ExitCode CodeOf(const QJsonObject& report)
{
  if (report.value("timedOut").toBool())
    return ExitCode::TimeLimit;
  if (!report.value("pairs").toArray().isEmpty() || report.value("overlap").toBool() ||
      !report.value("missed").toArray().isEmpty())
    return ExitCode::Found;
  return report.value("failedPairs").toInt() > 0 ? ExitCode::Partial : ExitCode::Done;
}

void Show(QJsonObject& report, const CollideOptions& options, Session& session)
{
  report.insert("schema", options.region ? "orvex.region" : "orvex.collide");
  report.insert("version", 1);
  if (session.Options().json)
    session.Result(report);
  else if (options.region)
    session.Result(RegionText(report));
  else
    session.Result(options.csv ? CollisionCsv(report) : CollisionText(report));
  if (const int failed = report.value("failedPairs").toInt(); failed > 0)
    session.Warn(
      QStringLiteral("the kernel failed on %1 of the pairs; they count as clear").arg(failed));
  if (const qsizetype missed = report.value("missed").toArray().size(); missed > 0)
    session.Warn(QStringLiteral("%1 of the cleared pairs overlap all the same").arg(missed));
}

ExitCode RunCollide(CollideOptions options, Session& session)
{
  RequireSense(options, session);
  if (options.tolerance >= 0)
    options.request.tolerance = options.tolerance;
  options.request.timeLimitSeconds = session.Options().timeLimitSeconds;
  std::optional<PendingFile> overlap;
  if (!options.overlap.empty())
    overlap.emplace(options.overlap);
  const std::string target = overlap ? overlap->Path() : std::string();
  QJsonObject report = InWorker(options, session, [&](const ProgressSink& sink) {
    if (!options.region)
      return Collide(options.request, target, options.overlap, sink);
    return CommonInRegion(
      {options.request.files[0], options.request.files[1], options.request.tolerance}, target,
      options.overlap, sink);
  });
  if (overlap)
    overlap->Commit();
  Show(report, options, session);
  return CodeOf(report);
}

template <typename Value>
void AddChoice(CLI::App& app, const char* name, Value& value, const char* help,
               const std::map<std::string, Value>& words, const char* text)
{
  app.add_option(name, value, help)
    ->transform(CLI::CheckedTransformer(words).description(""))
    ->option_text(text);
}

void AddPresetAndIndex(CLI::App& app, CollideOptions& options)
{
  AddChoice(app, "--preset", options.request.preset, "How thoroughly to look (balanced)",
            {{"fast", CollisionPreset::Fast},
             {"balanced", CollisionPreset::Balanced},
             {"strict", CollisionPreset::Strict},
             {"accurate", CollisionPreset::Accurate},
             {"visualization", CollisionPreset::Visualization}},
            "fast|balanced|strict|accurate|visualization");
  const std::map<std::string, CollisionIndex> indexes{{"none", CollisionIndex::None},
                                                      {"grid", CollisionIndex::Grid},
                                                      {"octree", CollisionIndex::Octree},
                                                      {"rtree", CollisionIndex::RTree},
                                                      {"morton", CollisionIndex::Morton}};
  app
    .add_option_function<std::string>(
      "--index",
      [&options, indexes](const std::string& word) { options.request.index = indexes.at(word); },
      "What proposes the pairs (the preset's)")
    ->check(CLI::IsMember(indexes).description(""))
    ->option_text("none|grid|octree|rtree|morton");
}

} // namespace

Action DeclareCollide(CLI::App& app)
{
  const auto options = std::make_shared<CollideOptions>();
  CollisionRequest& request = options->request;
  app.add_option("FILE", request.files, "STEP, IGES and BRep files, binary documents")->required();
  AddPresetAndIndex(app, *options);
  app.add_option("--tolerance", options->tolerance, "What counts as contact, in model units")
    ->check(NumberFromZero())
    ->option_text("LENGTH");
  app
    .add_option("--min-volume", request.minVolume,
                "Leave out touching parts and overlaps below this volume")
    ->check(NumberFromZero())
    ->each([&request](const std::string&) { request.minVolumeGiven = true; })
    ->option_text("VOLUME");
  app
    .add_option("--ignore", request.ignored,
                "Leave out parts by name or path; * and ? stand for any")
    ->option_text("PATTERN")
    ->take_all()
    ->expected(1);
  app.add_option("--overlap", options->overlap, "Write what the parts have in common")
    ->option_text("OUT");
  app.add_flag("--check", request.check, "Look at cleared pairs again, for overlaps overlooked");
  app.add_flag("--explain", request.explain, "Tell how many pairs each stage cleared");
  app.add_flag("--csv", options->csv, "Print the pairs as a table");
  app.add_flag("--roi", options->region,
               "The common solid of two files, through the region in which they meet");
  return [options](Session& session) { return RunCollide(*options, session); };
}

} // namespace Orvex::Cli
