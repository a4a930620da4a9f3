// One entry of the feature history: a feature of some kind made the shape on one label out of the
// shapes on other labels.
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>
#include <TDF_Label.hxx>

#include <functional>
#include <string>
#include <vector>

// Parameters of a feature by name. Well known: "sourceBrep", the shape that a feature works on as
// the kernel's text; a feature that has it and no inputs works in place on its own label.
using FeatureParameters = QMap<QString, QVariant>;

// Makes the shape on the label again from the parameters; false tells that it could not.
using FeatureRebuildFunc = std::function<bool(const TDF_Label&, const FeatureParameters&)>;

struct FeatureHistoryItem
{
  // Stable and never given twice, from 1.
  int id = 0;
  // Kind of feature: "Box", "BooleanCut", "Fillet", ... Free text.
  std::string type;
  // For display.
  std::string name;
  // Holds the feature's result. May be null.
  TDF_Label label;
  // Labels of the shapes that the feature consumes, in order. Entries may be null.
  std::vector<TDF_Label> inputs;
  // What the user set; in copies of GetAllFeatures, what follows from it and from the inputs.
  bool suppressed = false;
  // Position in the history, from 0.
  int order = 0;
  // Kind of the shape that the label held when the item was last touched: "Solid", "Imported", ...
  std::string shapeType;
  FeatureParameters parameters;
  // Empty for a feature that cannot be made again.
  FeatureRebuildFunc rebuildFunc;
};
