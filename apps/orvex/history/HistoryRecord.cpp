#include "history/HistoryRecord.h"

#include "creators/ShapeKind.h"
#include "document/LabelScheme.h"
#include "features/FeatureHistoryManager.h"
#include "features/ParametricFeatureManager.h"
#include "frame/Text.h"
#include "model/ParameterRecord.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace Orvex::Cli {

namespace {

const QString kSourceKey = QStringLiteral("sourceBrep");

QJsonArray InputsJson(const FeatureHistoryItem& item)
{
  const FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  QJsonArray inputs;
  for (const TDF_Label& label : item.inputs) {
    const FeatureHistoryItem* provider = history.GetFeatureByLabel(label);
    inputs.append(
      QJsonObject{{"label", TextFromBytes(EntryOf(label))},
                  {"name", provider == nullptr ? QString() : TextFromBytes(provider->name)}});
  }
  return inputs;
}

// The parameters of a parametric shape, each with the expression that it follows.
QJsonArray ShapeParametersJson(const TDF_Label& label)
{
  const auto code = ValidTypeOf(label);
  const ShapeKind* kind = code ? KindOfCode(*code) : nullptr;
  if (kind == nullptr)
    return {};
  QJsonArray parameters;
  for (const QJsonValue& parameter : ParametersJson(*kind, label)) {
    QJsonObject json = parameter.toObject();
    const std::string expression = ParametricFeatureManager::GetInstance().GetParamExpression(
      ChildByName(label, json.value("name").toString().toUtf8().constData()));
    if (!expression.empty())
      json.insert("expression", TextFromBytes(expression));
    parameters.append(json);
  }
  return parameters;
}

QJsonObject FeatureJson(const FeatureHistoryItem& item)
{
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  FeatureParameters parameters = item.parameters;
  parameters.remove(kSourceKey);
  return {{"id", item.id},
          {"type", TextFromBytes(item.type)},
          {"name", TextFromBytes(item.name)},
          {"label", TextFromBytes(EntryOf(item.label))},
          {"shape", TextFromBytes(item.shapeType)},
          {"suppressed", history.IsFeatureDirectlySuppressed(item.id)},
          {"effectivelySuppressed", item.suppressed},
          {"inputs", InputsJson(item)},
          {"parameters", ShapeParametersJson(item.label)},
          {"settings", QJsonObject::fromVariantMap(parameters)}};
}

QString InputsText(const QJsonArray& inputs)
{
  QStringList names;
  for (const QJsonValue& input : inputs) {
    const QString name = input["name"].toString();
    names.append(name.isEmpty() ? input["label"].toString() : name);
  }
  return names.isEmpty() ? QString() : QStringLiteral("  of ") + names.join(QStringLiteral(", "));
}

QString SuppressionText(const QJsonObject& feature)
{
  if (feature.value("suppressed").toBool())
    return QStringLiteral("  (suppressed)");
  return feature.value("effectivelySuppressed").toBool()
           ? QStringLiteral("  (suppressed with its inputs)")
           : QString();
}

QString SettingsText(const QJsonObject& settings)
{
  QString text;
  for (auto it = settings.begin(); it != settings.end(); ++it) {
    const bool isPlain = !it.value().isArray() && !it.value().isObject();
    const QString value =
      isPlain ? it.value().toVariant().toString() : QStringLiteral("(see --json)");
    text += QStringLiteral("      %1  %2\n").arg(TerminalText(it.key()), TerminalText(value));
  }
  return text;
}

} // namespace

QJsonObject HistoryJson()
{
  QJsonArray features;
  for (const FeatureHistoryItem& item : FeatureHistoryManager::GetInstance().GetAllFeatures())
    features.append(FeatureJson(item));
  return {{"features", features}};
}

QString HistoryText(const QJsonObject& history)
{
  const QJsonArray features = history.value("features").toArray();
  QString text = features.isEmpty() ? QStringLiteral("no features\n") : QString();
  for (const QJsonValue& value : features) {
    const QJsonObject feature = value.toObject();
    text += QStringLiteral("%1  %2 \"%3\"%4  [%5]%6\n")
              .arg(feature.value("id").toInt(), 4)
              .arg(TerminalText(feature.value("type").toString()),
                   TerminalText(feature.value("name").toString()),
                   TerminalText(InputsText(feature.value("inputs").toArray())),
                   feature.value("label").toString(), SuppressionText(feature));
    text += ParametersText(feature.value("parameters").toArray(), QStringLiteral("      "));
    text += SettingsText(feature.value("settings").toObject());
  }
  return text;
}

} // namespace Orvex::Cli
