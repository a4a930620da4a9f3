// The dependency graph of features: which parameters and which other features drive a feature, and
// the rebuild of what a change made stale.
//
// A feature is known by the key of its result label, a parameter by the key of its own label; see
// MakeLabelKey. Creators and operations register what they make; for a document that was opened the
// graph is filled from the feature history. A change marks the users of a parameter and all that is
// downstream of them as dirty; the dirty ones are rebuilt in order, each once.
//
//   auto& graph = ParametricFeatureManager::GetInstance();
//   graph.SetParamValue(lengthLabel, 25);                          // one change, one undo step
//
//   graph.SetParamExpressionRaw(lengthLabel, "2*width");            // or several in one
//   graph.SetParamExpressionRaw(heightLabel, "width+5");
//   graph.MarkDirtyFromParam(lengthLabel);
//   graph.MarkDirtyFromParam(heightLabel);
//   graph.RecomputeAllDirty(true);
//
// Order: a feature comes after all that it consumes. Features that stand equally far down come in
// the order of their labels. Features on a cycle and what depends on them are not rebuilt.
//
// Undo: the value, the results of expressions and the shapes are one step. A command that is open
// already is joined and left open.
//
// Expressions see the feature's own parameters that hold a number, then the global ones; see
// ExpressionEngine for names with blanks. Results come one pass later to the other expressions of
// the same feature. Expressions are not part of the document.
//
// Caveats:
// - The graph does not follow a change of document; call ClearRegisteredState with it. Rebuild
//   functions hold labels, which end with their document.
// - While the manager is switched off it takes registrations and raw expressions, and does nothing
//   else.
// - A rebuild function must not recompute, clear or register other features.
// - For one thread at a time; only the first GetInstance is safe against a concurrent one.
#pragma once

#include "foundation/Export.h"

#include <TDF_Label.hxx>

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
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

  // Switching on what was off fills the graph from the feature history.
  void SetEnabled(bool on);

  // The text of TDF_Tool::Entry, "0:1:1:3"; "__null_label__" for a null label.
  static std::string MakeLabelKey(const TDF_Label& label);

  // Enters a feature under the label's key, replacing an earlier one, and its edges. Edges of the
  // replaced one stay. Does not ask whether the manager is enabled.
  // Cost: linear in its own dependencies; for a feature whose dependencies changed, also in the
  //   consumers of the new ones.
  void RegisterFeature(const TDF_Label& label, const FeatureInfo& info);

  // The feature registered under a key, null if there is none. Valid until the next registration.
  const FeatureInfo* FindFeature(const std::string& key) const;

  // In no particular order.
  std::vector<std::string> RegisteredFeatureKeys() const;

  // Keys of the features that a parameter drives directly, and of those that consume a feature
  // directly, in order of registration.
  std::vector<std::string> DependentsOfParameter(const std::string& parameterKey) const;
  std::vector<std::string> DependentsOfFeature(const std::string& featureKey) const;

  // --- Marking ---

  // The key and all features downstream of it. Nothing for an empty key.
  // Cost: linear in what gets dirty.
  void MarkDirty(const std::string& key);

  // The features that use the parameter, and all downstream of them.
  void MarkDirtyFromParam(const TDF_Label& parameter);

  // --- Rebuild ---

  // Rebuilds what is dirty, in one document command if asked to. A feature whose rebuild fails is
  // missing in the trace; it stops nothing, and its consumers are rebuilt from its old shape. What
  // a rebuild function throws is reported on standard error and counts as a failure.
  // Cost: n log n in what is dirty, and the rebuild functions.
  void RecomputeAllDirty(bool withTransaction);

  // Marks all registered features dirty first. An empty graph is filled from the history.
  void RecomputeAllRegisteredFeatures(bool withTransaction);

  // Set the TDataStd_Real of a parameter, or its expression, and rebuild what depends on it.
  // Nothing while the manager is off.
  void SetParamValue(const TDF_Label& parameter, double value);
  void SetParamExpression(const TDF_Label& parameter, const std::string& expression);

  // Only stores the expression; an empty one removes it.
  void SetParamExpressionRaw(const TDF_Label& parameter, const std::string& expression);
  std::string GetParamExpression(const TDF_Label& parameter) const;

  // What an expression on a parameter of the feature would give in a rebuild now.
  // Returns: false for an unknown feature, without a document, and where the expression fails.
  bool EvaluateExpression(const std::string& featureKey, const std::string& expression,
                          double& result) const;

  // --- What the last recompute did ---

  // Keys of the features that were rebuilt, in order.
  std::vector<std::string> GetLastRebuiltFeatureKeys() const;

  // The addresses of the TShapes that stood on the labels before, by the entry of the label. For
  // comparison only: the objects may be gone.
  std::unordered_map<std::string, unsigned long long> GetOldTShapeHandles() const;

  // Forgets both of these.
  void ClearLastRebuildTrace();

  // Whether it made a command of its own, which is committed by now: an undo step that the caller
  // did not open.
  bool HasPendingParametricTransaction() const;
  void ClearPendingParametricTransaction();

  // Forgets features, edges, expressions, marks and traces; on or off stays.
  void ClearRegisteredState();

private:
  ParametricFeatureManager() = default;

  void ensureEnvInit();
  bool enqueueDirtyFeature(const std::string& key);
  void propagateDirty(const std::string& key);
  void rebuildDependenciesFromHistory();
  void recordOldShapes(const std::vector<std::string>& order);
  void rebuildInOrder(const std::vector<std::string>& order);
  bool rebuildFeature(const std::string& key);
  bool hasExpression(const FeatureInfo& info) const;
  void applyExpressions(const FeatureInfo& info);
  void changeParameter(const TDF_Label& parameter, const std::function<void()>& change);
  // The feature's own name for itself, which traces go by.
  const std::string& traceKey(const std::string& key) const;

  bool enabled = true;
  bool envChecked = false;
  std::unordered_map<std::string, FeatureInfo> features;
  std::unordered_map<std::string, std::vector<std::string>> paramDependents;
  std::unordered_map<std::string, std::vector<std::string>> featureDependents;
  std::unordered_map<std::string, std::string> paramExpressions;
  std::unordered_set<std::string> dirtyFeatures;
  std::vector<std::string> lastRebuiltFeatureKeys;
  std::unordered_map<std::string, unsigned long long> oldTShapeHandles;
  bool pendingParametricTransaction = false;
};
