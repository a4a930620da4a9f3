#include "features/internal/FeatureMeta.h"

#include "document/LabelScheme.h"
#include "features/internal/FeatureRelations.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Orvex {

namespace {

constexpr int kFeatureTypeTag = 1;
constexpr int kFeatureParametersTag = 2;

TCollection_AsciiString TextOnChild(const TDF_Label& meta, int tag)
{
  const TDF_Label child = meta.FindChild(tag, false);
  return child.IsNull() ? TCollection_AsciiString() : NameOf(child).value_or("");
}

QByteArray EncodedParameters(FeatureParameters parameters)
{
  parameters.remove(kSourceBrepKey);
  return QJsonDocument(QJsonObject::fromVariantMap(parameters)).toJson(QJsonDocument::Compact);
}

} // namespace

void PersistMetaToLabel(const TDF_Label& label, const std::string& type,
                        const FeatureParameters& parameters)
{
  if (label.IsNull())
    return;
  const TDF_Label meta = label.FindChild(kFeatureMetaTag, true);
  SetName(meta.FindChild(kFeatureTypeTag, true), type.c_str());
  SetName(meta.FindChild(kFeatureParametersTag, true), EncodedParameters(parameters).constData());
}

bool RestoreMetaFromLabel(const TDF_Label& label, std::string& type, FeatureParameters& parameters)
{
  if (label.IsNull())
    return false;
  const TDF_Label meta = label.FindChild(kFeatureMetaTag, false);
  if (meta.IsNull())
    return false;
  const TCollection_AsciiString storedType = TextOnChild(meta, kFeatureTypeTag);
  if (storedType.IsEmpty())
    return false;
  type = storedType.ToCString();
  const TCollection_AsciiString json = TextOnChild(meta, kFeatureParametersTag);
  const QJsonDocument document =
    QJsonDocument::fromJson(QByteArray(json.ToCString(), json.Length()));
  if (document.isObject())
    parameters = document.object().toVariantMap();
  return true;
}

} // namespace Orvex
