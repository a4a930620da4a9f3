#include "model/ParameterRecord.h"

#include "creators/KindShapeParaCreator.h"
#include "frame/Text.h"
#include "model/ShapeRecord.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <memory>

namespace Orvex::Cli {

namespace {

struct TypeRow
{
  const char* word;
  const char* form;
};

// In the order of the alternatives of ParameterValue.
constexpr std::array kTypes = {
  TypeRow{"point", "finite x,y,z"},
  TypeRow{"direction", "finite x,y,z, not 0,0,0"},
  TypeRow{"vector", "finite x,y,z, not 0,0,0"},
  TypeRow{"real", "a number"},
  TypeRow{"integer", "a whole number"},
  TypeRow{"shape", "path of a .brep or .step file"},
  TypeRow{"points", "finite x,y,z;x,y,z;..."},
};
static_assert(kTypes.size() == std::variant_size_v<ParameterValue>);

QJsonArray Triple(const gp_XYZ& xyz)
{
  return {xyz.X(), xyz.Y(), xyz.Z()};
}

struct ToJsonValue
{
  QJsonValue operator()(const gp_Pnt& point) const
  {
    return Triple(point.XYZ());
  }
  QJsonValue operator()(const gp_Dir& direction) const
  {
    return Triple(direction.XYZ());
  }
  QJsonValue operator()(const gp_Vec& vector) const
  {
    return Triple(vector.XYZ());
  }
  QJsonValue operator()(double real) const
  {
    return real;
  }
  QJsonValue operator()(int integer) const
  {
    return integer;
  }
  QJsonValue operator()(const TopoDS_Shape& shape) const
  {
    return shape.IsNull() ? QJsonValue() : QJsonValue(ShapeWord(shape));
  }
  QJsonValue operator()(const PointList& points) const
  {
    QJsonArray list;
    for (const gp_Pnt& point : points)
      list.append(Triple(point.XYZ()));
    return list;
  }
};

QJsonObject HeldJson(const HeldParameter& held)
{
  QJsonObject json{{"name", held.field->name},
                   {"type", TypeWord(held.field->initial)},
                   {"value", ValueJson(held.value)}};
  if (held.field->unit != Unit::None)
    json.insert("unit", UnitWord(held.field->unit));
  if (!held.reference.empty())
    json.insert("reference", TextFromBytes(held.reference));
  return json;
}

QString ParameterText(const QJsonObject& parameter)
{
  QString text = ValueText(parameter.value("value"));
  if (parameter.contains("unit"))
    text += u' ' + parameter.value("unit").toString();
  if (parameter.contains("reference"))
    text += QStringLiteral("  (follows %1)").arg(parameter.value("reference").toString());
  if (parameter.contains("expression"))
    text += QStringLiteral("  (= %1)").arg(parameter.value("expression").toString());
  return TerminalText(text);
}

} // namespace

QString TypeWord(const ParameterValue& value)
{
  return QLatin1String(kTypes[value.index()].word);
}

QString WrittenForm(const ParameterValue& value)
{
  return QLatin1String(kTypes[value.index()].form);
}

QString UnitWord(Unit unit)
{
  switch (unit) {
  case Unit::Length:
    return QStringLiteral("mm");
  case Unit::Degrees:
    return QStringLiteral("degrees");
  case Unit::Radians:
    return QStringLiteral("radians");
  default:
    return {};
  }
}

QJsonValue ValueJson(const ParameterValue& value)
{
  return std::visit(ToJsonValue(), value);
}

QString ValueText(const QJsonValue& value)
{
  if (value.isDouble())
    return Number(value.toDouble());
  if (!value.isArray())
    return value.isString() ? value.toString() : QStringLiteral("none");
  const QJsonArray list = value.toArray();
  QStringList texts;
  for (const QJsonValue& item : list)
    texts.append(ValueText(item));
  return texts.join(!list.isEmpty() && list.first().isArray() ? u';' : u',');
}

QJsonArray ParametersJson(const ShapeKind& kind, const TDF_Label& label)
{
  const std::unique_ptr<KindShapeParaCreator> creator(kind.make());
  QJsonArray json;
  for (const HeldParameter& held : creator->HeldParameters(label))
    json.append(HeldJson(held));
  return json;
}

QString ParametersText(const QJsonArray& parameters, const QString& indent)
{
  qsizetype width = 0;
  for (const QJsonValue& parameter : parameters)
    width = std::max(width, parameter["name"].toString().size());
  QString text;
  for (const QJsonValue& parameter : parameters)
    text += indent + parameter["name"].toString().leftJustified(width + 2) +
            ParameterText(parameter.toObject()) + u'\n';
  return text;
}

} // namespace Orvex::Cli
