// STEP files for tests: real ones from the folder of test data, small ones written on the spot.
#pragma once

#include <TDocStd_Document.hxx>
#include <TopoDS_Shape.hxx>

#include <QString>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace OrvexTest {

// Whether reading this file takes too long in this build: a sanitizer makes it ten times slower.
bool IsTooLargeHere(const QString& path);

// The path of a file in the folder that ORVEX_TEST_DATA names; empty if the variable is not set.
QString DataFile(const std::string& name);

// All files there that have the kernel's figures in the table of facts, in the table's order,
// without those that are too large here.
struct FileFacts
{
  std::string file;
  std::map<std::string, int> numbers;
  std::string schema;
  std::string lengthUnit;
};
std::vector<FileFacts> ReadableFiles();

// A file that goes away with this object, in a folder of its own.
class ScratchFile
{
public:
  explicit ScratchFile(const std::string& name, const std::string& content = {});
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  QString Path() const;
  std::string Content() const;
  void SetContent(const std::string& content) const;

private:
  std::filesystem::path path;
};

// Writes solids as free shapes under the given names. An empty name is no name in the file either.
using NamedShapes = std::vector<std::pair<std::string, TopoDS_Shape>>;
void WriteFreeShapes(const ScratchFile& file, const NamedShapes& shapes);

// Writes a document that `fill` has filled, with names and colours.
void WriteDocument(const ScratchFile& file, const std::function<void(TDocStd_Document&)>& fill);

// Replaces every occurrence; fails the test if there is none.
void ReplaceInFile(const ScratchFile& file, const std::string& from, const std::string& to);

TopoDS_Shape Box(double size);

// "two pairs of bolts": an assembly "top" with
//   a sub-assembly "pair" at x = 100 and another one at x = 200, each of two "bolt"s at y = 0 and
//   10, a red "bolt" at z = 7.
void WriteBoltAssembly(const ScratchFile& file);

} // namespace OrvexTest

// Ends the test as skipped when the folder of real files is not there.
#define ORVEX_NEEDS_TEST_DATA()                                                                    \
  if (std::getenv("ORVEX_TEST_DATA") == nullptr)                                                   \
  GTEST_SKIP() << "ORVEX_TEST_DATA does not name the folder of real STEP files"
