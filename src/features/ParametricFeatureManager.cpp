#include "features/ParametricFeatureManager.h"

#include <TCollection_AsciiString.hxx>
#include <TDF_Tool.hxx>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using DependentsMap = std::unordered_map<std::string, std::vector<std::string>>;

void AddEdge(DependentsMap& dependents, const std::string& source, const std::string& feature)
{
  if (source.empty())
    return;
  auto& list = dependents[source];
  if (std::find(list.begin(), list.end(), feature) == list.end())
    list.push_back(feature);
}

std::vector<std::string> DependentsOf(const DependentsMap& dependents, const std::string& source)
{
  const auto found = dependents.find(source);
  return found == dependents.end() ? std::vector<std::string>() : found->second;
}

} // namespace

ParametricFeatureManager& ParametricFeatureManager::GetInstance()
{
  // Set up inside the initialiser, so that two first calls at once see it done.
  static ParametricFeatureManager& manager = []() -> ParametricFeatureManager& {
    auto* made = new ParametricFeatureManager();
    made->ensureEnvInit();
    return *made;
  }();
  return manager;
}

void ParametricFeatureManager::ensureEnvInit()
{
  if (envChecked)
    return;
  envChecked = true;
  const char* value = std::getenv("TARVEL_ENABLE_PARAMETRIC");
  enabled = value == nullptr || std::strcmp(value, "0") != 0;
}

bool ParametricFeatureManager::IsEnabled() const
{
  return enabled;
}

std::string ParametricFeatureManager::MakeLabelKey(const TDF_Label& label)
{
  if (label.IsNull())
    return "__null_label__";
  TCollection_AsciiString entry;
  TDF_Tool::Entry(label, entry);
  return entry.ToCString();
}

void ParametricFeatureManager::RegisterFeature(const TDF_Label& label, const FeatureInfo& info)
{
  ensureEnvInit();
  std::string key = MakeLabelKey(label);
  if (key.empty())
    key = info.key;
  features[key] = info;
  for (const std::string& parameter : info.paramDependencies)
    addParamDependents(parameter, key);
  for (const std::string& feature : info.featureDependencies)
    addFeatureDependents(feature, key);
}

void ParametricFeatureManager::addFeatureDependents(const std::string& dependency,
                                                    const std::string& feature)
{
  AddEdge(featureDependents, dependency, feature);
}

void ParametricFeatureManager::addParamDependents(const std::string& parameter,
                                                  const std::string& feature)
{
  AddEdge(paramDependents, parameter, feature);
}

const ParametricFeatureManager::FeatureInfo*
ParametricFeatureManager::FindFeature(const std::string& key) const
{
  const auto found = features.find(key);
  return found == features.end() ? nullptr : &found->second;
}

std::vector<std::string>
ParametricFeatureManager::DependentsOfParameter(const std::string& parameterKey) const
{
  return DependentsOf(paramDependents, parameterKey);
}

std::vector<std::string>
ParametricFeatureManager::DependentsOfFeature(const std::string& featureKey) const
{
  return DependentsOf(featureDependents, featureKey);
}
