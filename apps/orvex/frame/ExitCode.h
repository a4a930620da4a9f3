// How every subcommand ends, told to the shell.
#pragma once

namespace Orvex::Cli {

enum class ExitCode {
  Done = 0,
  Found = 1,         // a check was asked for and found something
  Usage = 2,         // the command line itself is wrong
  Unreadable = 3,    // an input cannot be read
  KernelFailure = 4, // the geometry kernel gave up on what was asked
  Partial = 5,       // there is a result, and something is missing from it
  TimeLimit = 124,   // as timeout(1)
  Interrupted = 130  // as a shell reports SIGINT
};

} // namespace Orvex::Cli
