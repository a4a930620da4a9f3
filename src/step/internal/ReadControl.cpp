#include "step/internal/ReadControl.h"

namespace Orvex {

namespace {

constexpr std::chrono::milliseconds kQuietTime{50};

} // namespace

ReadControl::ReadControl(const StepReadOptions& readOptions, const std::atomic<bool>& cancelFlag)
    : options(readOptions), cancel(cancelFlag)
{}

void ReadControl::Enter(const char* stageName, double fraction)
{
  stage = stageName;
  Tell(fraction);
}

void ReadControl::Advance(double fraction)
{
  if (options.progress && Clock::now() - lastTold >= kQuietTime)
    Tell(fraction);
}

void ReadControl::Tell(double fraction)
{
  lastTold = Clock::now();
  if (options.progress)
    options.progress({stage, fraction});
}

bool ReadControl::Cancelled() const
{
  return cancel.load(std::memory_order_relaxed);
}

void ReadControl::ThrowIfCancelled(const char* text) const
{
  if (Cancelled())
    throw std::string(text);
}

KernelProgress::KernelProgress(ReadControl& readControl) : control(readControl)
{}

Standard_Boolean KernelProgress::UserBreak()
{
  return control.Cancelled();
}

void KernelProgress::Show(const Message_ProgressScope&, const Standard_Boolean)
{
  control.Advance(GetPosition());
}

} // namespace Orvex
