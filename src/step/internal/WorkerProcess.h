// A child process that runs the STEP worker. It ends with this object, if not before.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <sys/types.h>

namespace Orvex {

class WorkerProcess
{
public:
  // Errors: throws std::string if the worker cannot be found or started.
  explicit WorkerProcess(const std::vector<std::string>& arguments);
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  // Waits up to `milliseconds` for output.
  // Returns: true if Read would not wait.
  bool HasOutput(int milliseconds) const;

  // Returns: how many bytes came, 0 at the end of the output.
  std::size_t Read(char* bytes, std::size_t count);

  // Waits for the end of the process, which must have ended its output.
  // Returns: how it ended, in words.
  std::string WaitForEnd();

private:
  pid_t process = -1;
  int output = -1;
};

} // namespace Orvex
