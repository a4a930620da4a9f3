// A loop whose turns are handed to threads one by one.
#pragma once

#include <exception>
#include <limits>

namespace Orvex {

// Calls work(0) to work(count - 1), in any order and side by side, and returns when all are done.
// Errors: what the turns throw, of several the exception of the lowest turn.
template <typename Work>
void ForEachInParallel(int count, Work&& work)
{
  std::exception_ptr thrown;
  int thrownAt = std::numeric_limits<int>::max();
#pragma omp parallel for schedule(dynamic, 1)
  for (int i = 0; i < count; ++i) {
    try {
      work(i);
    } catch (...) {
#pragma omp critical(OrvexForEachInParallel)
      if (i < thrownAt) {
        thrownAt = i;
        thrown = std::current_exception();
      }
    }
  }
  if (thrown)
    std::rethrow_exception(thrown);
}

} // namespace Orvex
