// orvex replay: what can be told about rebuilding a STEP model, and scripts that do it.
#include "commands/Commands.h"

#include "frame/OutputDescriptor.h"
#include "frame/PendingFile.h"
#include "frame/StallLimit.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "info/InputCheck.h"
#include "replay/ReplayExport.h"
#include "replay/ReplayRun.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace Orvex::Cli {

namespace {

namespace fs = std::filesystem;

struct FormRow
{
  const char* option;
  ReplayForm form;
  const char* help;
  bool ofModel, ofEntity;
};

constexpr FormRow kForms[] = {
  {"--manifest", ReplayForm::Manifest, "Counts, ids, features by kind (the default)", true, false},
  {"--summary", ReplayForm::Summary, "Every entity with its ids and counts", true, false},
  {"--features", ReplayForm::Features, "All feature candidates", true, false},
  {"--bundle", ReplayForm::Bundle, "All of it together", true, true},
  {"--plan", ReplayForm::Plan, "The steps of a rebuild", false, true},
  {"--contract", ReplayForm::Contract, "Its commands", false, true},
  {"--requests", ReplayForm::Requests, "Its commands with their inputs", false, true},
  {"--payload", ReplayForm::Payload, "The exact geometry", false, true},
  {"--script", ReplayForm::Script, "A Python script", true, true},
};

struct ReplayOptions
{
  std::string path;
  std::map<ReplayForm, bool> forms;
  std::uint64_t face = 0, shell = 0, solid = 0;
  ReplayScopeWord scope = ReplayScopeWord::Model;
  bool all = false;
  bool run = false, strategy = false;
  std::string report;
  double stallLimitSeconds = kStallLimitSeconds;
  std::string output;
};

Failure Wrong(const QString& reason, const QString& advice = {})
{
  return {ExitCode::Usage, {}, {}, reason, advice};
}

ReplayWish WishOf(const ReplayOptions& options)
{
  const bool isModel = options.scope == ReplayScopeWord::Model;
  ReplayWish wish{options.scope, std::max({options.face, options.shell, options.solid}),
                  isModel ? ReplayForm::Manifest : ReplayForm::Bundle};
  bool chosen = false;
  for (const FormRow& row : kForms) {
    const auto found = options.forms.find(row.form);
    if (found == options.forms.end() || !found->second)
      continue;
    if (chosen)
      throw Wrong(QStringLiteral("one document at a time"));
    if (!(isModel ? row.ofModel : row.ofEntity))
      throw Wrong(QStringLiteral("%1 is no document of %2")
                    .arg(row.option, isModel ? "the whole model" : "an entity"),
                  isModel ? QStringLiteral("name one with --face, --shell or --solid") : QString());
    wish.form = row.form;
    chosen = true;
  }
  return wish;
}

QJsonObject InWorker(const ReplayOptions& options, Session& session, const WorkerJob& job)
{
  const QString subject = TextFromBytes(options.path);
  ProgressDisplay progress(session.Streams(), session.Options(), subject);
  const WorkerOptions limits{session.Options().timeLimitSeconds, options.stallLimitSeconds,
                             session.Options().verbose};
  return ResultOfWorker(job, limits, progress,
                        {ExitCode::Unreadable, subject, "read", "reading", {}, {}});
}

// A file without a name, which the worker fills and this process reads.
class Scratch
{
public:
  Scratch() : file(std::tmpfile())
  {
    if (file == nullptr)
      throw Failure{ExitCode::Partial,
                    {},
                    {},
                    QStringLiteral("there can be no temporary file: %1").arg(std::strerror(errno)),
                    QStringLiteral("-o writes to a file of its own")};
  }
  ~Scratch()
  {
    std::fclose(file);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  int Descriptor() const
  {
    return ::fileno(file);
  }

  void CopyTo(Console& console) const
  {
    constexpr std::size_t kPiece = 1 << 20;
    std::rewind(file);
    QByteArray piece(kPiece, '\0');
    while (const std::size_t count = std::fread(piece.data(), 1, kPiece, file))
      console.WriteResult(QByteArray::fromRawData(piece.constData(), qsizetype(count)));
  }

private:
  std::FILE* file;
};

ExitCode ExportOne(const ReplayOptions& options, Session& session)
{
  const ReplayWish wish = WishOf(options);
  const auto exportTo = [&](int descriptor, const std::string& output) {
    InWorker(options, session, [&](const ProgressSink& sink) {
      return ExportReplay(options.path, wish, descriptor, output, sink);
    });
  };
  if (options.output.empty()) {
    const Scratch scratch;
    exportTo(scratch.Descriptor(), "a temporary file");
    scratch.CopyTo(session.Streams());
    return ExitCode::Done;
  }
  PendingFile file(options.output);
  OutputDescriptor output(file.Path(), OutputDescriptor::Place::Existing);
  exportTo(output.Get(), options.output);
  output.Finish();
  file.Commit();
  return ExitCode::Done;
}

// A folder that becomes part of another one file by file, once all files are there.
class PendingFolder
{
public:
  explicit PendingFolder(const std::string& target_) : target(target_)
  {
    std::error_code error;
    fs::create_directories(target, error);
    path = (fs::path(target) / ".replay.XXXXXX").string();
    if (!error && ::mkdtemp(path.data()) == nullptr)
      error = std::error_code(errno, std::generic_category());
    if (error)
      throw CannotWrite(target, error);
  }
  ~PendingFolder()
  {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  PendingFolder(const PendingFolder&) = delete;
  PendingFolder& operator=(const PendingFolder&) = delete;

  const std::string& Path() const
  {
    return path;
  }

  // Takes the place of files with the same names, of nothing else.
  void Commit() const
  {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(path))
      if (const fs::path place = PlaceOf(entry); fs::is_directory(place, error))
        throw CannotWrite(place.string(), std::make_error_code(std::errc::is_a_directory));
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
      fs::rename(entry.path(), PlaceOf(entry), error);
      if (error)
        throw CannotWrite(PlaceOf(entry).string(), error);
    }
  }

private:
  static Failure CannotWrite(const std::string& file, const std::error_code& error)
  {
    return {ExitCode::Partial,
            TextFromBytes(file),
            {},
            QStringLiteral("cannot be written: %1").arg(TextFromBytes(error.message())),
            {}};
  }

  fs::path PlaceOf(const fs::directory_entry& entry) const
  {
    return fs::path(target) / entry.path().filename();
  }

  const std::string target;
  std::string path;
};

ExitCode ExportAll(const ReplayOptions& options, Session& session)
{
  if (options.output.empty())
    throw Wrong(QStringLiteral("--all needs a folder"), QStringLiteral("-o DIR"));
  const PendingFolder folder(options.output);
  QJsonObject exported = InWorker(options, session, [&](const ProgressSink& sink) {
    return ExportAllScripts(options.path, folder.Path(), sink);
  });
  folder.Commit();
  exported.insert("schema", "orvex.replay");
  exported.insert("version", 1);
  exported.insert("file", TextFromBytes(options.path));
  exported.insert("folder", TextFromBytes(options.output));
  session.Options().json ? session.Result(exported) : session.Result(ScriptsText(exported));
  return ExitCode::Done;
}

// A sign or too many digits would be read as the largest number.
std::string IsCount(const std::string& text)
{
  constexpr std::size_t kDigits = 19;
  const bool isCount = !text.empty() && text.size() <= kDigits &&
                       text.find_first_not_of("0123456789") == std::string::npos;
  return isCount ? std::string() : std::string(text).append(" is no number of an entity");
}

// What runs of scripts understand of the command's options.
std::vector<std::string> RunArguments(const ReplayOptions& options, const CommonOptions& common)
{
  std::vector<std::string> arguments;
  const auto add = [&](const char* name, const std::string& value) {
    if (!value.empty())
      arguments.insert(arguments.end(), {name, value});
  };
  add("--solid", options.scope == ReplayScopeWord::Solid ? std::to_string(options.solid) : "");
  add("--output", options.output);
  add("--report", options.report);
  const std::pair<const char*, bool> flags[] = {{"--strategy", options.strategy},
                                                {"--all", options.all},
                                                {"--json", common.json},
                                                {"--quiet", common.quiet}};
  for (const auto& [name, isSet] : flags)
    if (isSet)
      arguments.push_back(name);
  return arguments;
}

[[noreturn]] void RunScripts(const ReplayOptions& options, Session& session)
{
  const CommonOptions& common = session.Options();
  if (options.scope == ReplayScopeWord::Face || options.scope == ReplayScopeWord::Shell)
    throw Wrong(QStringLiteral("--run rebuilds solids"), QStringLiteral("name one with --solid"));
  if (common.timeLimitSeconds > 0)
    throw Wrong(QStringLiteral("--run has no time limit"), QStringLiteral("timeout(1) sets one"));
  session.Streams().GiveBack();
  RunReplayInPython(options.path, RunArguments(options, common));
}

ExitCode RunReplay(const ReplayOptions& options, Session& session)
{
  if (const auto problem = CheckInput(options.path, FileFormat::Step))
    throw *problem;
  if (options.run)
    RunScripts(options, session);
  return options.all ? ExportAll(options, session) : ExportOne(options, session);
}

} // namespace

Action DeclareReplay(CLI::App& app)
{
  const auto options = std::make_shared<ReplayOptions>();
  app.add_option("FILE", options->path, "A STEP file")->required();
  for (const FormRow& row : kForms)
    app.add_flag(row.option, options->forms[row.form], row.help);
  CLI::Option* all =
    app.add_flag("--all", options->all, "A script for each solid, in the folder of -o");
  for (const FormRow& row : kForms)
    all->excludes(row.option);
  CLI::Option_group* entity = app.add_option_group("entity");
  entity->require_option(0, 1);
  const auto addEntity = [&](const char* name, std::uint64_t& id, ReplayScopeWord scope) {
    entity->add_option(name, id, "Of this one instead of the whole model")
      ->option_text("N")
      ->check(IsCount, "")
      ->excludes(all)
      ->each([options, scope](const std::string&) { options->scope = scope; });
  };
  addEntity("--face", options->face, ReplayScopeWord::Face);
  addEntity("--shell", options->shell, ReplayScopeWord::Shell);
  addEntity("--solid", options->solid, ReplayScopeWord::Solid);
  app.add_option("-o,--output", options->output, "Write there instead of to standard output")
    ->option_text("FILE|DIR");
  CLI::Option* run =
    app.add_flag("--run", options->run, "Run the scripts, and tell what they rebuild");
  for (const FormRow& row : kForms)
    run->excludes(row.option);
  app.add_flag("--strategy", options->strategy, "Rebuild by strategy, not from the exact text")
    ->needs(run);
  app.add_option("--report", options->report, "Write what became of each solid, as JSON")
    ->option_text("FILE")
    ->needs(run);
  AddStallLimit(app, options->stallLimitSeconds);
  return [options](Session& session) { return RunReplay(*options, session); };
}

} // namespace Orvex::Cli
