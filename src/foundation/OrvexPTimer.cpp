#include "foundation/OrvexPTimer.h"

#include <charconv>

void OrvexPTimer::start()
{
  measured = {};
  started = Clock::now();
}

void OrvexPTimer::stop()
{
  measured = Clock::now() - started;
}

double OrvexPTimer::elapsedMilliseconds() const
{
  return std::chrono::duration<double, std::milli>(measured).count();
}

std::string OrvexPTimer::elapsedTimeAsString() const
{
  // The longest duration of the clock has 13 digits before the point.
  char text[32];
  const auto end =
    std::to_chars(text, text + sizeof text, elapsedMilliseconds(), std::chars_format::fixed, 3).ptr;
  return std::string(text, end) + " ms";
}
