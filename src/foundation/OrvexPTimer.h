// A stopwatch on the monotonic clock.
//
//   OrvexPTimer timer;
//   timer.start();
//   Work();
//   timer.stop();
//   log(timer.elapsedTimeAsString());   // "12.345 ms"
#pragma once

#include "foundation/Export.h"

#include <chrono>
#include <string>

class ORVEX_FOUNDATION_API OrvexPTimer
{
public:
  // A stopped timer that has measured nothing: its elapsed time is 0.
  OrvexPTimer() = default;

  void start();
  void stop();

  // Units: milliseconds between the last start and the last stop.
  double elapsedMilliseconds() const;

  // The same time as text: three decimals and the unit, "12.345 ms", whatever the locale.
  std::string elapsedTimeAsString() const;

private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point started{};
  Clock::duration measured{};
};
