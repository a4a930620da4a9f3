#include "frame/Session.h"

#include "frame/Text.h"

#include <QJsonDocument>

namespace Orvex::Cli {

namespace {

constexpr const char* kRed = "\x1b[31m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kPlain = "\x1b[0m";

} // namespace

Session::Session(Console& console_, const CommonOptions& options_)
    : console(console_), options(options_)
{}

const CommonOptions& Session::Options() const
{
  return options;
}

Console& Session::Streams()
{
  return console;
}

void Session::Result(const QString& text)
{
  console.WriteResult(text.toUtf8());
}

void Session::Result(const QJsonObject& object)
{
  console.WriteResult(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

void Session::Report(const Failure& failure)
{
  WriteLine("error", kRed, FailureLine(failure));
}

void Session::Warn(const QString& text)
{
  if (!options.quiet)
    WriteLine("warning", kYellow, TerminalText(text));
}

void Session::Note(const QString& text)
{
  if (options.verbose)
    WriteLine("note", "", TerminalText(text));
}

void Session::WriteLine(const char* kind, const char* colour, const QString& text)
{
  const bool coloured = *colour != '\0' && console.ColouredMessages();
  const QString label = coloured ? QStringLiteral("%1%2:%3").arg(colour, kind, kPlain)
                                 : QStringLiteral("%1:").arg(kind);
  console.WriteMessage(QStringLiteral("orvex: %1 %2\n").arg(label, text).toUtf8());
}

} // namespace Orvex::Cli
