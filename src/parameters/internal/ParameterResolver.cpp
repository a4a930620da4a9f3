#include "parameters/internal/ParameterResolver.h"

#include "parameters/ExpressionEngine.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <algorithm>
#include <map>
#include <string>

namespace Orvex {

namespace {

QStringList ReferencesOf(const ParametersDef& record)
{
  if (!record.expression.empty())
    return record.expressionParameters.split(QLatin1Char(','), Qt::KeepEmptyParts,
                                             Qt::CaseSensitive);
  const QString text = record.valueText.trimmed();
  bool isNumber = false;
  text.toDouble(&isNumber);
  return isNumber ? QStringList() : QStringList(text);
}

const ParametersDef* FindParameter(const QString& name)
{
  const auto& table = GlobalParaMeterMgr::GetAllParameters();
  const auto found = table.find(name);
  return found == table.end() ? nullptr : &found->second;
}

bool IsReal(const ParametersDef* record)
{
  return record != nullptr && record->type == eREAL_PARAMETER;
}

} // namespace

double ParameterResolver::ValueOf(const ParametersDef& record)
{
  Node& asked = Visit(record);
  while (!path.empty()) {
    Node& node = *path.back();
    if (node.nextReference < node.references.size())
      Advance(node);
    else
      Leave(node);
  }
  return asked.value;
}

double ParameterResolver::ValueOf(const QString& text)
{
  const QString trimmed = text.trimmed();
  bool isNumber = false;
  const double number = trimmed.toDouble(&isNumber);
  if (isNumber)
    return number;
  const ParametersDef* record = FindParameter(trimmed);
  return IsReal(record) ? ValueOf(*record) : ReferenceValue(trimmed);
}

ParameterResolver::Node& ParameterResolver::Visit(const ParametersDef& record)
{
  Node& node = nodes[&record];
  if (node.order != kUnseen)
    return node;
  node.record = &record;
  node.references = ReferencesOf(record);
  node.order = node.lowest = ++discovered;
  path.push_back(&node);
  component.push_back(&node);
  return node;
}

void ParameterResolver::Advance(Node& node)
{
  const ParametersDef* target = FindParameter(node.references[node.nextReference++]);
  if (!IsReal(target))
    return;
  // A parameter whose value stands has the greatest order and so changes nothing here.
  node.leadsToItself |= target == node.record;
  node.lowest = std::min(node.lowest, Visit(*target).order);
}

void ParameterResolver::Leave(Node& node)
{
  path.pop_back();
  if (!path.empty())
    path.back()->lowest = std::min(path.back()->lowest, node.lowest);
  if (node.lowest == node.order)
    CloseComponent(node);
}

void ParameterResolver::CloseComponent(Node& root)
{
  const bool isCycle = root.leadsToItself || component.back() != &root;
  if (!isCycle)
    root.value = Compute(root);
  Node* member = nullptr;
  do {
    member = component.back();
    component.pop_back();
    member->order = member->lowest = kDone;
  } while (member != &root);
}

double ParameterResolver::Compute(const Node& node)
{
  if (node.record->expression.empty())
    return node.references.isEmpty() ? node.record->valueText.trimmed().toDouble()
                                     : ReferenceValue(node.references.front());
  std::map<std::string, double> variables;
  for (const QString& name : node.references)
    variables[name.toStdString()] = ReferenceValue(name);
  return ExpressionEngine::CalculateExpress(node.record->expression, variables);
}

double ParameterResolver::ReferenceValue(const QString& name)
{
  const ParametersDef* record = FindParameter(name);
  if (record == nullptr)
    return 0.0;
  if (IsReal(record))
    return nodes.at(record).value;
  // A vector is no number, and asking for its value would lead back here.
  return record->type == eBOOLEAN_PARAMETER
           ? GlobalParaMeterMgr::GetParameterRawValue(name).toDouble()
           : 0.0;
}

} // namespace Orvex
