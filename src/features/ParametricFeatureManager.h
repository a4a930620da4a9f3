// The dependency graph of features: which feature is rebuilt by what, and which parameters and
// other features drive it.
//
// A feature is known by the key of its result label, a parameter by the key of its own label; see
// MakeLabelKey. Creators and operations register what they make; the manager stores it.
//
// Caveat: for one thread at a time; only the first GetInstance is safe against a concurrent one.
#pragma once

#include "foundation/Export.h"

#include <TDF_Label.hxx>

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

class ORVEX_API ParametricFeatureManager
{
public:
  struct FeatureInfo
  {
    // Kind of feature: "Box", "Line", "Cut", ...
    std::string type;
    // Keys of the features that this one consumes.
    std::vector<std::string> featureDependencies;
    // Keys of the parameter labels that drive this feature.
    std::vector<std::string> paramDependencies;
    // Key of the result label.
    std::string key;
    // Parameter name, the text on the parameter's label, to the key of that label.
    std::unordered_map<std::string, std::string> paramLabels;
    // Makes the feature's shape again; false tells that it could not.
    std::function<bool()> rebuild;
  };

  // The one manager, made on first use. The first call reads TARVEL_ENABLE_PARAMETRIC: exactly "0"
  // switches the manager off, anything else leaves it on.
  static ParametricFeatureManager& GetInstance();

  // The master switch. While it is off, only boxes, cylinders and spheres register themselves.
  bool IsEnabled() const;

  // The text of TDF_Tool::Entry, "0:1:1:3"; "__null_label__" for a null label.
  static std::string MakeLabelKey(const TDF_Label& label);

  // Enters a feature under the label's key, replacing an earlier one, and its edges. Edges of the
  // replaced one stay. Does not ask whether the manager is enabled.
  // Cost: linear in the consumers of each dependency.
  void RegisterFeature(const TDF_Label& label, const FeatureInfo& info);

  // The feature registered under a key, null if there is none. Valid until the next registration.
  const FeatureInfo* FindFeature(const std::string& key) const;

  // Keys of the features that a parameter drives directly, and of those that consume a feature
  // directly, in order of registration.
  std::vector<std::string> DependentsOfParameter(const std::string& parameterKey) const;
  std::vector<std::string> DependentsOfFeature(const std::string& featureKey) const;

private:
  ParametricFeatureManager() = default;

  void ensureEnvInit();
  void addFeatureDependents(const std::string& dependency, const std::string& feature);
  void addParamDependents(const std::string& parameter, const std::string& feature);

  bool enabled = true;
  bool envChecked = false;
  std::unordered_map<std::string, FeatureInfo> features;
  std::unordered_map<std::string, std::vector<std::string>> paramDependents;
  std::unordered_map<std::string, std::vector<std::string>> featureDependents;
};
