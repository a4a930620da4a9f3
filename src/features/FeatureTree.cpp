#include "features/FeatureTree.h"

#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"
#include "features/ParametricFeatureManager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <TDataStd_AsciiString.hxx>

#include <algorithm>
#include <limits>

namespace Orvex {

namespace {

constexpr int kTreeRecordTag = 3;

TDF_Label RecordLabel(const TDF_Label& label, bool create)
{
  const TDF_Label meta = label.FindChild(kFeatureMetaTag, create);
  return meta.IsNull() ? meta : meta.FindChild(kTreeRecordTag, create);
}

QJsonObject ExpressionsOf(const TDF_Label& label)
{
  QJsonObject expressions;
  VisitChildren(label, [&](const TDF_Label& child) {
    const auto name = NameOf(child);
    const std::string text = ParametricFeatureManager::GetInstance().GetParamExpression(child);
    if (name && !text.empty())
      expressions.insert(QString::fromUtf8(name->ToCString()), QString::fromStdString(text));
    return false;
  });
  return expressions;
}

QJsonObject RecordOf(const FeatureHistoryItem& item)
{
  QJsonArray inputs;
  for (const TDF_Label& input : item.inputs)
    inputs.append(QString::fromStdString(EntryOf(input)));
  QJsonObject record{{"order", item.order},
                     {"type", QString::fromStdString(item.type)},
                     {"name", QString::fromStdString(item.name)},
                     {"inputs", inputs},
                     {"suppressed", item.suppressed}};
  if (const QJsonObject expressions = ExpressionsOf(item.label); !expressions.isEmpty())
    record.insert("expressions", expressions);
  return record;
}

QJsonObject StoredRecord(const TDF_Label& label)
{
  const auto text = NameOf(RecordLabel(label, false));
  return text ? QJsonDocument::fromJson(QByteArray(text->ToCString(), text->Length())).object()
              : QJsonObject();
}

std::vector<TDF_Label> InputsOf(const QJsonObject& record,
                                const Handle(TDocStd_Document) & document)
{
  std::vector<TDF_Label> inputs;
  for (const QJsonValue& entry : record.value("inputs").toArray())
    inputs.push_back(LabelOfEntry(document, entry.toString().toStdString()));
  return inputs;
}

void RestoreItem(const TDF_Label& label, const QJsonObject& record,
                 const Handle(TDocStd_Document) & document)
{
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  const std::string type = record.value("type").toString().toStdString();
  const std::string name = record.value("name").toString().toStdString();
  std::vector<TDF_Label> inputs = InputsOf(record, document);
  if (!history.UpsertFeature(type, name, label, inputs)) {
    const auto comesLater = [&](const TDF_Label& input) {
      return !history.UpsertFeature(type, name, label, {input});
    };
    std::erase_if(inputs, comesLater);
    history.UpsertFeature(type, name, label, inputs);
  }
  history.GetFeatureByLabel(label)->suppressed = record.value("suppressed").toBool();
}

void RestoreExpressions(const TDF_Label& label, const QJsonObject& record)
{
  const QJsonObject expressions = record.value("expressions").toObject();
  for (auto it = expressions.begin(); it != expressions.end(); ++it)
    ParametricFeatureManager::GetInstance().SetParamExpressionRaw(
      ChildByName(label, it.key().toUtf8().constData()), it.value().toString().toStdString());
}

struct StoredItem
{
  TDF_Label label;
  QJsonObject record;

  int Order() const
  {
    constexpr int kLast = std::numeric_limits<int>::max();
    return record.value("order").toInt(kLast);
  }
};

std::vector<StoredItem> StoredItems()
{
  std::vector<StoredItem> stored;
  for (const TDF_Label& label : ShapeLabelMgr::GetInstance()->GetAllShapeLabes())
    stored.push_back({label, StoredRecord(label)});
  std::stable_sort(stored.begin(), stored.end(), [](const auto& left, const auto& right) {
    return left.Order() < right.Order();
  });
  return stored;
}

} // namespace

void StoreFeatureTree()
{
  const auto document = ShapeDocMgr::GetInstance()->GetDoc();
  if (document.IsNull())
    return;
  DocumentCommand command(document);
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  for (const TDF_Label& label : ShapeLabelMgr::GetInstance()->GetAllShapeLabes()) {
    const FeatureHistoryItem* item = history.GetFeatureByLabel(label);
    if (item != nullptr)
      SetName(RecordLabel(label, true),
              QJsonDocument(RecordOf(*item)).toJson(QJsonDocument::Compact).constData());
    else if (const TDF_Label record = RecordLabel(label, false); !record.IsNull())
      record.ForgetAttribute(TDataStd_AsciiString::GetID());
  }
  command.Commit();
}

void RestoreFeatureTree()
{
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  history.RebuildFromLabels({});
  const auto document = ShapeDocMgr::GetInstance()->GetDoc();
  if (document.IsNull())
    return;
  const std::vector<StoredItem> stored = StoredItems();
  std::vector<TDF_Label> labels;
  for (const StoredItem& item : stored)
    labels.push_back(item.label);
  history.RebuildFromLabels(labels);
  for (const StoredItem& item : stored) {
    if (item.record.value("type").isString())
      RestoreItem(item.label, item.record, document);
    RestoreExpressions(item.label, item.record);
  }
}

} // namespace Orvex
