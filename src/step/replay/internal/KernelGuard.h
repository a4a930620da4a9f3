// The one place where a failure of the kernel becomes a result.
#pragma once

#include <Standard_Failure.hxx>

namespace Orvex {

// Runs `work`, which tells whether it succeeded.
// Returns: what it told; false where the kernel threw. Standard_Failure is no std::exception:
// others, such as a lack of memory, pass.
template <typename Work>
bool SucceedsInKernel(Work&& work)
{
  try {
    return work();
  } catch (const Standard_Failure&) {
    return false;
  }
}

} // namespace Orvex
