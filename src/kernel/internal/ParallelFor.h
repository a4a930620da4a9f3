// Loops over independent pieces of work on all cores.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace Orvex {

// Calls work(state, index) for each index below the count, from several threads, each with a state
// of its own from makeState(). Which thread gets which index is left open; results belong at the
// place of their index.
//
// Errors: of the exceptions thrown the first one goes on, after all threads have ended; indices
// that nobody had begun by then are left out.
template <typename MakeState, typename Work>
void ParallelFor(std::size_t count, MakeState&& makeState, Work&& work)
{
  std::atomic<std::size_t> next = 0;
  std::exception_ptr failure;
  std::mutex failureGuard;
  const auto run = [&] {
    try {
      auto state = makeState();
      for (std::size_t index = next++; index < count; index = next++)
        work(state, index);
    } catch (...) {
      const std::lock_guard lock(failureGuard);
      if (!failure)
        failure = std::current_exception();
      next = count;
    }
  };
  const std::size_t threads =
    std::min<std::size_t>(count, std::max(1U, std::thread::hardware_concurrency()));
  std::vector<std::thread> others;
  others.reserve(threads);
  try {
    for (std::size_t i = 1; i < threads; ++i)
      others.emplace_back(run);
  } catch (const std::system_error&) {
    // The threads that the system gives do the work.
  }
  run();
  for (std::thread& thread : others)
    thread.join();
  if (failure)
    std::rethrow_exception(failure);
}

} // namespace Orvex
