#include "features/ParametricFeatureManager.h"

#include "document/LabelScheme.h"
#include "features/internal/SharedCallable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using DependentsMap = std::unordered_map<std::string, std::vector<std::string>>;

bool Contains(const std::vector<std::string>& list, const std::string& key)
{
  return std::find(list.begin(), list.end(), key) != list.end();
}

// Edges of the feature's earlier registration stand already; without one, an edge can only stand
// as the last of its list. So hundreds of thousands of consumers of one feature cost no search.
void AddEdges(DependentsMap& dependents, const std::vector<std::string>& sources,
              const std::vector<std::string>* earlierSources, const std::string& feature)
{
  for (const std::string& source : sources) {
    if (source.empty() || (earlierSources != nullptr && Contains(*earlierSources, source)))
      continue;
    auto& list = dependents[source];
    const bool known =
      earlierSources != nullptr ? Contains(list, feature) : !list.empty() && list.back() == feature;
    if (!known)
      list.push_back(feature);
  }
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
  return label.IsNull() ? std::string("__null_label__") : Orvex::EntryOf(label);
}

void ParametricFeatureManager::RegisterFeature(const TDF_Label& label, const FeatureInfo& info)
{
  ensureEnvInit();
  std::string key = MakeLabelKey(label);
  if (key.empty())
    key = info.key;
  const auto earlier = features.find(key);
  const bool isNew = earlier == features.end();
  AddEdges(paramDependents, info.paramDependencies,
           isNew ? nullptr : &earlier->second.paramDependencies, key);
  AddEdges(featureDependents, info.featureDependencies,
           isNew ? nullptr : &earlier->second.featureDependencies, key);
  FeatureInfo& registered = features[key] = info;
  registered.rebuild = Orvex::Shared(std::move(registered.rebuild));
}

void ParametricFeatureManager::SetEnabled(bool on)
{
  const bool switchedOn = on && !enabled;
  enabled = on;
  if (switchedOn)
    rebuildDependenciesFromHistory();
}

const ParametricFeatureManager::FeatureInfo*
ParametricFeatureManager::FindFeature(const std::string& key) const
{
  const auto found = features.find(key);
  return found == features.end() ? nullptr : &found->second;
}

std::vector<std::string> ParametricFeatureManager::RegisteredFeatureKeys() const
{
  std::vector<std::string> keys;
  keys.reserve(features.size());
  for (const auto& [key, info] : features)
    keys.push_back(key);
  return keys;
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

void ParametricFeatureManager::ClearRegisteredState()
{
  features = {};
  paramExpressions = {};
  paramDependents = {};
  featureDependents = {};
  dirtyFeatures = {};
  ClearLastRebuildTrace();
  pendingParametricTransaction = false;
}
