// The option of subcommands that leave work to the kernel in a worker.
#pragma once

#include "frame/NumberCheck.h"
#include <CLI/CLI.hpp>
#include <QString>

namespace Orvex::Cli {

// Far longer than the kernel ever takes between two signs of life over a file that it gets
// through; but it can loop for ever over a broken one.
constexpr double kStallLimitSeconds = 120.0;

// `seconds` holds the default.
inline void AddStallLimit(CLI::App& app, double& seconds)
{
  app
    .add_option("--stall-limit", seconds,
                QStringLiteral("Give up after so long without progress (%1; 0: never)")
                  .arg(seconds)
                  .toStdString())
    ->check(NumberFromZero())
    ->option_text("SECONDS");
}

} // namespace Orvex::Cli
