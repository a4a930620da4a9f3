// The kinds of files that hold models.
#pragma once

#include <optional>
#include <string>

namespace Orvex::Cli {

enum class FileFormat { Step, Brep, Iges, Document };

// By the ending of a name, in any case; nothing for an ending that none of them has.
std::optional<FileFormat> FormatOfName(const std::string& path);

// "step", "brep", "iges", "xbf": in JSON.
const char* FormatWord(FileFormat format);

// "STEP file", "document": in sentences.
const char* FormatName(FileFormat format);

// All endings, for messages and help.
inline constexpr const char* kEndings = ".brep, .step, .stp, .igs, .iges or .xbf";

} // namespace Orvex::Cli
