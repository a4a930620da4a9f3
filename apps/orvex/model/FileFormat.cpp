#include "model/FileFormat.h"

#include <QFileInfo>

#include <array>

namespace Orvex::Cli {

namespace {

struct Row
{
  const char* word;
  const char* name;
};

// In the order of the enumeration.
constexpr std::array kRows = {Row{"step", "STEP file"}, Row{"brep", "BRep file"},
                              Row{"iges", "IGES file"}, Row{"xbf", "binary document"}};

struct Ending
{
  const char* text;
  FileFormat format;
};

constexpr std::array kKnownEndings = {
  Ending{"step", FileFormat::Step}, Ending{"stp", FileFormat::Step},
  Ending{"brep", FileFormat::Brep}, Ending{"igs", FileFormat::Iges},
  Ending{"iges", FileFormat::Iges}, Ending{"xbf", FileFormat::Document},
};

const Row& RowOf(FileFormat format)
{
  return kRows[static_cast<std::size_t>(format)];
}

} // namespace

std::optional<FileFormat> FormatOfName(const std::string& path)
{
  const QString ending = QFileInfo(QString::fromStdString(path)).suffix().toLower();
  for (const Ending& known : kKnownEndings)
    if (ending == QLatin1String(known.text))
      return known.format;
  return std::nullopt;
}

const char* FormatWord(FileFormat format)
{
  return RowOf(format).word;
}

const char* FormatName(FileFormat format)
{
  return RowOf(format).name;
}

} // namespace Orvex::Cli
