// A file that is written beside its place and put there when it is whole.
#pragma once

#include <string>

namespace Orvex::Cli {

// Until Commit nothing is to be seen at the target: an earlier file there stays as it is, whatever
// ends the work.
class PendingFile
{
public:
  // Makes an empty file in the folder of the target, with the same ending. A target that is a
  // symbolic link is followed.
  // Errors: a Failure (ExitCode::Partial) when there can be no file there.
  explicit PendingFile(const std::string& target);

  // Removes the file unless it was committed.
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  // Where to write.
  const std::string& Path() const;

  // Makes sure that the bytes are on the disk and gives the file its name, in one step.
  // Errors: a Failure (ExitCode::Partial); the target is as it was.
  void Commit();

private:
  const std::string shown;
  std::string target;
  std::string path;
};

} // namespace Orvex::Cli
