#include "parameters/GlobalParaMeterMgr.h"

#include "kernel/internal/FileReplacement.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <optional>

namespace {

// Keys of the file.
const QString kName = QStringLiteral("name");
const QString kType = QStringLiteral("type");
const QString kValue = QStringLiteral("value");
const QString kExpression = QStringLiteral("expression");
const QString kExpressionParameters = QStringLiteral("exprParams");
const QString kDescription = QStringLiteral("description");

bool Fail(QString* error, const char* text, const QString& path)
{
  if (error != nullptr)
    *error = QString::fromLatin1(text).arg(path);
  return false;
}

// Null if the file is too large or no JSON array.
std::optional<QJsonArray> ReadArray(QFile& file)
{
  if (file.size() > GlobalParaMeterMgr::kLargestFile)
    return std::nullopt;
  // A device has no size of its own: the limit holds for what comes as well.
  const QByteArray content = file.read(GlobalParaMeterMgr::kLargestFile + 1);
  const QJsonDocument document = QJsonDocument::fromJson(content);
  if (content.size() > GlobalParaMeterMgr::kLargestFile || !document.isArray())
    return std::nullopt;
  return document.array();
}

QVariant BooleanOf(const ParametersDef& definition)
{
  if (definition.valueVariant.isValid() && definition.valueVariant.canConvert<bool>())
    return definition.valueVariant.toBool();
  const QString text = definition.valueText.trimmed().toLower();
  if (text == QLatin1String("true") || text == QLatin1String("1"))
    return true;
  if (text == QLatin1String("false") || text == QLatin1String("0"))
    return false;
  return {};
}

QVariantList VectorOf(const ParametersDef& definition)
{
  double x = 0.0, y = 0.0, z = 0.0;
  definition.CalculateAndGetVectorlValue(x, y, z);
  return {x, y, z};
}

QJsonObject ToJson(const QString& name, const ParametersDef& definition)
{
  return {{kName, name},
          {kType, definition.type},
          {kValue, definition.valueText},
          {kExpression, QString::fromStdString(definition.expression)},
          {kExpressionParameters, definition.expressionParameters},
          {kDescription, definition.description}};
}

ParametersDef FromJson(const QJsonObject& object)
{
  ParametersDef definition;
  definition.name = object.value(kName).toString();
  definition.type = object.value(kType).toInt(eREAL_PARAMETER);
  definition.valueText = object.value(kValue).toString();
  definition.expression = object.value(kExpression).toString().toStdString();
  definition.expressionParameters = object.value(kExpressionParameters).toString();
  definition.description = object.value(kDescription).toString();
  return definition;
}

} // namespace

GlobalParaMeterMgr::Table GlobalParaMeterMgr::m_nameMapParameters;

void GlobalParaMeterMgr::AddParameter(QString name, ParametersDef definition)
{
  m_nameMapParameters[name] = std::move(definition);
}

void GlobalParaMeterMgr::ClearAllParameters()
{
  m_nameMapParameters.clear();
}

GlobalParaMeterMgr::Table& GlobalParaMeterMgr::GetAllParameters()
{
  return m_nameMapParameters;
}

std::vector<QString> GlobalParaMeterMgr::GetAllParametersName()
{
  std::vector<QString> names;
  names.reserve(m_nameMapParameters.size());
  for (const auto& [name, definition] : m_nameMapParameters)
    names.push_back(name);
  return names;
}

QVariant GlobalParaMeterMgr::GetParameterRawValue(QString name)
{
  const auto found = m_nameMapParameters.find(name);
  if (found == m_nameMapParameters.end())
    return {};
  switch (found->second.type) {
  case eBOOLEAN_PARAMETER:
    return BooleanOf(found->second);
  case eREAL_PARAMETER:
    return found->second.CalculateAndGetRealValue();
  case eVECTOR_PARAMETER:
    return VectorOf(found->second);
  default:
    return {};
  }
}

bool GlobalParaMeterMgr::IsValidParaName(QString name)
{
  return m_nameMapParameters.find(name) != m_nameMapParameters.end();
}

bool GlobalParaMeterMgr::IsValidParaNameFormat(const QString& name)
{
  static const QRegularExpression format(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
  // An unanchored "$" would let a line end pass at the end of the name.
  const auto match = format.match(name);
  return match.hasMatch() && match.capturedLength() == name.size();
}

QString GlobalParaMeterMgr::SidecarPath(const QString& documentPath)
{
  const QFileInfo info(documentPath);
  return info.absolutePath() + QLatin1Char('/') + info.completeBaseName() +
         QLatin1String(".params.json");
}

bool GlobalParaMeterMgr::LoadFromFile(const QString& path, QString* error)
{
  QFile file(path);
  if (!file.exists())
    return true;
  if (!file.open(QIODevice::ReadOnly))
    return Fail(error, "Cannot read parameters file: %1", path);
  const auto array = ReadArray(file);
  if (!array)
    return Fail(error, "Invalid parameters file format: %1", path);
  m_nameMapParameters.clear();
  for (const QJsonValue& element : *array) {
    ParametersDef definition = FromJson(element.toObject());
    const QString name = definition.name;
    if (!name.isEmpty())
      AddParameter(name, std::move(definition));
  }
  return true;
}

bool GlobalParaMeterMgr::SaveToFile(const QString& path, QString* error)
{
  QJsonArray array;
  for (const auto& [name, definition] : m_nameMapParameters)
    array.append(ToJson(name, definition));
  const QByteArray content = QJsonDocument(array).toJson(QJsonDocument::Indented);
  const bool replaced = content.size() <= kLargestFile && Orvex::ReplaceFile(path, content);
  return replaced || Fail(error, "Cannot write parameters file: %1", path);
}
