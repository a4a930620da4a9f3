// The options that every subcommand has.
#pragma once

#include <optional>

namespace Orvex::Cli {

enum class ProgressMode { Automatic, Bar, Json, None };

struct CommonOptions
{
  ProgressMode progress = ProgressMode::Automatic;
  bool json = false;
  bool quiet = false;
  bool verbose = false;
  std::optional<double>
    timeLimitSeconds; // for each input; 0: none; not given: as the subcommand says
};

} // namespace Orvex::Cli
