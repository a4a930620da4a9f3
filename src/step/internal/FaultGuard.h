// Survives faults of the processor in code that cannot be trusted: a null dereference, endless
// recursion, an illegal instruction or a division by zero inside the guard ends the work there
// instead of the process.
//
// The guard holds for the calling thread only, and only while the work runs. Faults on other
// threads, and signals that some process sends, go to the handlers that were in place before,
// which are put back when the last guard of the process ends.
//
// Caveat: what the work held at the moment of the fault (memory, locks, half-made objects) stays
// as it is. A fault inside the allocator can leave its lock taken; a thread that destroyed the heap
// may go down later. Where that is not good enough, a process of its own is.
#pragma once

#include <functional>

namespace Orvex::FaultGuard {

// Runs `work`. Guards nest: the innermost takes the fault.
// Returns: 0 when the work came to its end; otherwise the number of the signal that ended it, one
// of SIGSEGV, SIGBUS, SIGILL, SIGFPE.
// Errors: what the work throws passes through.
int Run(const std::function<void()>& work);

} // namespace Orvex::FaultGuard
