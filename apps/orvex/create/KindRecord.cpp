#include "create/KindRecord.h"

#include "frame/Text.h"
#include "model/ParameterRecord.h"

#include <algorithm>
#include <cmath>

namespace Orvex::Cli {

namespace {

QJsonValue Bound(double value)
{
  return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

// A column of the table: as wide as its longest text.
QString Column(const QJsonArray& rows, const QJsonValue& row, const char* key)
{
  qsizetype width = 0;
  for (const QJsonValue& other : rows)
    width = std::max(width, other[QLatin1String(key)].toString().size());
  return width == 0
           ? QString()
           : row[QLatin1String(key)].toString().leftJustified(width) + QStringLiteral("  ");
}

QString FieldText(const QJsonArray& fields, const QJsonValue& field)
{
  const QString range = field["range"]["text"].toString();
  QString text =
    Column(fields, field, "name") + Column(fields, field, "type") + Column(fields, field, "unit");
  if (!range.isEmpty() && range != QStringLiteral("any"))
    text += range.leftJustified(12);
  if (const QJsonValue preset = field["default"]; !preset.isUndefined())
    text += QStringLiteral("default ") + ValueText(preset) + QStringLiteral("  ");
  if (const QString help = field["help"].toString(); !help.isEmpty())
    text += QStringLiteral("(%1)").arg(help);
  while (text.endsWith(u' '))
    text.chop(1);
  return text;
}

} // namespace

QJsonObject FieldJson(const ParameterField& field)
{
  QJsonObject json{{"name", field.name},
                   {"type", TypeWord(field.initial)},
                   {"form", WrittenForm(field.initial)},
                   {"range", QJsonObject{{"text", TextFromBytes(field.range.Text())},
                                         {"from", Bound(field.range.from)},
                                         {"fromExcluded", field.range.fromExcluded},
                                         {"to", Bound(field.range.to)}}}};
  if (field.unit != Unit::None)
    json.insert("unit", UnitWord(field.unit));
  if (field.preset)
    json.insert("default", ValueJson(*field.preset));
  return json;
}

QJsonObject KindJson(const ShapeKind& kind)
{
  QJsonArray fields;
  for (const ParameterField& field : kind.fields)
    fields.append(FieldJson(field));
  QJsonObject json{{"kind", kind.word}, {"typeCode", kind.typeCode}, {"parameters", fields}};
  if (kind.condition != nullptr)
    json.insert("condition", kind.condition);
  return json;
}

QString FieldsText(const QJsonArray& fields)
{
  QString text;
  for (const QJsonValue& field : fields)
    text += QStringLiteral("  ") + FieldText(fields, field) + u'\n';
  return text;
}

QString KindText(const QJsonObject& kind)
{
  QString text =
    kind.value("kind").toString() + u'\n' + FieldsText(kind.value("parameters").toArray());
  if (kind.contains("condition"))
    text += QStringLiteral("  (%1)\n").arg(kind.value("condition").toString());
  return text;
}

} // namespace Orvex::Cli
