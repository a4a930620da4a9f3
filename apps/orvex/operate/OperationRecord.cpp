#include "operate/OperationRecord.h"

#include "create/KindRecord.h"
#include "frame/Text.h"

#include <QJsonArray>

namespace Orvex::Cli {

namespace {

QJsonObject OptionJson(const OperationOption& option)
{
  QJsonObject json = FieldJson(option.field);
  if (*option.help != '\0')
    json.insert("help", option.help);
  if (option.words.empty())
    return json;
  QStringList words;
  for (const char* word : option.words)
    words.append(TextFromBytes(word));
  json.insert("type", "word");
  json.insert("form", words.join(u'|'));
  json.insert("words", QJsonArray::fromStringList(words));
  json.remove("range");
  if (option.field.preset)
    json.insert("default", words.at(std::get<int>(*option.field.preset)));
  return json;
}

QString InputsText(const QJsonObject& operation)
{
  const int fewest = operation.value("fewestInputs").toInt();
  const QJsonValue most = operation.value("mostInputs");
  QString count = QString::number(fewest);
  if (most.isNull())
    count += QStringLiteral(" or more");
  else if (most.toInt() != fewest)
    count += QStringLiteral(" to %1").arg(most.toInt());
  const QString inputs = operation.value("inputs").toString();
  return inputs.isEmpty() ? QStringLiteral("none") : count + QStringLiteral(": ") + inputs;
}

} // namespace

QJsonObject OperationJson(const Operation& operation)
{
  QJsonArray options;
  for (const OperationOption& option : operation.options)
    options.append(OptionJson(option));
  const bool anyNumber = operation.mostInputs == Operation::kAnyNumber;
  return {{"operation", operation.name},
          {"summary", operation.summary},
          {"inputs", operation.inputs},
          {"fewestInputs", operation.fewestInputs},
          {"mostInputs", anyNumber ? QJsonValue() : QJsonValue(operation.mostInputs)},
          {"givesShape", operation.givesShape},
          {"options", options}};
}

QString OperationText(const QJsonObject& operation)
{
  QJsonArray options = operation.value("options").toArray();
  for (QJsonValueRef option : options)
    if (option.toObject().contains("words")) {
      QJsonObject shown = option.toObject();
      shown.insert("type", shown.value("form"));
      option = shown;
    }
  return QStringLiteral("%1: %2\n  INPUT  %3\n")
           .arg(operation.value("operation").toString(), operation.value("summary").toString(),
                InputsText(operation)) +
         FieldsText(options);
}

} // namespace Orvex::Cli
