// The caller's side of a read in a process of its own.
#pragma once

#include "step/internal/ReadControl.h"
#include "step/internal/ReadOutcome.h"
#include "step/internal/WorkerProtocol.h"

namespace Orvex {

// Starts the worker, passes its progress on, and takes over what it read. A request to cancel, or
// the time limit, ends the worker at once.
// Returns: the outcome as the worker's reader had it, whether it succeeded or not.
// Errors: throws std::string when there is no outcome: the worker cannot be started, a signal ended
// it, it ran too long (then `timeLimitReached` is set), the read was cancelled.
ReadOutcome ReadInWorker(const WorkerRequest& request, ReadControl& control,
                         bool& timeLimitReached);

} // namespace Orvex
