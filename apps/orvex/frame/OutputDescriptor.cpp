#include "frame/OutputDescriptor.h"

#include "frame/Failure.h"
#include "frame/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

Failure CannotWrite(const std::string& file)
{
  return {ExitCode::Partial,
          TextFromBytes(file),
          {},
          QStringLiteral("cannot be written: %1").arg(std::strerror(errno)),
          {}};
}

} // namespace

OutputDescriptor::OutputDescriptor(const std::string& file, Place place) : name(file)
{
  const int creation = place == Place::New ? O_CREAT | O_EXCL : 0;
  descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC | creation, 0666);
  if (descriptor < 0)
    throw CannotWrite(name);
}

OutputDescriptor::~OutputDescriptor()
{
  if (descriptor >= 0)
    ::close(descriptor);
}

int OutputDescriptor::Get() const
{
  return descriptor;
}

void OutputDescriptor::Finish()
{
  if (::fsync(descriptor) != 0)
    throw CannotWrite(name);
  const int closed = ::close(descriptor);
  descriptor = -1;
  if (closed != 0)
    throw CannotWrite(name);
}

void WriteWhole(int descriptor, const std::string& text, const std::string& file)
{
  for (std::size_t written = 0; written < text.size();) {
    const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
    if (count < 0 && errno != EINTR)
      throw CannotWrite(file);
    written += static_cast<std::size_t>(std::max<ssize_t>(0, count));
  }
}

} // namespace Orvex::Cli
