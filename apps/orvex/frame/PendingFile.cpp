#include "frame/PendingFile.h"

#include "frame/Failure.h"
#include "frame/Text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

namespace fs = std::filesystem;

Failure CannotWrite(const std::string& target, const char* reason)
{
  return {ExitCode::Partial,
          TextFromBytes(target),
          {},
          QStringLiteral("cannot be written: %1").arg(reason),
          {}};
}

Failure CannotWrite(const std::string& target, int error)
{
  return CannotWrite(target, std::strerror(error));
}

// What a new file would get; mkstemp is stricter than the user asked for.
mode_t UsualMode()
{
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

mode_t ModeFor(const std::string& target)
{
  struct stat status
  {};
  return ::stat(target.c_str(), &status) == 0 ? status.st_mode & 0777 : UsualMode();
}

} // namespace

PendingFile::PendingFile(const std::string& target_) : shown(target_)
{
  std::error_code error;
  const fs::path place = fs::weakly_canonical(fs::absolute(target_), error);
  if (error)
    throw CannotWrite(shown, error.value());
  if (fs::exists(place, error) && !fs::is_regular_file(place, error))
    throw CannotWrite(shown, "it is there already and is no ordinary file");
  target = place.string();
  const std::string ending = place.extension().string();
  std::string name =
    (place.parent_path() / ("." + place.stem().string() + ".XXXXXX" + ending)).string();
  const int descriptor = ::mkostemps(name.data(), static_cast<int>(ending.size()), O_CLOEXEC);
  if (descriptor < 0)
    throw CannotWrite(shown, errno);
  path = name;
  ::fchmod(descriptor, ModeFor(target));
  ::close(descriptor);
}

PendingFile::~PendingFile()
{
  if (!path.empty())
    ::unlink(path.c_str());
}

const std::string& PendingFile::Path() const
{
  return path;
}

void PendingFile::Commit()
{
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool synced = descriptor >= 0 && ::fsync(descriptor) == 0;
  const int error = errno;
  if (descriptor >= 0)
    ::close(descriptor);
  if (!synced)
    throw CannotWrite(shown, error);
  if (std::rename(path.c_str(), target.c_str()) != 0)
    throw CannotWrite(shown, errno);
  path.clear();
}

} // namespace Orvex::Cli
