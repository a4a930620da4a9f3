#include "step/internal/WorkerProcess.h"

#include "step/internal/WorkerProtocol.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvex {

namespace {

namespace fs = std::filesystem;

constexpr const char* kWorkerName = "orvex-step-worker";
constexpr const char* kWorkerVariable = "ORVEX_STEP_WORKER";

fs::path FolderOfThisLibrary()
{
  Dl_info info{};
  if (dladdr(&kWorkerName, &info) == 0 || info.dli_fname == nullptr)
    return {};
  return fs::path(info.dli_fname).parent_path();
}

fs::path FolderOfThisProgram()
{
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::string FindWorker()
{
  if (const char* named = std::getenv(kWorkerVariable); named != nullptr && *named != '\0')
    return named;
  const fs::path library = FolderOfThisLibrary();
  for (const fs::path& folder : {library, library / "../bin", FolderOfThisProgram(),
                                 library / ORVEX_LIBRARY_TO_WORKER_FOLDER}) {
    const fs::path candidate = folder / kWorkerName;
    if (access(candidate.c_str(), X_OK) == 0)
      return candidate.string();
  }
  throw std::string("STEP worker ") + kWorkerName + " was not found; set " + kWorkerVariable +
    " to its path";
}

// How the child starts: output to the pipe and nowhere else, no other open file of ours, in a
// process group of its own, so that a key press in the terminal reaches us only, and with the
// signals as they are by default.
class SpawnPlan
{
public:
  explicit SpawnPlan(int frameOutput)
  {
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, frameOutput, kFrameDescriptor);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, kFrameDescriptor + 1);

    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                            POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnPlan()
  {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  // Returns: 0 or an error number.
  int Start(pid_t& process, const std::string& program, const std::vector<std::string>& arguments)
  {
    std::string name = kWorkerName;
    std::vector<std::string> copies = arguments;
    std::vector<char*> pointers{name.data()};
    for (std::string& argument : copies)
      pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return posix_spawn(&process, program.c_str(), &files, &attributes, pointers.data(), environ);
  }

private:
  posix_spawn_file_actions_t files{};
  posix_spawnattr_t attributes{};
};

std::string EndInWords(int status)
{
  if (WIFSIGNALED(status)) {
    const char* name = sigabbrev_np(WTERMSIG(status));
    return "was ended by signal " + std::to_string(WTERMSIG(status)) +
           (name == nullptr ? std::string() : std::string(" (SIG") + name + ")");
  }
  if (WEXITSTATUS(status) == kExitBadRequest)
    return "belongs to another version of the library";
  return "ended with exit code " + std::to_string(WEXITSTATUS(status)) + " and no result";
}

} // namespace

WorkerProcess::WorkerProcess(const std::vector<std::string>& arguments)
{
  const std::string program = FindWorker();
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0)
    throw std::string("STEP worker cannot be started: ") + std::strerror(errno);
  const int error = SpawnPlan(ends[1]).Start(process, program, arguments);
  close(ends[1]);
  output = ends[0];
  if (error == 0)
    return;
  close(output);
  throw std::string("STEP worker ") + program + " cannot be started: " + std::strerror(error);
}

WorkerProcess::~WorkerProcess()
{
  close(output);
  if (process < 0)
    return;
  kill(process, SIGKILL);
  WaitForEnd();
}

bool WorkerProcess::HasOutput(int milliseconds) const
{
  pollfd request{output, POLLIN, 0};
  return poll(&request, 1, milliseconds) > 0;
}

std::size_t WorkerProcess::Read(char* bytes, std::size_t count)
{
  ssize_t got = 0;
  do
    got = read(output, bytes, count);
  while (got < 0 && errno == EINTR);
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

std::string WorkerProcess::WaitForEnd()
{
  int status = 0;
  pid_t ended = 0;
  do
    ended = waitpid(process, &status, 0);
  while (ended < 0 && errno == EINTR);
  process = -1;
  // A host that collects all children itself leaves us without the status.
  return ended < 0 ? "ended with no result" : EndInWords(status);
}

} // namespace Orvex
