#include "operations/internal/LoftLadder.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

namespace Orvex {

namespace {

using Options = AdvancedLoftOptions;

// From so many sections on, each limit beyond the one before.
constexpr int kManySections = 8;
constexpr int kLargeLoft = 10;
constexpr int kVeryLargeLoft = 12;
constexpr int kHugeLoft = 18;

void ReduceToSafeProfile(const LoftSize& size, Options& options)
{
  options.smoothing = false;
  options.continuity = 0;
  options.maxDegree = std::min(options.maxDegree, 6);
  options.parametrization = 1;
  options.checkCompatibility = true;
  options.tolerance = std::max(options.tolerance, 1e-5);
  options.guideMode = size.guides == 0 ? 0 : std::min(options.guideMode, 1);
  if (size.sections >= kHugeLoft) {
    options.solid = false;
    options.guideMode = 0;
  }
}

Options WithTolerance(Options options, double atLeast, double times)
{
  options.tolerance = std::max(atLeast, times * options.tolerance);
  return options;
}

std::vector<Options> AttemptsOfComplexLoft(const Options& start, bool wantsSolid)
{
  const Options loose = WithTolerance(start, 5e-5, 5);
  Options ruled = loose;
  ruled.ruled = true;
  std::vector<Options> attempts = {start, loose, ruled};
  if (wantsSolid && !start.solid) {
    attempts.push_back(loose);
    attempts.back().solid = true;
  }
  return attempts;
}

std::vector<Options> AttemptsOfSimpleLoft(const Options& start)
{
  std::vector<Options> attempts = {start};
  if (start.continuity > 0) {
    attempts.push_back(start);
    --attempts.back().continuity;
  }
  const Options loose = WithTolerance(start, 1e-5, 10);
  attempts.push_back(loose);
  Options plain = WithTolerance(loose, 5e-5, 5);
  plain.smoothing = false;
  plain.continuity = 0;
  plain.maxDegree = std::min(plain.maxDegree, 6);
  attempts.push_back(plain);
  return attempts;
}

std::vector<Options> WithoutRepetition(const std::vector<Options>& attempts)
{
  std::vector<Options> different;
  for (const Options& attempt : attempts)
    if (std::none_of(different.begin(), different.end(),
                     [&](const Options& other) { return IsSameLoft(attempt, other); }))
      different.push_back(attempt);
  return different;
}

} // namespace

bool IsSameLoft(const Options& one, const Options& other)
{
  return one.solid == other.solid && one.ruled == other.ruled &&
         one.checkCompatibility == other.checkCompatibility &&
         std::abs(one.tolerance - other.tolerance) <= 1e-18 && one.smoothing == other.smoothing &&
         one.continuity == other.continuity && one.maxDegree == other.maxDegree &&
         one.parametrization == other.parametrization && one.guideMode == other.guideMode;
}

Options NormalizedLoftOptions(Options options)
{
  if (!std::isfinite(options.tolerance) || options.tolerance <= 0)
    options.tolerance = 1e-6;
  options.continuity = std::clamp(options.continuity, 0, 2);
  options.parametrization = std::clamp(options.parametrization, 0, 2);
  options.guideMode = std::clamp(options.guideMode, 0, 2);
  options.maxDegree = std::clamp(options.maxDegree, 2, 14);
  return options;
}

bool IsComplexLoft(const LoftSize& size, const Options& options)
{
  const Options normal = NormalizedLoftOptions(options);
  if (size.sections >= kHugeLoft)
    return true;
  if (size.sections < kManySections)
    return false;
  const bool smoothSolid = normal.solid && normal.smoothing;
  if (size.sections < kLargeLoft)
    return smoothSolid;
  return (normal.smoothing && normal.continuity > 0) ||
         (!normal.smoothing && normal.continuity == 2) || smoothSolid ||
         (size.guides >= 1 && size.sections >= kVeryLargeLoft && normal.guideMode == 2) ||
         (size.guides >= 2 && normal.smoothing);
}

Options SanitizedLoftOptions(const LoftSize& size, const Options& options)
{
  Options reduced = NormalizedLoftOptions(options);
  if (size.guides == 0)
    reduced.guideMode = 0;
  if (size.sections >= kVeryLargeLoft && reduced.guideMode == 2)
    reduced.guideMode = 1;
  if (size.sections >= kLargeLoft && size.guides >= 2 && reduced.smoothing) {
    reduced.smoothing = false;
    reduced.continuity = std::min(reduced.continuity, 1);
  }
  if (size.sections >= kVeryLargeLoft && size.guides >= 1)
    reduced.solid = false;
  if (IsComplexLoft(size, options))
    ReduceToSafeProfile(size, reduced);
  return reduced;
}

std::vector<Options> LoftAttempts(const LoftSize& size, const Options& options)
{
  const Options start = SanitizedLoftOptions(size, options);
  return WithoutRepetition(IsComplexLoft(size, options)
                             ? AttemptsOfComplexLoft(start, options.solid)
                             : AttemptsOfSimpleLoft(start));
}

std::string TextOf(const Options& options)
{
  static const char* const kSpacing[] = {"even", "chord length", "centripetal"};
  static const char* const kGuides[] = {"ignored", "soft", "strict"};
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << (options.solid ? "solid" : "shell") << (options.ruled ? ", ruled" : "")
       << (options.smoothing ? ", smoothing" : "")
       << (options.checkCompatibility ? "" : ", compatibility unchecked") << ", continuity "
       << options.continuity << ", degree up to " << options.maxDegree << ", "
       << kSpacing[options.parametrization] << " parameters, tolerance " << options.tolerance
       << ", guides " << kGuides[options.guideMode];
  return std::move(text).str();
}

} // namespace Orvex
