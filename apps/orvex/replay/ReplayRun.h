// Hands a model to the Python package, which runs its replay scripts.
#pragma once

#include <string>
#include <vector>

namespace Orvex::Cli {

// The arguments of the package's own program after the name of the file.
//
// Does not come back: the process becomes the Python program, whose exit codes are those of orvex.
// The interpreter is the one that the environment variable ORVEX_PYTHON names, else Debian's
// python3; the package is looked for beside this program, then where Python looks.
// Errors: a Failure if there is no interpreter.
[[noreturn]] void RunReplayInPython(const std::string& path,
                                    const std::vector<std::string>& arguments);

} // namespace Orvex::Cli
