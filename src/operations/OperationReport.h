// What an operation did to come to its result: what it tried, with which options, what each try
// came to, and what about the result may surprise. For people, so texts may change.
#pragma once

#include "foundation/Export.h"

#include <string>
#include <vector>

struct OperationAttempt
{
  // What was tried, with all options that matter.
  std::string description;
  // Whether it gave the result, or a part of it.
  bool built = false;
  // Why it gave none; empty if it did.
  std::string reason;
};

enum class OperationOutcome : int {
  // The input was not one that the operation takes; nothing was tried.
  Refused = 0,
  // No attempt gave a shape.
  Failed = 1,
  Built = 2
};

struct OperationReport
{
  OperationOutcome outcome = OperationOutcome::Refused;
  // Why there is no result; empty if there is one.
  std::string reason;
  // In the order in which they were tried.
  std::vector<OperationAttempt> attempts;
  // What else is to be known: options that were reduced, rules that give less than was asked for.
  std::vector<std::string> notes;

  // The first attempt that was built: the one that won, where only one is needed.
  // Returns: null if none was.
  ORVEX_API const OperationAttempt* Winner() const;

  // All of it as lines of text.
  ORVEX_API std::string Text() const;
};
