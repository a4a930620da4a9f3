// The worker's side of a read in a process of its own.
#pragma once

#include "foundation/Export.h"

namespace Orvex {

// The whole of the program orvex-step-worker: reads as its arguments say, writes frames, and ends
// the process.
// Returns: an exit code, if the arguments make no sense.
ORVEX_API int RunStepWorker(int argumentCount, char** arguments);

} // namespace Orvex
