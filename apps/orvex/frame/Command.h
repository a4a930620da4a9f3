// What a subcommand is. To add one: a file in commands/ that defines a function like the ones
// declared in commands/Commands.h, and a row there in Commands.cpp.
#pragma once

#include "frame/ExitCode.h"
#include "frame/Session.h"

#include <functional>
#include <span>

namespace CLI {
class App;
}

namespace Orvex::Cli {

// Does the subcommand's work once the command line has been read. May throw: what leaves it is
// reported as a failure of the kernel, or as the Failure that it is.
using Action = std::function<ExitCode(Session&)>;

struct Command
{
  const char* name;
  const char* summary;

  // Adds the subcommand's own options; the common ones are there already.
  Action (*declare)(CLI::App& options);
};

// Reads the command line, runs the subcommand that it names, and returns the exit code.
int RunCommandLine(int argc, const char* const* argv, std::span<const Command> commands);

} // namespace Orvex::Cli
