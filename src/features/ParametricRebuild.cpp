// Marking and rebuild of the dependency graph.
#include "features/ParametricFeatureManager.h"

#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "features/internal/DirtyOrder.h"
#include "parameters/ExpressionEngine.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <deque>
#include <iostream>
#include <map>
#include <optional>

namespace {

Handle(TDocStd_Document) CurrentDocument()
{
  return ShapeDocMgr::GetInstance()->GetDoc();
}

// The feature's own parameters hide global ones of the same name.
std::map<std::string, double> VariablesOf(const ParametricFeatureManager::FeatureInfo& info,
                                          const Handle(TDocStd_Document) & document)
{
  std::map<std::string, double> variables;
  for (const auto& [name, key] : info.paramLabels)
    if (const auto value = Orvex::RealOf(Orvex::LabelOfEntry(document, key)))
      variables[name] = *value;
  for (const QString& global : GlobalParaMeterMgr::GetAllParametersName()) {
    const std::string name = global.toStdString();
    if (variables.count(name) == 0)
      variables[name] = GlobalParaMeterMgr::GetParameterRawValue(global).toDouble();
  }
  return variables;
}

} // namespace

bool ParametricFeatureManager::enqueueDirtyFeature(const std::string& key)
{
  return !key.empty() && dirtyFeatures.insert(key).second;
}

void ParametricFeatureManager::propagateDirty(const std::string& key)
{
  std::deque<std::string> queue{key};
  while (!queue.empty()) {
    const auto found = featureDependents.find(queue.front());
    queue.pop_front();
    if (found == featureDependents.end())
      continue;
    for (const std::string& dependent : found->second)
      if (enqueueDirtyFeature(dependent))
        queue.push_back(dependent);
  }
}

void ParametricFeatureManager::MarkDirty(const std::string& key)
{
  if (!enabled || key.empty())
    return;
  enqueueDirtyFeature(key);
  propagateDirty(key);
}

void ParametricFeatureManager::MarkDirtyFromParam(const TDF_Label& parameter)
{
  if (parameter.IsNull())
    return;
  const auto users = paramDependents.find(MakeLabelKey(parameter));
  if (users == paramDependents.end())
    return;
  for (const std::string& user : users->second)
    MarkDirty(user);
}

void ParametricFeatureManager::RecomputeAllDirty(bool withTransaction)
{
  ClearLastRebuildTrace();
  pendingParametricTransaction = false;
  if (!enabled || dirtyFeatures.empty())
    return;
  std::optional<Orvex::DocumentCommand> command;
  if (withTransaction)
    command.emplace(CurrentDocument());
  const std::vector<std::string> order = Orvex::OrderOfDirty(dirtyFeatures, featureDependents);
  recordOldShapes(order);
  rebuildInOrder(order);
  if (command)
    pendingParametricTransaction = command->Commit();
  // Assigned, not cleared: clearing would cost the largest set that there ever was.
  dirtyFeatures = {};
}

void ParametricFeatureManager::recordOldShapes(const std::vector<std::string>& order)
{
  const auto document = CurrentDocument();
  if (document.IsNull() || XCAFDoc_DocumentTool::ShapeTool(document->Main()).IsNull())
    return;
  for (const std::string& key : order) {
    const std::string& entry = traceKey(key);
    const TDF_Label label = Orvex::LabelOfEntry(document, entry);
    const TopoDS_Shape shape = label.IsNull() ? TopoDS_Shape() : XCAFDoc_ShapeTool::GetShape(label);
    if (!shape.IsNull())
      oldTShapeHandles[entry] = reinterpret_cast<unsigned long long>(shape.TShape().get());
  }
}

void ParametricFeatureManager::rebuildInOrder(const std::vector<std::string>& order)
{
  for (const std::string& key : order)
    if (rebuildFeature(key))
      lastRebuiltFeatureKeys.push_back(traceKey(key));
}

const std::string& ParametricFeatureManager::traceKey(const std::string& key) const
{
  const FeatureInfo* info = FindFeature(key);
  return info == nullptr || info->key.empty() ? key : info->key;
}

bool ParametricFeatureManager::rebuildFeature(const std::string& key)
{
  const auto found = features.find(key);
  if (found == features.end() || !found->second.rebuild)
    return false;
  // A copy: a rebuild that registers its feature anew must not pull its own ground away.
  const std::function<bool()> rebuild = found->second.rebuild;
  try {
    applyExpressions(found->second);
    return rebuild();
  } catch (...) {
    std::cerr << "ParametricFeatureManager: exception during rebuild for feature " << key
              << std::endl;
    return false;
  }
}

bool ParametricFeatureManager::hasExpression(const FeatureInfo& info) const
{
  return !paramExpressions.empty() &&
         std::any_of(info.paramLabels.begin(), info.paramLabels.end(), [this](const auto& label) {
           return paramExpressions.count(label.second) != 0;
         });
}

void ParametricFeatureManager::applyExpressions(const FeatureInfo& info)
{
  const auto document = CurrentDocument();
  if (document.IsNull() || !hasExpression(info))
    return;
  std::map<std::string, double> variables = VariablesOf(info, document);
  for (const auto& [name, key] : info.paramLabels) {
    const auto expression = paramExpressions.find(key);
    const TDF_Label label = Orvex::LabelOfEntry(document, key);
    if (expression == paramExpressions.end() || label.IsNull())
      continue;
    double result = 0.0;
    if (ExpressionEngine::TryCalculateExpress(expression->second, variables, result))
      Orvex::SetReal(label, result);
    else if (!Orvex::RealOf(label))
      Orvex::SetReal(label, 0.0);
  }
}

bool ParametricFeatureManager::EvaluateExpression(const std::string& featureKey,
                                                  const std::string& expression,
                                                  double& result) const
{
  const auto document = CurrentDocument();
  const FeatureInfo* info = FindFeature(featureKey);
  if (document.IsNull() || info == nullptr)
    return false;
  std::map<std::string, double> variables = VariablesOf(*info, document);
  return ExpressionEngine::TryCalculateExpress(expression, variables, result);
}

void ParametricFeatureManager::RecomputeAllRegisteredFeatures(bool withTransaction)
{
  if (!enabled)
    return;
  if (features.empty())
    rebuildDependenciesFromHistory();
  for (const auto& [key, info] : features)
    enqueueDirtyFeature(key);
  RecomputeAllDirty(withTransaction);
}

void ParametricFeatureManager::SetParamValue(const TDF_Label& parameter, double value)
{
  if (enabled && !parameter.IsNull())
    changeParameter(parameter, [&] { Orvex::SetReal(parameter, value); });
}

void ParametricFeatureManager::SetParamExpression(const TDF_Label& parameter,
                                                  const std::string& expression)
{
  if (enabled && !parameter.IsNull())
    changeParameter(parameter, [&] { SetParamExpressionRaw(parameter, expression); });
}

// The change and what follows from it are one undo step.
void ParametricFeatureManager::changeParameter(const TDF_Label& parameter,
                                               const std::function<void()>& change)
{
  Orvex::DocumentCommand command(CurrentDocument());
  change();
  MarkDirtyFromParam(parameter);
  const bool rebuilds = !dirtyFeatures.empty();
  RecomputeAllDirty(true);
  pendingParametricTransaction = command.Commit() && rebuilds;
}

void ParametricFeatureManager::SetParamExpressionRaw(const TDF_Label& parameter,
                                                     const std::string& expression)
{
  if (parameter.IsNull())
    return;
  if (expression.empty())
    paramExpressions.erase(MakeLabelKey(parameter));
  else
    paramExpressions[MakeLabelKey(parameter)] = expression;
}

std::string ParametricFeatureManager::GetParamExpression(const TDF_Label& parameter) const
{
  if (parameter.IsNull())
    return {};
  const auto found = paramExpressions.find(MakeLabelKey(parameter));
  return found == paramExpressions.end() ? std::string() : found->second;
}

std::vector<std::string> ParametricFeatureManager::GetLastRebuiltFeatureKeys() const
{
  return lastRebuiltFeatureKeys;
}

std::unordered_map<std::string, unsigned long long>
ParametricFeatureManager::GetOldTShapeHandles() const
{
  return oldTShapeHandles;
}

void ParametricFeatureManager::ClearLastRebuildTrace()
{
  lastRebuiltFeatureKeys = {};
  oldTShapeHandles = {};
}

bool ParametricFeatureManager::HasPendingParametricTransaction() const
{
  return pendingParametricTransaction;
}

void ParametricFeatureManager::ClearPendingParametricTransaction()
{
  pendingParametricTransaction = false;
}
