// What can be told about an input file before the kernel is let near it.
#pragma once

#include "frame/Failure.h"
#include "model/FileFormat.h"

#include <QString>

#include <optional>

namespace Orvex::Cli {

// Looks whether a path names a file of a format that can be opened: it is there, an ordinary file,
// readable, not empty, and its first bytes are those of the format and not of something else.
//
// Returns: what is wrong, as a Failure with ExitCode::Unreadable; nothing for a file worth reading.
std::optional<Failure> CheckInput(const std::string& path, FileFormat format);

} // namespace Orvex::Cli
