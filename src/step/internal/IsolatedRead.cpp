#include "step/internal/IsolatedRead.h"

#include "step/internal/WorkerProcess.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <sstream>

namespace Orvex {

namespace {

constexpr int kPollMilliseconds = 20;
constexpr std::size_t kChunk = 1024 * 1024;

class FrameStream
{
public:
  FrameStream(const WorkerRequest& workerRequest, ReadControl& readControl, bool& reachedLimit)
      : request(workerRequest), control(readControl), timeLimitReached(reachedLimit),
        worker(ArgumentsFor(workerRequest))
  {}

  // Passes progress on until the outcome has come.
  std::string Outcome()
  {
    for (;;) {
      const char kind = Take<char>();
      const auto size = Take<std::uint64_t>();
      if (kind == kOutcomeFrame)
        return TakeOutcome(size);
      TakeProgress(size);
    }
  }

private:
  using Clock = std::chrono::steady_clock;

  void CheckLimits()
  {
    control.ThrowIfCancelled(request.isFull ? kXcafCancelled : kPlainCancelled);
    const std::chrono::duration<double> elapsed = Clock::now() - started;
    if (request.timeLimitSeconds <= 0.0 || elapsed.count() < request.timeLimitSeconds)
      return;
    timeLimitReached = true;
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "STEP worker reached the time limit of " << request.timeLimitSeconds << " s";
    throw text.str();
  }

  void Fill(char* bytes, std::size_t count)
  {
    while (count > 0) {
      CheckLimits();
      if (!worker.HasOutput(kPollMilliseconds))
        continue;
      const std::size_t got = worker.Read(bytes, count);
      if (got == 0)
        throw "STEP worker " + worker.WaitForEnd();
      bytes += got;
      count -= got;
    }
  }

  template <typename Value>
  Value Take()
  {
    Value value{};
    Fill(reinterpret_cast<char*>(&value), sizeof value);
    return value;
  }

  void TakeProgress(std::uint64_t size)
  {
    const auto fraction = Take<double>();
    std::string name(static_cast<std::size_t>(size) - sizeof fraction, '\0');
    Fill(name.data(), name.size());
    if (name != stage)
      control.Enter((stage = name).c_str(), fraction);
    else
      control.Advance(fraction);
  }

  std::string TakeOutcome(std::uint64_t size)
  {
    control.Enter("hand-over", 0.0);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
      const std::size_t count = std::min(kChunk, bytes.size() - done);
      Fill(bytes.data() + done, count);
      done += count;
      control.Advance(static_cast<double>(done) / static_cast<double>(bytes.size()));
    }
    return bytes;
  }

  const WorkerRequest& request;
  ReadControl& control;
  bool& timeLimitReached;
  Clock::time_point started = Clock::now();
  std::string stage;
  WorkerProcess worker;
};

} // namespace

ReadOutcome ReadInWorker(const WorkerRequest& request, ReadControl& control, bool& timeLimitReached)
{
  std::istringstream bytes(FrameStream(request, control, timeLimitReached).Outcome());
  bytes.imbue(std::locale::classic());
  return ReadOutcomeFrom(bytes);
}

} // namespace Orvex
