#include "foundation/OrvexDebugLogFile.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <mutex>

namespace {

constexpr std::size_t kBufferLimit = 64 * 1024;

std::string UtcTimeStamp()
{
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(now);
  const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char text[96];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                static_cast<int>(millis));
  return text;
}

} // namespace

struct OrvexDebugLogFile::State
{
  mutable std::mutex guard;
  std::deque<std::string> ring;
  std::string buffer;
  std::FILE* file = nullptr;
  std::atomic<bool> wantsDetail = false;

  void WriteBuffer()
  {
    if (file == nullptr || buffer.empty())
      return;
    std::fwrite(buffer.data(), 1, buffer.size(), file);
    std::fflush(file);
    buffer.clear();
  }

  void Append(std::string&& line)
  {
    if (file != nullptr) {
      buffer.append(UtcTimeStamp()).append(" ").append(line).append("\n");
      if (buffer.size() >= kBufferLimit)
        WriteBuffer();
    }
    ring.push_back(std::move(line));
    if (ring.size() > kRingCapacity)
      ring.pop_front();
  }
};

OrvexDebugLogFile* OrvexDebugLogFile::GetInstance()
{
  static OrvexDebugLogFile* log = [] {
    const char* path = std::getenv("ORVEX_DEBUG_LOG");
    auto* made = new OrvexDebugLogFile(path == nullptr ? "" : path);
    std::atexit([] { GetInstance()->Flush(); });
    return made;
  }();
  return log;
}

OrvexDebugLogFile::OrvexDebugLogFile(const std::string& path) : state(std::make_unique<State>())
{
  if (!path.empty())
    state->file = std::fopen(path.c_str(), "ae");
  state->wantsDetail = state->file != nullptr;
}

OrvexDebugLogFile::~OrvexDebugLogFile()
{
  Flush();
  if (state->file != nullptr)
    std::fclose(state->file);
}

void OrvexDebugLogFile::dumpToFile(std::string line)
{
  try {
    const std::scoped_lock lock(state->guard);
    state->Append(std::move(line));
  } catch (...) {
    // A log that cannot grow loses the line; the work it reports on goes on.
  }
}

bool OrvexDebugLogFile::WantsDetail() const
{
  return state->wantsDetail.load(std::memory_order_relaxed);
}

void OrvexDebugLogFile::SetWantsDetail(bool isWanted)
{
  state->wantsDetail = isWanted;
}

std::vector<std::string> OrvexDebugLogFile::Lines() const
{
  const std::scoped_lock lock(state->guard);
  return {state->ring.begin(), state->ring.end()};
}

void OrvexDebugLogFile::Flush()
{
  const std::scoped_lock lock(state->guard);
  state->WriteBuffer();
}
