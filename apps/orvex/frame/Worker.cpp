#include "frame/Worker.h"

#include "frame/Interrupt.h"

#include <QJsonDocument>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvex::Cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPollMilliseconds = 100;

// The worker speaks in lines of JSON: {"stage":…,"fraction":…} any number of times, then
// {"reply":…} once.
class LineWriter
{
public:
  explicit LineWriter(int descriptor_) : descriptor(descriptor_)
  {}

  void Write(const QJsonObject& message) const
  {
    const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
    for (qsizetype at = 0; at < line.size();) {
      const ssize_t written =
        ::write(descriptor, line.constData() + at, static_cast<std::size_t>(line.size() - at));
      if (written < 0 && errno != EINTR)
        return;
      at += std::max<ssize_t>(written, 0);
    }
  }

private:
  int descriptor;
};

// Progress in a tight loop would only fill the pipe: one report a while, and each new stage.
ProgressSink ThrottledSink(const LineWriter& writer)
{
  return
    [&writer, last = Clock::time_point{}, stage = QString()](const ProgressStep& step) mutable {
      if (step.stage == stage && Clock::now() - last < std::chrono::milliseconds(50))
        return;
      last = Clock::now();
      stage = step.stage;
      writer.Write({{"stage", step.stage}, {"fraction", step.fraction}});
    };
}

void SilenceOutput(bool showChatter)
{
  if (showChatter)
    return;
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  ::close(nowhere);
}

[[noreturn]] void Work(const WorkerJob& job, bool showChatter, int descriptor, pid_t parent)
{
  // The parent decides what an interrupt means; and nobody is left to read when it is gone.
  ::signal(SIGINT, SIG_IGN);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent)
    ::_exit(1);
  SilenceOutput(showChatter);
  const LineWriter writer(descriptor);
  writer.Write({{"reply", job(ThrottledSink(writer))}});
  // No destructors, no flushing of what the parent had buffered before the fork.
  ::_exit(0);
}

// The parent's end: one worker process and the pipe from it.
class WorkerProcess
{
public:
  WorkerProcess(const WorkerJob& job, bool showChatter)
  {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
      throw CannotStart();
    const pid_t parent = ::getpid();
    process = ::fork();
    if (process == 0)
      Work(job, showChatter, ends[1], parent);
    ::close(ends[1]);
    descriptor = ends[0];
    if (process < 0) {
      const Failure failure = CannotStart();
      ::close(descriptor);
      throw failure;
    }
  }

  ~WorkerProcess()
  {
    Kill();
    ::close(descriptor);
  }

  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  // Waits a while for more bytes. Returns false when the worker has closed its end.
  bool Receive(QByteArray& received) const
  {
    struct pollfd waiting
    {
      descriptor, POLLIN, 0
    };
    if (::poll(&waiting, 1, kPollMilliseconds) <= 0)
      return true;
    char buffer[65536];
    const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
    if (count > 0)
      received.append(buffer, count);
    return count > 0 || (count < 0 && errno == EINTR);
  }

  // Waits for the end of the process. Returns the signal that ended it, or 0.
  int Wait()
  {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = 0;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

  void Kill()
  {
    if (process <= 0)
      return;
    ::kill(process, SIGKILL);
    Wait();
  }

private:
  static Failure CannotStart()
  {
    return {ExitCode::KernelFailure,
            {},
            {},
            QStringLiteral("no worker process could be started: %1").arg(std::strerror(errno)),
            {}};
  }

  pid_t process = 0;
  int descriptor = -1;
};

// What has come from a worker so far.
struct Received
{
  QByteArray bytes;
  Clock::time_point lastProgress = Clock::now();

  // Takes the complete lines off the front.
  std::optional<QJsonObject> TakeReply(ProgressDisplay& progress)
  {
    qsizetype end = 0;
    while ((end = bytes.indexOf('\n')) >= 0) {
      const QJsonObject message = QJsonDocument::fromJson(bytes.first(end)).object();
      bytes.remove(0, end + 1);
      if (message.contains("reply"))
        return message.value("reply").toObject();
      lastProgress = Clock::now();
      progress.Show({message.value("stage").toString(), message.value("fraction").toDouble()});
    }
    return std::nullopt;
  }
};

bool IsOver(Clock::time_point started, double limitSeconds)
{
  return limitSeconds > 0.0 &&
         std::chrono::duration<double>(Clock::now() - started).count() > limitSeconds;
}

} // namespace

WorkerReply RunInWorker(const WorkerJob& job, const WorkerOptions& options,
                        ProgressDisplay& progress)
{
  using End = WorkerReply::End;
  const auto started = Clock::now();
  WorkerProcess worker(job, options.showChatter);
  Received received;
  for (bool open = true; open;) {
    open = worker.Receive(received.bytes);
    if (auto reply = received.TakeReply(progress))
      return {End::Replied, *reply, 0};
    if (InterruptRequested())
      return {End::Interrupted, {}, 0};
    if (IsOver(started, options.timeLimitSeconds))
      return {End::TimeLimit, {}, 0};
    if (IsOver(received.lastProgress, options.stallLimitSeconds))
      return {End::Stalled, {}, 0};
    progress.Tick();
  }
  return {End::Died, {}, worker.Wait()};
}

Failure FailureOfWorker(const WorkerReply& reply, const WorkerOptions& limits,
                        const WorkerTask& task)
{
  Failure failure{task.code, task.subject, {}, {}, {}};
  switch (reply.end) {
  case WorkerReply::End::Interrupted:
    failure.code = ExitCode::Interrupted;
    failure.reason = QStringLiteral("interrupted");
    break;
  case WorkerReply::End::TimeLimit:
    failure.code = ExitCode::TimeLimit;
    failure.reason =
      QStringLiteral("not %1 within %2 s").arg(task.done).arg(limits.timeLimitSeconds);
    failure.advice = QStringLiteral("--time-limit allows more");
    break;
  case WorkerReply::End::Stalled:
    failure.reason = QStringLiteral("the kernel got stuck on it: %1 s without progress")
                       .arg(limits.stallLimitSeconds);
    failure.advice = QStringLiteral("--stall-limit allows more");
    break;
  default:
    failure.reason =
      QStringLiteral("the kernel broke down while %1 it: %2")
        .arg(task.doing, reply.signal == 0 ? "the process ended" : ::strsignal(reply.signal));
  }
  return failure;
}

QJsonObject ResultOfWorker(const WorkerJob& job, const WorkerOptions& options,
                           ProgressDisplay& progress, const WorkerTask& task)
{
  const auto answering = [&](const ProgressSink& sink) -> QJsonObject {
    try {
      return {{"result", job(sink)}};
    } catch (...) {
      const Failure failure = FailureOfCurrentException(task.code, task.subject);
      return {{"error", ToJson(failure)}, {"subject", failure.subject}};
    }
  };
  const WorkerReply reply = RunInWorker(answering, options, progress);
  if (reply.end != WorkerReply::End::Replied) {
    Failure failure = FailureOfWorker(reply, options, task);
    failure.entity = task.entity;
    if (!task.allowed.isEmpty())
      failure.advice = task.allowed;
    throw failure;
  }
  if (reply.value.contains("result"))
    return reply.value.value("result").toObject();
  Failure failure = FailureFromJson(reply.value.value("error").toObject());
  failure.subject = reply.value.value("subject").toString();
  throw failure;
}

} // namespace Orvex::Cli
