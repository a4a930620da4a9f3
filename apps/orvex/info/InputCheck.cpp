#include "info/InputCheck.h"

#include "frame/Text.h"

#include <QByteArray>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

// A STEP file may begin with blank lines and comments; none seen has this much of them.
constexpr std::size_t kBytesLookedAt = 16384;

struct Signature
{
  qsizetype offset;
  const char* bytes;
  const char* meaning;
};

constexpr Signature kOtherFormats[] = {
  {0, "\x89PNG", "a PNG image"},
  {0, "\xff\xd8\xff", "a JPEG image"},
  {0, "GIF8", "a GIF image"},
  {0, "%PDF", "a PDF document"},
  {0, "PK\x03\x04", "a ZIP archive (unpack it first)"},
  {0, "\x1f\x8b", "gzip-compressed (unpack it first)"},
  {0, "BZh", "bzip2-compressed (unpack it first)"},
  {0,
   "\xfd"
   "7zXZ",
   "xz-compressed (unpack it first)"},
  {0,
   "\x7f"
   "ELF",
   "a program"},
  {0, "\xff\xfe", "UTF-16 text (save it as UTF-8)"},
  {0, "\xfe\xff", "UTF-16 text (save it as UTF-8)"},
  {0, "<?xml", "an XML file"},
  {0, "<!DOCTYPE", "a web page"},
  {0, "<html", "a web page"},
  {0, "solid ", "an STL mesh"},
  {0, "DBRep_DrawableShape", "a BRep file of the kernel"},
  {0, "version https://git-lfs", "a Git LFS pointer (fetch the file itself)"},
  {0, "BINFILE", "a binary document of the kernel"},
  {72, "S      1", "an IGES file"},
  {72, "S0000001", "an IGES file"},
};

Failure Unreadable(const std::string& path, const QString& reason, const QString& advice = {})
{
  return {ExitCode::Unreadable, TextFromBytes(path), {}, reason, advice};
}

// A descriptor that closes itself.
class OpenFile
{
public:
  // Not blocking: opening a pipe that nobody writes to would wait for ever.
  explicit OpenFile(const std::string& path)
      : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
  {}
  ~OpenFile()
  {
    if (descriptor >= 0)
      ::close(descriptor);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  const int descriptor;
};

QString ReasonOfErrno(int error)
{
  switch (error) {
  case ENOENT:
    return QStringLiteral("there is no such file");
  case EACCES:
    return QStringLiteral("no permission to read it");
  default:
    return QStringLiteral("cannot be opened: %1").arg(std::strerror(error));
  }
}

bool LooksLike(FileFormat format, const QByteArray& head)
{
  switch (format) {
  case FileFormat::Brep:
    return head.contains("CASCADE Topology V");
  case FileFormat::Iges:
    return head.mid(72, 1) == "S";
  case FileFormat::Document:
    return head.startsWith("BINFILE");
  default:
    // The kernel also takes the bare word of drafts that came before the standard.
    return head.contains("ISO-10303-21") || head.contains("STEP;");
  }
}

QString WhatElseItIs(FileFormat format, const QByteArray& head)
{
  const QString negation = QStringLiteral("not a %1").arg(FormatName(format));
  for (const Signature& other : kOtherFormats)
    if (head.mid(other.offset, qsizetype(std::strlen(other.bytes))) == other.bytes)
      return negation + QStringLiteral(", but %1").arg(other.meaning);
  if (head.contains("ISO-10303-21"))
    return negation + QStringLiteral(", but a STEP file");
  return negation + (format == FileFormat::Step
                       ? QStringLiteral(": \"ISO-10303-21\" is missing at its start")
                       : QStringLiteral(": it does not begin like one"));
}

// The kernel loops for ever over a BRep file whose end is missing. The end is a line with the
// orientation and number of the last shape, and its location: "+1 0".
bool BrepEndIsMissing(int descriptor, off_t size)
{
  constexpr off_t kTailBytes = 256;
  QByteArray tail(kTailBytes, '\0');
  const ssize_t count =
    ::pread(descriptor, tail.data(), kTailBytes, std::max<off_t>(0, size - kTailBytes));
  tail.truncate(std::max<ssize_t>(0, count));
  static const QRegularExpression lastLine(QStringLiteral("\n[-+ie]\\d+ \\d+\\s*(\n|$)"));
  return !QString::fromLatin1(tail).contains(lastLine);
}

// A document that ends within the list of types at its start is read as one with nothing in it.
bool DocumentTypesAreMissing(const QByteArray& head)
{
  return !head.contains("END_TYPES");
}

std::optional<QString> ProblemWithKind(const struct stat& status)
{
  if (S_ISDIR(status.st_mode))
    return QStringLiteral("is a directory, not a file");
  if (!S_ISREG(status.st_mode))
    return QStringLiteral("is not an ordinary file");
  if (status.st_size == 0)
    return QStringLiteral("is empty");
  return std::nullopt;
}

} // namespace

std::optional<Failure> CheckInput(const std::string& path, FileFormat format)
{
  if (QString::fromStdString(path).toStdString() != path)
    return Unreadable(path, QStringLiteral("the name of the file is not UTF-8"),
                      QStringLiteral("rename it"));
  const OpenFile file(path);
  if (file.descriptor < 0)
    return Unreadable(path, ReasonOfErrno(errno));
  struct stat status
  {};
  if (::fstat(file.descriptor, &status) != 0)
    return Unreadable(path, ReasonOfErrno(errno));
  if (const auto problem = ProblemWithKind(status))
    return Unreadable(path, *problem);
  QByteArray head(kBytesLookedAt, '\0');
  const ssize_t count = ::read(file.descriptor, head.data(), kBytesLookedAt);
  if (count < 0)
    return Unreadable(path, QStringLiteral("cannot be read: %1").arg(std::strerror(errno)));
  head.truncate(count);
  if (!LooksLike(format, head))
    return Unreadable(path, WhatElseItIs(format, head));
  if ((format == FileFormat::Brep && BrepEndIsMissing(file.descriptor, status.st_size)) ||
      (format == FileFormat::Document && DocumentTypesAreMissing(head)))
    return Unreadable(path, QStringLiteral("its end is missing: it seems to be cut off"));
  return std::nullopt;
}

} // namespace Orvex::Cli
