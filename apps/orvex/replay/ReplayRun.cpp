#include "replay/ReplayRun.h"

#include "frame/Failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

namespace fs = std::filesystem;

const char* Interpreter()
{
  const char* named = std::getenv("ORVEX_PYTHON");
  return named != nullptr && *named != '\0' ? named : "/usr/bin/python3";
}

// The build tree has it beside the folder of the program, an installation below its library folder.
fs::path PackageFolder()
{
  std::error_code error;
  const fs::path prefix = fs::read_symlink("/proc/self/exe", error).parent_path().parent_path();
  for (const char* place : {"python", ORVEX_PYTHON_FOLDER})
    if (fs::is_directory(prefix / place / "orvex", error))
      return prefix / place;
  return {};
}

void AddToPythonPath(const fs::path& folder)
{
  const char* known = std::getenv("PYTHONPATH");
  std::string path = folder.string();
  if (known != nullptr && *known != '\0')
    path.append(":").append(known);
  ::setenv("PYTHONPATH", path.c_str(), 1);
}

} // namespace

void RunReplayInPython(const std::string& path, const std::vector<std::string>& arguments)
{
  if (const fs::path folder = PackageFolder(); !folder.empty())
    AddToPythonPath(folder);
  std::vector<std::string> words{Interpreter(), "-m", "orvex.replay", path};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execvp(pointers.front(), pointers.data());
  throw Failure{ExitCode::KernelFailure,
                {},
                {},
                QStringLiteral("the interpreter %1 cannot be started: %2")
                  .arg(Interpreter(), std::strerror(errno)),
                QStringLiteral("ORVEX_PYTHON names another one")};
}

} // namespace Orvex::Cli
