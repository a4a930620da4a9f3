#include "step/internal/FaultGuard.h"

#include <gtest/gtest.h>

#include <Standard_ErrorHandler.hxx>

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include <sys/mman.h>
#include <unistd.h>

namespace {

#define ORVEX_NO_SANITIZE __attribute__((noinline, no_sanitize("address", "undefined")))

ORVEX_NO_SANITIZE void WriteToNull()
{
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

ORVEX_NO_SANITIZE void DivideByZero()
{
  volatile int zero = 0;
  volatile int dividend = 17;
  volatile int result = dividend / zero;
  (void)result;
}

ORVEX_NO_SANITIZE void RunIllegalInstruction()
{
  __builtin_trap();
}

ORVEX_NO_SANITIZE void ReadBehindTheEndOfAMappedFile()
{
  std::FILE* file = std::tmpfile();
  void* page = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fileno(file), 0);
  std::fclose(file);
  volatile char first = *static_cast<volatile char*>(page);
  (void)first;
}

ORVEX_NO_SANITIZE int Recurse(volatile char* outer)
{
  volatile char frame[1024];
  frame[0] = outer == nullptr ? '\0' : *outer;
  return frame[0] == '\0' ? Recurse(frame) + frame[0] : 0;
}

void OverflowTheStack()
{
  Recurse(nullptr);
}

struct Fault
{
  const char* name;
  int signal;
  void (*provoke)();
};

class EachFault : public testing::TestWithParam<Fault>
{};

TEST_P(EachFault, EndsTheWorkButNotTheProcess)
{
  bool cameToItsEnd = false;
  for (int round = 0; round < 3; ++round) {
    const int signal = Orvex::FaultGuard::Run([&] {
      GetParam().provoke();
      cameToItsEnd = true;
    });
    EXPECT_EQ(signal, GetParam().signal);
  }
  EXPECT_FALSE(cameToItsEnd);
}

TEST_P(EachFault, EndsTheWorkOfAnotherThreadToo)
{
  int signal = 0;
  std::thread([&] { signal = Orvex::FaultGuard::Run(GetParam().provoke); }).join();
  EXPECT_EQ(signal, GetParam().signal);
}

INSTANTIATE_TEST_SUITE_P(FaultGuard, EachFault,
                         testing::Values(Fault{"NullWrite", SIGSEGV, WriteToNull},
                                         Fault{"StackOverflow", SIGSEGV, OverflowTheStack},
                                         Fault{"MappedFile", SIGBUS, ReadBehindTheEndOfAMappedFile},
                                         Fault{"Illegal", SIGILL, RunIllegalInstruction},
                                         Fault{"Division", SIGFPE, DivideByZero}),
                         [](const auto& fault) { return fault.param.name; });

TEST(FaultGuard, PassesResultsAndExceptionsAndLeavesNothingBehind)
{
  struct sigaction before
  {};
  struct sigaction after
  {};
  stack_t stackBefore{};
  stack_t stackAfter{};
  sigaction(SIGSEGV, nullptr, &before);
  sigaltstack(nullptr, &stackBefore);
  EXPECT_EQ(Orvex::FaultGuard::Run([] {}), 0);
  EXPECT_THROW(Orvex::FaultGuard::Run([] { throw std::runtime_error("x"); }), std::runtime_error);
  EXPECT_EQ(Orvex::FaultGuard::Run(WriteToNull), SIGSEGV);
  sigaction(SIGSEGV, nullptr, &after);
  sigaltstack(nullptr, &stackAfter);
  EXPECT_EQ(after.sa_sigaction, before.sa_sigaction);
  EXPECT_EQ(stackAfter.ss_sp, stackBefore.ss_sp);
}

TEST(FaultGuard, TheInnermostGuardTakesTheFault)
{
  int inner = 0;
  const int outer = Orvex::FaultGuard::Run([&] {
    inner = Orvex::FaultGuard::Run(DivideByZero);
    WriteToNull();
  });
  EXPECT_EQ(inner, SIGFPE);
  EXPECT_EQ(outer, SIGSEGV);
}

// Handlers of a host, as the chain below the guard. They leave by a jump of their own.
thread_local sigjmp_buf hostResume;
volatile std::sig_atomic_t hostCalls = 0;

void HostHandler(int)
{
  hostCalls = hostCalls + 1;
  siglongjmp(hostResume, 1);
}

void HostHandlerWithInfo(int signal, siginfo_t* info, void* context)
{
  if (signal == SIGSEGV && info->si_addr == nullptr && context != nullptr)
    HostHandler(signal);
}

class HostAction
{
public:
  HostAction(int hostSignal, const struct sigaction& action) : signal(hostSignal)
  {
    sigaction(signal, &action, &before);
  }
  ~HostAction()
  {
    sigaction(signal, &before, nullptr);
  }
  HostAction(const HostAction&) = delete;
  HostAction& operator=(const HostAction&) = delete;

private:
  int signal;
  struct sigaction before
  {};
};

struct sigaction ActionOf(void (*handler)(int))
{
  struct sigaction action
  {};
  action.sa_handler = handler;
  return action;
}

// Faults on a thread without a guard while this one runs under its own.
void FaultBesideAGuard()
{
  const int signal = Orvex::FaultGuard::Run([] {
    std::thread([] {
      if (sigsetjmp(hostResume, 1) == 0)
        WriteToNull();
    }).join();
  });
  EXPECT_EQ(signal, 0);
}

TEST(FaultGuard, FaultsOfOtherThreadsReachTheHandlersOfTheHost)
{
  hostCalls = 0;
  {
    const HostAction host(SIGSEGV, ActionOf(HostHandler));
    FaultBesideAGuard();
    EXPECT_EQ(hostCalls, 1);
  }
  struct sigaction withInfo
  {};
  withInfo.sa_sigaction = HostHandlerWithInfo;
  withInfo.sa_flags = SA_SIGINFO;
  const HostAction host(SIGSEGV, withInfo);
  FaultBesideAGuard();
  EXPECT_EQ(hostCalls, 2);
}

TEST(FaultGuard, SentSignalsAreNoFaults)
{
  hostCalls = 0;
  const HostAction host(SIGFPE, ActionOf(HostHandler));
  const int signal = Orvex::FaultGuard::Run([] {
    if (sigsetjmp(hostResume, 1) == 0)
      raise(SIGFPE);
  });
  EXPECT_EQ(signal, 0);
  EXPECT_EQ(hostCalls, 1);
  const HostAction ignoring(SIGBUS, ActionOf(SIG_IGN));
  EXPECT_EQ(Orvex::FaultGuard::Run([] { raise(SIGBUS); }), 0);
}

TEST(FaultGuardDeathTest, FaultsThatNobodyTakesEndTheProcessAsBefore)
{
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  for (const auto byDefault : {SIG_DFL, SIG_IGN}) {
    EXPECT_EXIT(
      {
        std::signal(SIGSEGV, byDefault);
        Orvex::FaultGuard::Run([] { std::thread(WriteToNull).join(); });
      },
      testing::KilledBySignal(SIGSEGV), "");
  }
  EXPECT_EXIT(
    {
      std::signal(SIGILL, SIG_DFL);
      Orvex::FaultGuard::Run([] { raise(SIGILL); });
    },
    testing::KilledBySignal(SIGILL), "");
}

ORVEX_NO_SANITIZE void FaultWithACatchPoint()
{
  const Standard_ErrorHandler catchPoint;
  WriteToNull();
}

// Deep enough that what the test calls afterwards leaves the dead frame as it is.
ORVEX_NO_SANITIZE char FaultDeepInTheStack(std::size_t deep)
{
  volatile char room[64 * 1024];
  room[deep] = '\0';
  FaultWithACatchPoint();
  return room[deep];
}

// What stays on the kernel's list would be read, and written, in stack frames that are gone.
TEST(FaultGuard, LeavesNoCatchPointOfTheKernelBehind)
{
  const Standard_ErrorHandler ours;
  std::thread([] {
    const Standard_ErrorHandler outside;
    EXPECT_EQ(Orvex::FaultGuard::Run([] { FaultDeepInTheStack(7); }), SIGSEGV);
    EXPECT_TRUE(Standard_ErrorHandler::IsInTryBlock()) << "those outside of the guard stay";
  }).join();
  std::thread([] {
    EXPECT_EQ(Orvex::FaultGuard::Run([] { FaultDeepInTheStack(7); }), SIGSEGV);
    EXPECT_FALSE(Standard_ErrorHandler::IsInTryBlock());
  }).join();
}

} // namespace
