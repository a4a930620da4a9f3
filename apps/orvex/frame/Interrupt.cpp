#include "frame/Interrupt.h"

#include <csignal>

namespace Orvex::Cli {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void Note(int)
{
  interrupted = 1;
}

} // namespace

void NoteInterrupts()
{
  struct sigaction before
  {};
  if (::sigaction(SIGINT, nullptr, &before) == 0 && before.sa_handler == SIG_IGN)
    return;
  struct sigaction note
  {};
  note.sa_handler = Note;
  // Without SA_RESTART a wait returns at once; with SA_RESETHAND the second Ctrl-C ends.
  note.sa_flags = static_cast<int>(SA_RESETHAND);
  ::sigaction(SIGINT, &note, nullptr);
}

bool InterruptRequested()
{
  return interrupted != 0;
}

} // namespace Orvex::Cli
