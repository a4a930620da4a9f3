#include "support/CommaLocale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <unistd.h>

namespace OrvexTest {

namespace {

constexpr const char* kSource = "LC_NUMERIC\n"
                                "decimal_point \"<U002C>\"\n"
                                "thousands_sep \"\"\n"
                                "grouping -1\n"
                                "END LC_NUMERIC\n";

// ASCII: the maps that come with the C library are in a package that a bare machine lacks.
void WriteCharacterMap(const std::filesystem::path& path)
{
  std::ofstream map(path);
  map << "<code_set_name> ASCII\n<comment_char> %\n<escape_char> /\nCHARMAP\n"
      << std::hex << std::setfill('0');
  for (int code = 0; code < 128; ++code)
    map << "<U" << std::setw(4) << code << "> /x" << std::setw(2) << code << "\n";
  map << "END CHARMAP\n";
}

void MakeLocaleIn(const std::filesystem::path& folder)
{
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "source") << kSource;
  WriteCharacterMap(folder / "map");
  // -c: all other categories are missing. It says so at length and ends with 1, having written what
  // is there; whether that is enough is seen when the locale is set.
  const std::string command =
    "cd '" + folder.string() + "' && localedef -c -i ./source -f ./map ./comma >log 2>&1";
  [[maybe_unused]] const int status = std::system(command.c_str());
}

} // namespace

CommaLocale::CommaLocale() : earlier(std::setlocale(LC_NUMERIC, nullptr))
{
  const auto folder =
    std::filesystem::path(testing::TempDir()) / ("orvex-comma-locale-" + std::to_string(getpid()));
  MakeLocaleIn(folder);
  setenv("LOCPATH", folder.c_str(), 1);
  std::setlocale(LC_NUMERIC, "comma");
  unsetenv("LOCPATH");
  std::filesystem::remove_all(folder);
  EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

CommaLocale::~CommaLocale()
{
  std::setlocale(LC_NUMERIC, earlier.c_str());
}

} // namespace OrvexTest
