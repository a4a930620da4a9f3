#include "frame/Progress.h"

#include "frame/Text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace Orvex::Cli {

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenLines = 100ms;
constexpr double kBarDelaySeconds = 0.3;
constexpr int kBarCells = 24;

// A bar needs a terminal that can be wiped, also when it was asked for by name.
ProgressMode ModeFor(const Console& console, const CommonOptions& options)
{
  if (options.quiet)
    return ProgressMode::None;
  if (options.progress == ProgressMode::Automatic || options.progress == ProgressMode::Bar)
    return console.MessagesAreTerminal() ? ProgressMode::Bar : ProgressMode::None;
  return options.progress;
}

QString BarText(double fraction)
{
  if (fraction < 0.0)
    return QStringLiteral("   …");
  const int filled = static_cast<int>(std::lround(fraction * kBarCells));
  return QStringLiteral("%1% %2%3")
    .arg(static_cast<int>(fraction * 100.0), 3)
    .arg(QString(filled, QChar(u'━')), QString(kBarCells - filled, QChar(u'─')));
}

} // namespace

ProgressDisplay::ProgressDisplay(Console& console_, const CommonOptions& options, QString subject_)
    : console(console_), mode(ModeFor(console_, options)), subject(std::move(subject_))
{}

ProgressDisplay::~ProgressDisplay()
{
  if (barShown)
    console.WriteMessage("\r\x1b[K");
}

void ProgressDisplay::Show(const ProgressStep& step)
{
  const bool newStage = step.stage != latest.stage;
  latest = step;
  latest.fraction = std::min(step.fraction, 1.0);
  if (mode == ProgressMode::None || (!newStage && Clock::now() - written < kBetweenLines))
    return;
  written = Clock::now();
  mode == ProgressMode::Json ? WriteJson() : WriteBar();
}

void ProgressDisplay::Tick()
{
  if (mode == ProgressMode::Bar)
    WriteBar();
}

double ProgressDisplay::Elapsed() const
{
  return std::chrono::duration<double>(Clock::now() - started).count();
}

void ProgressDisplay::WriteBar()
{
  const double elapsed = Elapsed();
  if (elapsed < kBarDelaySeconds || latest.stage.isEmpty())
    return;
  const QString line =
    QStringLiteral("\r\x1b[K%1  %2 %3  %4 s")
      .arg(TerminalText(subject), latest.stage, BarText(latest.fraction), Decimal(elapsed, 1));
  console.WriteMessage(line.toUtf8());
  barShown = true;
}

void ProgressDisplay::WriteJson() const
{
  const QJsonObject line{
    {"subject", subject},
    {"stage", latest.stage},
    {"fraction", latest.fraction < 0.0 ? QJsonValue() : QJsonValue(latest.fraction)},
    {"elapsed", Elapsed()}};
  console.WriteMessage(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace Orvex::Cli
