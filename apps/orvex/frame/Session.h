// One call of the command line, as a subcommand sees it: its common options and where its words go.
#pragma once

#include "frame/Console.h"
#include "frame/Failure.h"
#include "frame/Options.h"

#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

class Session
{
public:
  Session(Console& console, const CommonOptions& options);

  const CommonOptions& Options() const;
  Console& Streams();

  // The result of the call, on standard output. JSON becomes one line.
  void Result(const QString& text);
  void Result(const QJsonObject& object);

  // One line on standard error each: failures always, warnings unless -q, notes with -v.
  void Report(const Failure& failure);
  void Warn(const QString& text);
  void Note(const QString& text);

private:
  void WriteLine(const char* kind, const char* colour, const QString& text);

  Console& console;
  const CommonOptions& options;
};

} // namespace Orvex::Cli
