// The options that a loft is tried with, one set after the other.
#pragma once

#include "operations/AdvancedLoftOptions.h"

#include <string>
#include <vector>

namespace Orvex {

// How many sections a loft has, and how many of its guides are curves.
struct LoftSize
{
  int sections = 0;
  int guides = 0;
};

// Field by field; tolerances count as the same within 1e-18.
bool IsSameLoft(const AdvancedLoftOptions& one, const AdvancedLoftOptions& other);

// Options within their ranges.
AdvancedLoftOptions NormalizedLoftOptions(AdvancedLoftOptions options);

// Whether a job is so large that it starts from the safe profile.
bool IsComplexLoft(const LoftSize& size, const AdvancedLoftOptions& options);

// What the loft starts from.
AdvancedLoftOptions SanitizedLoftOptions(const LoftSize& size, const AdvancedLoftOptions& options);

// All sets in order, the sanitized one first; none twice.
std::vector<AdvancedLoftOptions> LoftAttempts(const LoftSize& size,
                                              const AdvancedLoftOptions& options);

// In words.
std::string TextOf(const AdvancedLoftOptions& options);

} // namespace Orvex
