// The feature history: the ordered record of how the model was made. Each item says that a feature
// of some kind made the shape on one label out of the shapes on other labels, and by which function
// it can be made again.
//
// On that record the manager answers what hangs on a feature, what may move where, what is
// suppressed and what must go when a shape is deleted; it replays later features when an earlier
// one changes, and puts the whole chain back if a step of the replay fails. It knows the geometry
// of no kind of feature.
//
//   FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
//   int plate = history.AddFeature("Box", "Plate", plateLabel, {});
//   int drilled = history.AddFeature("BooleanCut", "Drilled", label, {plateLabel, drillLabel});
//   history.SuppressFeature(drilled);
//
// Several items may share a label; the last one answers queries by label. The provider of an input
// is the last item before the consumer that has the input for its label. An item depends on a label
// if the label is one of its inputs or, for an item without inputs that has a rebuild function and
// the parameter "sourceBrep", its own.
//
// Suppression: the flag is what the user set; effectively suppressed is also what has a suppressed
// provider. Nothing is rebuilt by suppressing, the shapes are hidden.
//
// Persistence: type and parameters of a feature stand on its label (see docs/features.md) and come
// back through RebuildFromLabels. Functions, inputs, flags and ids do not.
//
// Caveats:
// - A change of document (ShapeDocMgr::SetDoc) empties the history. Labels of a document that was
//   closed before that are no longer valid: set another document, or none, before closing.
// - Pointers to items are valid until an item is added or removed.
// - A rebuild function may query the manager. It must not add, remove or move items.
// - For one thread at a time. GetFeatureByLabel is no exception although const: it brings the index
//   of labels up to date.
#pragma once

#include "features/FeatureHistoryItem.h"
#include "foundation/Export.h"

#include <memory>

namespace Orvex {
struct FeatureSnapshot;
class FeatureLabelIndex;
} // namespace Orvex

class ORVEX_API FeatureHistoryManager
{
public:
  // The one instance, made on first use and never destroyed. The first call may be concurrent.
  static FeatureHistoryManager& GetInstance();

  FeatureHistoryManager(const FeatureHistoryManager&) = delete;
  FeatureHistoryManager& operator=(const FeatureHistoryManager&) = delete;

  // --- Making the record ---

  // Appends an item and returns its id. If the last item of the label is the same feature (type,
  // name, inputs, parameters, with or without a function), that one is unsuppressed instead, takes
  // the function if one is given, and keeps its id. The form with parameters writes the meta of a
  // new item on the label.
  int AddFeature(const std::string& type, const std::string& name, const TDF_Label& label,
                 const std::vector<TDF_Label>& inputs);
  int AddFeature(const std::string& type, const std::string& name, const TDF_Label& label,
                 const std::vector<TDF_Label>& inputs, const FeatureParameters& parameters,
                 FeatureRebuildFunc rebuildFunc);

  // Adds, or gives the last item of the label another type, name and inputs and unsuppresses it;
  // parameters and function stay.
  // Returns: false for a null label, and for inputs that only a later item makes.
  bool UpsertFeature(const std::string& type, const std::string& name, const TDF_Label& label,
                     const std::vector<TDF_Label>& inputs);

  // Remove items with all that depend on them. Shapes and labels stay, meta too.
  // Returns: false if there is no such item.
  bool RemoveFeature(int id);
  bool RemoveFeaturesByLabel(const TDF_Label& label);

  // Moves an item to a position, from 0.
  // Returns: false, with nothing changed, for an unknown id, a position outside the history, and
  //   if an input of any item would get another provider.
  bool ReorderFeature(int id, int newIndex);

  // --- Suppression ---

  // Sets the flag and hides the shapes of the item and of its dependents.
  // Returns: false for an unknown id.
  bool SuppressFeature(int id);

  // Clears the flag, rebuilds the item and its dependents and shows their shapes.
  // Returns: false for an unknown id; also if an item upstream is suppressed or a rebuild function
  //   fails, and then everything is as before, the flag too. So it is when a function throws, which
  //   passes to the caller.
  bool UnsuppressFeature(int id);

  bool IsFeatureDirectlySuppressed(int id);
  bool IsFeatureEffectivelySuppressed(int id);

  // --- Queries ---

  bool IsInputOfAnyFeature(const TDF_Label& label);

  // The labels that must go when the given ones are deleted: the results of their consumers, and
  // operands that are hidden and that no surviving item uses. Starts with the given ones, each
  // once, in their order.
  std::vector<TDF_Label> CollectDeleteClosureLabels(const std::vector<TDF_Label>& labels);

  // Copies in history order, `suppressed` being the effective state.
  std::vector<FeatureHistoryItem> GetAllFeatures();

  // Null if there is none. `suppressed` is the flag.
  // Cost: linear by id.
  FeatureHistoryItem* GetFeature(int id);
  const FeatureHistoryItem* GetFeature(int id) const;
  FeatureHistoryItem* GetFeatureByLabel(const TDF_Label& label);
  const FeatureHistoryItem* GetFeatureByLabel(const TDF_Label& label) const;

  // Empty if there is no such item.
  FeatureParameters GetFeatureParameters(const TDF_Label& label);
  FeatureParameters GetFeatureParameters(int id);

  // --- Parameters and rebuild ---

  // Stores parameters, with references to edges and faces brought up to date, and writes the meta.
  // Returns: false for an unknown feature, or if only a later item makes one of its inputs.
  bool SetFeatureParameters(const TDF_Label& label, const FeatureParameters& parameters);
  bool SetFeatureParameters(int id, const FeatureParameters& parameters);

  // Returns: false as above; the function is gone then as well.
  bool SetFeatureRebuildFunc(const TDF_Label& label, FeatureRebuildFunc rebuildFunc);
  bool SetFeatureRebuildFunc(int id, FeatureRebuildFunc rebuildFunc);

  // Rebuilds the feature with other parameters, and in order all that depend on what was rebuilt.
  // Keeps the parameters if all goes well; writing them on the label is SetFeatureParameters.
  // Returns: false for a feature that is unknown, effectively suppressed, without a function or
  //   without a label; also if a function fails, and then flags, parameters and shapes are as
  //   before, shapes as new objects.
  // Errors: what a function throws passes through, and what was rebuilt by then stays.
  bool RebuildFeature(const TDF_Label& label, const FeatureParameters& parameters);
  bool RebuildFeature(int id, const FeatureParameters& parameters);

  // For rebuild functions: the item that is being rebuilt on this thread, null if none is; and the
  // same if it has that label, else the last item of the label. So a function finds its own item
  // even when a later one shares the label.
  const FeatureHistoryItem* GetCurrentRebuildFeature() const;
  const FeatureHistoryItem* ResolveFeatureForRebuild(const TDF_Label& label) const;

  // --- Labels of a document that was opened ---

  // No labels: empties the history, and ids start at 1 again. With labels: reconciles; for an empty
  // history ids start at 1.
  void RebuildFromLabels(const std::vector<TDF_Label>& labels);

  // Drops items whose label is not given; makes a plain entry of those whose label now holds
  // another kind of shape; then adds an item for each label without one, in the order given, with
  // type and parameters from its meta if it has any.
  void ReconcileWithLabels(const std::vector<TDF_Label>& labels);

private:
  FeatureHistoryManager();
  ~FeatureHistoryManager();

  static std::string DeriveShapeType(const TDF_Label& label);
  static std::string DeriveDisplayName(const TDF_Label& label, int id);

  FeatureHistoryItem& AppendItem(FeatureHistoryItem item);
  FeatureHistoryItem* FindSameFeature(const FeatureHistoryItem& wanted);
  bool SetParametersOf(FeatureHistoryItem* item, const FeatureParameters& parameters);
  bool SetRebuildFuncOf(FeatureHistoryItem* item, FeatureRebuildFunc rebuildFunc);
  bool RemoveItems(const std::vector<int>& indices);
  void RenumberOrder();
  int IndexOf(int id) const;
  int IndexOf(const FeatureHistoryItem& item) const;
  void ApplyVisibility(const std::vector<int>& indices);

  enum class Kinds { Keep, Refresh };
  bool CallRebuild(std::size_t index, const FeatureParameters& parameters) const;
  bool RebuildWithOwnParameters(std::size_t index);
  bool ReplayFrom(int index);
  bool ReplayLater(int index, const std::vector<bool>& suppressed, Kinds shapeTypes);
  void RollBack(const std::vector<Orvex::FeatureSnapshot>& snapshots);
  bool RebuildChain(int index, const FeatureParameters& parameters,
                    const std::vector<bool>& suppressed);

  void DropItemsWithoutLabelIn(const std::vector<TDF_Label>& labels);
  void ResetIfShapeTypeChanged(FeatureHistoryItem& item);
  void AddItemFromLabel(const TDF_Label& label);

  void MarkLabelIndexDirty();

  std::vector<FeatureHistoryItem> items;
  int nextId = 1;
  std::unique_ptr<Orvex::FeatureLabelIndex> labelIndex;
};
