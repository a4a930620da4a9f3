// The kernel keeps a process-wide list of the catch points on the stacks of all threads. A jump
// out of kernel code leaves entries in it that point into dead stack frames, where the next thread
// that walks the list reads them.
#pragma once

namespace Orvex {

// Takes the calling thread's catch points that lie deeper in its stack than `frame` off the list.
// Requires: those frames are still untouched; that is, call it before the jump.
void UnlinkKernelErrorHandlersBelow(const void* frame);

} // namespace Orvex
