#include "frame/Command.h"

#include "foundation/LibraryVersion.h"
#include "frame/Interrupt.h"
#include "frame/NumberCheck.h"
#include "frame/Text.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>

namespace Orvex::Cli {

namespace {

constexpr const char* kExitCodes =
  "Exit codes: 0 done, 1 the check found something, 2 usage, 3 input unreadable,\n"
  "4 kernel failure, 5 partial result, 124 time limit, 130 interrupted.\n";

void AddCommonOptions(CLI::App& app, CommonOptions& options)
{
  static const std::map<std::string, ProgressMode> modes{{"auto", ProgressMode::Automatic},
                                                         {"bar", ProgressMode::Bar},
                                                         {"json", ProgressMode::Json},
                                                         {"none", ProgressMode::None}};
  app.add_flag("--json", options.json, "Print the result as one JSON object");
  app.add_option("--progress", options.progress, "Progress on standard error")
    ->transform(CLI::CheckedTransformer(modes).description(""))
    ->option_text("auto|bar|json|none");
  app
    .add_option("--time-limit", options.timeLimitSeconds,
                "Give up on an input after so long (0, the default: never)")
    ->check(NumberFromZero())
    ->option_text("SECONDS");
  auto* quiet = app.add_flag("-q,--quiet", options.quiet, "No progress, no warnings");
  app.add_flag("-v,--verbose", options.verbose, "Say more, and let the kernel speak")
    ->excludes(quiet);
}

// Help was asked for: that is a result. Everything else is a command line that is wrong.
ExitCode AnswerParseError(const CLI::App& app, const CLI::ParseError& error, Session& session)
{
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    session.Result(TextFromBytes(app.help("", error.get_name() == "CallForAllHelp"
                                                ? CLI::AppFormatMode::All
                                                : CLI::AppFormatMode::Normal)));
    return ExitCode::Done;
  }
  session.Report(
    {ExitCode::Usage, {}, {}, TextFromBytes(error.what()), QStringLiteral("see orvex --help")});
  return ExitCode::Usage;
}

ExitCode RunAction(const Action& action, Session& session, Console& console)
{
  if (session.Options().verbose)
    console.ShowKernelChatter();
  NoteInterrupts();
  try {
    return action(session);
  } catch (...) {
    const Failure failure = FailureOfCurrentException(ExitCode::KernelFailure);
    session.Report(failure);
    return failure.code;
  }
}

} // namespace

int RunCommandLine(int argc, const char* const* argv, std::span<const Command> commands)
{
  Console console;
  CommonOptions options;
  Session session(console, options);
  CLI::App app{"OrvexCoreGeometry on the command line", "orvex"};
  app.require_subcommand(1);
  app.footer(kExitCodes);
  std::map<const CLI::App*, Action> actions;
  for (const Command& command : commands) {
    CLI::App* own = app.add_subcommand(command.name, command.summary);
    own->footer(kExitCodes);
    AddCommonOptions(*own, options);
    actions.emplace(own, command.declare(*own));
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return static_cast<int>(AnswerParseError(app, error, session));
  }
  return static_cast<int>(RunAction(actions.at(app.get_subcommands().front()), session, console));
}

} // namespace Orvex::Cli
