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

// Of a processor clock: CLOCK_THREAD_CPUTIME_ID or CLOCK_PROCESS_CPUTIME_ID, on which what else the
// machine does plays little part.
inline double SecondsOn(clockid_t clock)
{
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <typename Work>
double SecondsFor(clockid_t clock, Work&& work)
{
  const double start = SecondsOn(clock);
  work();
  return SecondsOn(clock) - start;
}

template <typename Work>
double ThreadSecondsFor(Work&& work)
{
  return SecondsFor(CLOCK_THREAD_CPUTIME_ID, work);
}

template <typename Work>
double ProcessSecondsFor(Work&& work)
{
  return SecondsFor(CLOCK_PROCESS_CPUTIME_ID, work);
}

// By the clock on the wall, for work on several threads.
template <typename Work>
double WallSecondsFor(Work&& work)
{
  return SecondsFor(CLOCK_MONOTONIC, work);
}
