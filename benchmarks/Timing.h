// The time of one iteration, for ratios between two benchmarks of the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <functional>

inline double MicrosecondsPerIteration(benchmark::State& state, const std::function<void()>& work)
{
  const auto start = std::chrono::steady_clock::now();
  for ([[maybe_unused]] auto iteration : state)
    work();
  const std::chrono::duration<double, std::micro> elapsed =
    std::chrono::steady_clock::now() - start;
  return elapsed.count() / static_cast<double>(state.iterations());
}

// Of this thread alone, so that what else the machine does plays little part.
inline double ThreadSeconds()
{
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <typename Work>
double ThreadSecondsFor(Work&& work)
{
  const double start = ThreadSeconds();
  work();
  return ThreadSeconds() - start;
}
