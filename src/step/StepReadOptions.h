// How a STEP read is to run: record what got lost, run in a process of its own, tell progress.
#pragma once

#include <functional>
#include <string>

namespace Orvex {

struct StepProgress
{
  // "parse", "transfer", "collect" (shapes, names, colours, tree), and for an isolated read
  // "hand-over". In this order, each at least once for a read that gets that far.
  std::string stage;
  double fraction = -1.0; // 0..1 within the stage; -1 when unknown
};

struct StepReadOptions
{
  // Fill a StepReadReport. The read itself is the same.
  bool collectReport = false;

  // Read in a child process (the program orvex-step-worker) that hands the result over, so that
  // whatever the kernel does with a bad file (a fault, an abort, a hang) ends in an error text.
  // CStepFileReader tells what that costs. Not available in OrvexStepReader, which ignores it.
  bool isolated = false;

  // Units: seconds of real time after which an isolated read is ended. 0: no limit.
  double timeLimitSeconds = 0.0;

  // Called on the reader's thread, at the begin of each stage and then at most some 20 times a
  // second. Must not throw.
  std::function<void(const StepProgress&)> progress;
};

} // namespace Orvex
