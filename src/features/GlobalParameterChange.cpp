#include "features/GlobalParameterChange.h"

#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "features/ParametricFeatureManager.h"
#include "parameters/GlobalParaMeterMgr.h"

namespace Orvex {

namespace {

// Invalid for a parameter that follows nothing.
QVariant FollowedValue(const std::string& featureKey, const TDF_Label& parameter)
{
  if (parameter.IsNull())
    return {};
  const auto& manager = ParametricFeatureManager::GetInstance();
  if (const auto reference = ReferenceOf(parameter))
    return GlobalParaMeterMgr::GetParameterRawValue(QString::fromUtf8(reference->ToCString()));
  const std::string expression = manager.GetParamExpression(parameter);
  double value = 0.0;
  if (expression.empty() || !manager.EvaluateExpression(featureKey, expression, value))
    return {};
  return value;
}

} // namespace

GlobalParameterChange::GlobalParameterChange() : before(CurrentValues())
{}

void GlobalParameterChange::MarkDirty() const
{
  const Values after = CurrentValues();
  for (const auto& [place, value] : after) {
    const auto earlier = before.find(place);
    if (earlier == before.end() || earlier->second != value)
      ParametricFeatureManager::GetInstance().MarkDirty(place.first);
  }
  // What had a value and has none any more.
  for (const auto& [place, value] : before)
    if (after.count(place) == 0)
      ParametricFeatureManager::GetInstance().MarkDirty(place.first);
}

GlobalParameterChange::Values GlobalParameterChange::CurrentValues()
{
  Values values;
  const auto document = ShapeDocMgr::GetInstance()->GetDoc();
  if (document.IsNull())
    return values;
  const auto& manager = ParametricFeatureManager::GetInstance();
  for (const std::string& key : manager.RegisteredFeatureKeys()) {
    for (const auto& [name, parameterKey] : manager.FindFeature(key)->paramLabels) {
      QVariant value = FollowedValue(key, LabelOfEntry(document, parameterKey));
      if (value.isValid())
        values.emplace(std::pair(key, name), std::move(value));
    }
  }
  return values;
}

} // namespace Orvex
