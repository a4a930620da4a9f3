// Progress on standard error: a bar for a person, JSON lines for a program.
#pragma once

#include "frame/Console.h"
#include "frame/Options.h"

#include <QString>

#include <chrono>
#include <functional>

namespace Orvex::Cli {

struct ProgressStep
{
  QString stage;
  double fraction = -1.0; // 0 to 1 within the stage, negative: unknown
};

using ProgressSink = std::function<void(const ProgressStep&)>;

// Shows the progress of one piece of work. The bar appears only after the work has taken a moment
// and is wiped when the display ends; JSON lines are
//
//   {"subject":"a.step","stage":"parse","fraction":0.25,"elapsed":1.2}
//
// with the fraction null while it is unknown and the elapsed time in seconds, at most some ten a
// second, but each change of stage.
class ProgressDisplay
{
public:
  ProgressDisplay(Console& console, const CommonOptions& options, QString subject);
  ~ProgressDisplay();
  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

  void Show(const ProgressStep& step);

  // Lets the clock of the bar go on while the work says nothing.
  void Tick();

private:
  using Clock = std::chrono::steady_clock;

  double Elapsed() const;
  void WriteBar();
  void WriteJson() const;

  Console& console;
  ProgressMode mode;
  QString subject;
  ProgressStep latest;
  Clock::time_point started = Clock::now();
  Clock::time_point written{};
  bool barShown = false;
};

} // namespace Orvex::Cli
