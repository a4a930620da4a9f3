#include "frame/Failure.h"

#include "frame/Text.h"

#include <QStringList>
#include <Standard_Failure.hxx>
#include <Standard_Type.hxx>

#include <exception>
#include <new>
#include <string>

namespace Orvex::Cli {

namespace {

QString ReasonOf(const Standard_Failure& failure)
{
  const QString type = TextFromBytes(failure.DynamicType()->Name());
  const QString text = TextFromBytes(failure.GetMessageString());
  return text.isEmpty() ? type : type + QStringLiteral(": ") + text;
}

} // namespace

QString FailureLine(const Failure& failure)
{
  QStringList parts{failure.subject, failure.entity, failure.reason};
  parts.removeAll(QString());
  QString line = parts.join(QStringLiteral(": "));
  if (!failure.advice.isEmpty())
    line += QStringLiteral(" (%1)").arg(failure.advice);
  return TerminalText(line);
}

QJsonObject ToJson(const Failure& failure)
{
  return {{"code", static_cast<int>(failure.code)},
          {"entity", failure.entity},
          {"reason", failure.reason},
          {"advice", failure.advice}};
}

Failure FailureFromJson(const QJsonObject& json)
{
  Failure failure;
  failure.code = static_cast<ExitCode>(json.value("code").toInt());
  failure.entity = json.value("entity").toString();
  failure.reason = json.value("reason").toString();
  failure.advice = json.value("advice").toString();
  return failure;
}

Failure FailureOfCurrentException(ExitCode code, const QString& subject)
{
  Failure failure;
  failure.code = code;
  failure.subject = subject;
  try {
    throw;
  } catch (const Failure& thrown) {
    failure = thrown;
    if (failure.subject.isEmpty())
      failure.subject = subject;
  } catch (const Standard_Failure& thrown) {
    failure.reason = ReasonOf(thrown);
  } catch (const std::bad_alloc&) {
    failure.reason = QStringLiteral("out of memory");
  } catch (const std::exception& thrown) {
    failure.reason = TextFromBytes(thrown.what());
  } catch (const std::string& thrown) {
    failure.reason = TextFromBytes(thrown);
  } catch (...) {
    failure.reason = QStringLiteral("an unknown exception was thrown");
  }
  return failure;
}

} // namespace Orvex::Cli
