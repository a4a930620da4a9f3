// The subcommands, each in a file of its own beside this one.
#pragma once

#include "frame/Command.h"

namespace Orvex::Cli {

std::span<const Command> AllCommands();

Action DeclareCheck(CLI::App& options);
Action DeclareCollide(CLI::App& options);
Action DeclareCompare(CLI::App& options);
Action DeclareHistory(CLI::App& options);
Action DeclareInfo(CLI::App& options);
Action DeclareInterfere(CLI::App& options);
Action DeclareNew(CLI::App& options);
Action DeclareOp(CLI::App& options);
Action DeclarePick(CLI::App& options);
Action DeclareQuality(CLI::App& options);
Action DeclareRebuild(CLI::App& options);
Action DeclareReplay(CLI::App& options);
Action DeclareVersion(CLI::App& options);

} // namespace Orvex::Cli
