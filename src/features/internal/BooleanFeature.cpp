#include "features/internal/BooleanFeature.h"

#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "features/ParametricFeatureManager.h"
#include "kernel/internal/OperandKeeping.h"

#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

namespace Orvex {

namespace {

struct BooleanKind
{
  const char* type;
  BOPAlgo_Operation operation;
};

constexpr std::array kBooleanKinds = {
  BooleanKind{"Unite", BOPAlgo_FUSE},    BooleanKind{"BooleanFuse", BOPAlgo_FUSE},
  BooleanKind{"Subtract", BOPAlgo_CUT},  BooleanKind{"BooleanCut", BOPAlgo_CUT},
  BooleanKind{"Common", BOPAlgo_COMMON}, BooleanKind{"BooleanCommon", BOPAlgo_COMMON},
};

std::optional<BOPAlgo_Operation> OperationOf(const std::string& type)
{
  for (const BooleanKind& kind : kBooleanKinds)
    if (type == kind.type)
      return kind.operation;
  return std::nullopt;
}

// All of them, or nothing.
std::vector<TopoDS_Shape> ShapesOf(const Handle(TDocStd_Document) & doc,
                                   const std::vector<std::string>& keys)
{
  std::vector<TopoDS_Shape> shapes;
  for (const std::string& key : keys) {
    const TDF_Label label = LabelOfEntry(doc, key);
    shapes.push_back(label.IsNull() ? TopoDS_Shape() : XCAFDoc_ShapeTool::GetShape(label));
    if (shapes.back().IsNull())
      return {};
  }
  return shapes;
}

TopoDS_Shape Accumulated(BOPAlgo_Operation operation, const std::vector<TopoDS_Shape>& shapes)
{
  TopoDS_Shape accumulated = shapes.front();
  for (auto next = std::next(shapes.begin()); next != shapes.end() && !accumulated.IsNull(); ++next)
    accumulated = BooleanOf(operation, accumulated, *next);
  return accumulated;
}

} // namespace

bool IsBooleanKind(const std::string& type)
{
  return OperationOf(type).has_value();
}

bool RegisterBooleanFeatureFromHistory(const FeatureHistoryItem& item)
{
  if (item.label.IsNull() || item.inputs.size() < 2)
    return false;
  RegisterBooleanFeature(item.type, item.label, item.inputs);
  return true;
}

void RegisterBooleanFeature(const std::string& type, const TDF_Label& result,
                            const std::vector<TDF_Label>& inputs)
{
  if (result.IsNull() || inputs.size() < 2)
    return;
  ParametricFeatureManager::FeatureInfo info;
  info.type = type;
  info.key = ParametricFeatureManager::MakeLabelKey(result);
  std::transform(inputs.begin(), inputs.end(), std::back_inserter(info.featureDependencies),
                 &ParametricFeatureManager::MakeLabelKey);
  info.rebuild = [type, result, inputKeys = info.featureDependencies, resultKey = info.key,
                  resultType = ValidTypeOf(result)] {
    return ValidTypeOf(result) == resultType && RebuildBoolean(type, inputKeys, resultKey);
  };
  ParametricFeatureManager::GetInstance().RegisterFeature(result, info);
}

bool RebuildBoolean(const std::string& type, const std::vector<std::string>& inputKeys,
                    const std::string& resultKey)
{
  const auto operation = OperationOf(type);
  const auto doc = ShapeDocMgr::GetInstance()->GetDoc();
  if (!operation || doc.IsNull() || inputKeys.size() < 2)
    return false;
  const std::vector<TopoDS_Shape> shapes = ShapesOf(doc, inputKeys);
  const TDF_Label result = LabelOfEntry(doc, resultKey);
  if (shapes.empty() || result.IsNull() || XCAFDoc_ShapeTool::GetShape(result).IsNull())
    return false;
  const TopoDS_Shape rebuilt = Accumulated(*operation, shapes);
  if (rebuilt.IsNull())
    return false;
  XCAFDoc_DocumentTool::ShapeTool(doc->Main())->SetShape(result, rebuilt);
  return true;
}

} // namespace Orvex
