// How a read talks to its caller while it runs: progress out, a request to cancel in.
#pragma once

#include "step/StepReadOptions.h"

#include <Message_ProgressIndicator.hxx>

#include <atomic>
#include <chrono>
#include <string>

namespace Orvex {

inline constexpr const char* kXcafCancelled = "XCAF reader was cancelled";
inline constexpr const char* kPlainCancelled = "basic STEP reader was cancelled";

class ReadControl
{
public:
  // Requires: both outlive this object.
  ReadControl(const StepReadOptions& readOptions, const std::atomic<bool>& cancelFlag);

  // Begins a stage. Always told.
  void Enter(const char* stageName, double fraction = -1.0);

  // Tells how far the stage has come, if the last word is a while ago.
  void Advance(double fraction);

  bool Cancelled() const;

  // Errors: throws the std::string `text` if the read is cancelled.
  void ThrowIfCancelled(const char* text) const;

private:
  using Clock = std::chrono::steady_clock;

  void Tell(double fraction);

  const StepReadOptions& options;
  const std::atomic<bool>& cancel;
  std::string stage;
  Clock::time_point lastTold{};
};

// The same for the kernel.
class KernelProgress : public Message_ProgressIndicator
{
public:
  explicit KernelProgress(ReadControl& readControl);

  Standard_Boolean UserBreak() override;
  void Show(const Message_ProgressScope& scope, const Standard_Boolean isForced) override;

  DEFINE_STANDARD_RTTI_INLINE(KernelProgress, Message_ProgressIndicator)

private:
  ReadControl& control;
};

} // namespace Orvex
