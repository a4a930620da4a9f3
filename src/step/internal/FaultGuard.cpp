#include "step/internal/FaultGuard.h"

#include "step/internal/KernelErrorHandlers.h"

#include <array>
#include <csetjmp>
#include <csignal>
#include <memory>
#include <mutex>

#include <pthread.h>

namespace Orvex::FaultGuard {

namespace {

constexpr std::array<int, 4> kSignals{SIGSEGV, SIGBUS, SIGILL, SIGFPE};
constexpr std::size_t kAlternateStackSize = 128 * 1024;

struct Frame
{
  sigjmp_buf resume;
  Frame* outer = nullptr;
  volatile std::sig_atomic_t signal = 0;
  volatile std::sig_atomic_t isUnlinking = 0;
};

// A lazily allocated thread-local would call the allocator from the handler.
__attribute__((tls_model("initial-exec"))) constinit thread_local Frame* innermost = nullptr;

struct Registry
{
  std::mutex guard;
  int users = 0;
  std::array<struct sigaction, kSignals.size()> earlier{};
};

constinit Registry registry;

struct sigaction& EarlierActionOf(int signal)
{
  std::size_t i = 0;
  while (kSignals[i] != signal)
    ++i;
  return registry.earlier[i];
}

// Sent by a process or by raise, as against an instruction that could not be carried out.
bool IsSent(const siginfo_t& info)
{
  return info.si_code <= 0;
}

// Gives the signal its default action: an instruction that faults is tried again when the handler
// returns, a signal that was sent must be sent again.
void FallBackToDefault(int signal, const siginfo_t& info)
{
  struct sigaction byDefault
  {};
  byDefault.sa_handler = SIG_DFL;
  sigaction(signal, &byDefault, nullptr);
  if (IsSent(info))
    pthread_kill(pthread_self(), signal);
}

void CallEarlier(const struct sigaction& action, int signal, siginfo_t* info, void* context)
{
  sigset_t blocked = action.sa_mask;
  if ((action.sa_flags & SA_NODEFER) == 0)
    sigaddset(&blocked, signal);
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  if ((action.sa_flags & SA_SIGINFO) != 0)
    action.sa_sigaction(signal, info, context);
  else
    action.sa_handler(signal);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void PassOn(int signal, siginfo_t* info, void* context)
{
  struct sigaction& earlier = EarlierActionOf(signal);
  const struct sigaction action = earlier;
  const bool isHandler = (action.sa_flags & SA_SIGINFO) != 0 ||
                         (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
  if (!isHandler) {
    // As in the system itself, a fault cannot be ignored.
    if (action.sa_handler == SIG_DFL || !IsSent(*info))
      FallBackToDefault(signal, *info);
    return;
  }
  if ((action.sa_flags & static_cast<int>(SA_RESETHAND)) != 0) {
    earlier.sa_flags &= ~SA_SIGINFO;
    earlier.sa_handler = SIG_DFL;
  }
  CallEarlier(action, signal, info, context);
}

void OnSignal(int signal, siginfo_t* info, void* context)
{
  Frame* frame = innermost;
  if (frame == nullptr || IsSent(*info)) {
    PassOn(signal, info, context);
    return;
  }
  frame->signal = signal;
  // A list that was overwritten makes this fault again: then it is left as it is.
  if (frame->isUnlinking == 0) {
    frame->isUnlinking = 1;
    UnlinkKernelErrorHandlersBelow(frame);
  }
  siglongjmp(frame->resume, 1);
}

class AlternateStack
{
public:
  AlternateStack() : memory(std::make_unique<std::byte[]>(kAlternateStackSize))
  {
    stack_t mine{};
    mine.ss_sp = memory.get();
    mine.ss_size = kAlternateStackSize;
    sigaltstack(&mine, &earlier);
  }
  ~AlternateStack()
  {
    sigaltstack(&earlier, nullptr);
  }
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

private:
  std::unique_ptr<std::byte[]> memory;
  stack_t earlier{};
};

class InstalledHandlers
{
public:
  InstalledHandlers()
  {
    const std::scoped_lock lock(registry.guard);
    if (registry.users++ > 0)
      return;
    struct sigaction ours
    {};
    ours.sa_sigaction = OnSignal;
    // Not deferred, so that a fault on the way out of a fault is still taken.
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&ours.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i)
      sigaction(kSignals[i], &ours, &registry.earlier[i]);
  }
  ~InstalledHandlers()
  {
    const std::scoped_lock lock(registry.guard);
    if (--registry.users > 0)
      return;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
      PutBack(kSignals[i], registry.earlier[i]);
  }
  InstalledHandlers(const InstalledHandlers&) = delete;
  InstalledHandlers& operator=(const InstalledHandlers&) = delete;

private:
  // What someone else installed over ours in the meantime stays.
  static void PutBack(int signal, const struct sigaction& earlier)
  {
    struct sigaction current
    {};
    sigaction(signal, nullptr, &current);
    if ((current.sa_flags & SA_SIGINFO) != 0 && current.sa_sigaction == OnSignal)
      sigaction(signal, &earlier, nullptr);
  }
};

class ActiveFrame
{
public:
  explicit ActiveFrame(Frame& frame)
  {
    frame.outer = innermost;
    innermost = &frame;
  }
  ~ActiveFrame()
  {
    innermost = innermost->outer;
  }
  ActiveFrame(const ActiveFrame&) = delete;
  ActiveFrame& operator=(const ActiveFrame&) = delete;
};

// Apart from Run, so that no local of the function that calls sigsetjmp changes after it.
[[gnu::noinline]] void RunToTheEnd(Frame& frame, const std::function<void()>& work)
{
  if (sigsetjmp(frame.resume, 1) == 0)
    work();
}

} // namespace

int Run(const std::function<void()>& work)
{
  const AlternateStack stack;
  const InstalledHandlers handlers;
  Frame frame;
  const ActiveFrame active(frame);
  RunToTheEnd(frame, work);
  return frame.signal;
}

} // namespace Orvex::FaultGuard
