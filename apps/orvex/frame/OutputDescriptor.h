// A file that bytes go into.
#pragma once

#include <string>

namespace Orvex::Cli {

class OutputDescriptor
{
public:
  enum class Place { New, Existing };

  // Opens the file; a new one must not be there yet.
  // Errors: a Failure (ExitCode::Partial) that names the file, here and below.
  OutputDescriptor(const std::string& file, Place place);
  ~OutputDescriptor();
  OutputDescriptor(const OutputDescriptor&) = delete;
  OutputDescriptor& operator=(const OutputDescriptor&) = delete;

  int Get() const;

  // Makes sure that the bytes are on the disk, and closes the file.
  void Finish();

private:
  const std::string name;
  int descriptor;
};

// Writes all of the text. Errors: a Failure (ExitCode::Partial) that names `file`.
void WriteWhole(int descriptor, const std::string& text, const std::string& file);

} // namespace Orvex::Cli
