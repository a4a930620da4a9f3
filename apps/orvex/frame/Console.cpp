#include "frame/Console.h"

#include "frame/Failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

// Returns 0, or the errno of the write that failed.
int WriteWhole(int descriptor, const QByteArray& bytes)
{
  const char* at = bytes.constData();
  auto left = static_cast<std::size_t>(bytes.size());
  while (left > 0) {
    const ssize_t written = ::write(descriptor, at, left);
    if (written < 0 && errno == EINTR)
      continue;
    if (written < 0)
      return errno;
    at += written;
    left -= static_cast<std::size_t>(written);
  }
  return 0;
}

bool TerminalWantsColour()
{
  const char* refused = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return (refused == nullptr || *refused == '\0') && terminal != nullptr &&
         std::strcmp(terminal, "dumb") != 0;
}

} // namespace

Console::Console() : resultDescriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3))
{
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDOUT_FILENO);
  ::close(nowhere);
}

Console::~Console()
{
  GiveBack();
  ::close(resultDescriptor);
}

void Console::GiveBack() const
{
  ::dup2(resultDescriptor, STDOUT_FILENO);
}

void Console::ShowKernelChatter()
{
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

void Console::WriteResult(const QByteArray& bytes)
{
  if (const int error = WriteWhole(resultDescriptor, bytes))
    throw Failure{ExitCode::Partial,
                  QStringLiteral("standard output"),
                  {},
                  QStringLiteral("the result could not be written: %1").arg(std::strerror(error)),
                  {}};
}

void Console::WriteMessage(const QByteArray& bytes)
{
  WriteWhole(STDERR_FILENO, bytes);
}

bool Console::ResultIsTerminal() const
{
  return ::isatty(resultDescriptor) != 0;
}

bool Console::MessagesAreTerminal() const
{
  return ::isatty(STDERR_FILENO) != 0;
}

bool Console::ColouredResult() const
{
  return ResultIsTerminal() && TerminalWantsColour();
}

bool Console::ColouredMessages() const
{
  return MessagesAreTerminal() && TerminalWantsColour();
}

} // namespace Orvex::Cli
