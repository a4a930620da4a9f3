// The full read of a STEP file, for subcommands.
#pragma once

#include "frame/Progress.h"
#include "step/CStepFileReader.h"

#include <string>

namespace Orvex::Cli {

// Reads the file, or if the kernel cannot make a document of it, its shapes and names alone.
// Errors: a Failure (ExitCode::Unreadable).
void ReadStep(CStepFileReader& reader, const std::string& path, const ProgressSink& progress);

} // namespace Orvex::Cli
