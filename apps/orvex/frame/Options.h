// The options that every subcommand has.
#pragma once

namespace Orvex::Cli {

enum class ProgressMode { Automatic, Bar, Json, None };

struct CommonOptions
{
  ProgressMode progress = ProgressMode::Automatic;
  bool json = false;
  bool quiet = false;
  bool verbose = false;
  double timeLimitSeconds = 0.0; // for each input; 0: none
};

} // namespace Orvex::Cli
