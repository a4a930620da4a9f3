// The time of one iteration, for ratios between two benchmarks of the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
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
