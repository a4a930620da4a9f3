// Ctrl-C. The first one asks whatever runs to end in good order, the second one ends the process.
#pragma once

namespace Orvex::Cli {

// From now on Ctrl-C is noted instead of ending the process at once. A process that was started
// with interrupts ignored (in the background of a script) keeps ignoring them.
void NoteInterrupts();

bool InterruptRequested();

} // namespace Orvex::Cli
