#include "features/registration/internal/PrimitiveFeature.h"

#include "creators/ShapeKind.h"
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"

#include <vector>

namespace Orvex {

namespace {

struct PrimitiveKind
{
  int code;
  const char* type;
  std::set<std::string> parameters;
};

// Not derived from the descriptions of the kinds: sweeps leave their source out here, and lines,
// arcs, polygons and splines have no row.
const std::vector<PrimitiveKind>& PrimitiveKinds()
{
  // clang-format off
  static const std::vector<PrimitiveKind> kinds = {
    {kTypeRectangle,   "Rectangle",   {"Base Point", "Length", "Width"}},
    {kTypeCircle,      "Circle",      {"Base Point", "Radius"}},
    {kTypeEllipse,     "Ellipse",     {"Base Point", "MajorRadius", "MinorRadius"}},
    {kTypeBox,         "Box",         {"Base Point", "Normal", "Length", "Width", "Height"}},
    {kTypeCylinder,    "Cylinder",    {"Base Point", "Normal", "Bottom Radius", "Height", "Angle"}},
    {kTypeSphere,      "Sphere",      {"Base Point", "Radius", "Angle1", "Angle2", "Angle3"}},
    {kTypeCone,        "Cone",        {"Base Point", "Normal", "Bottom Radius", "Top Radius", "Height", "Angle"}},
    {kTypeTorus,       "Torus",       {"Base Point", "Bottom Radius", "Radius", "Angle1", "Angle2", "Angle3"}},
    {kTypeRevolve,     "Revolve",     {"Base Point", "Normal", "Angle"}},
    {kTypeExtrude,     "Extrude",     {"Normal", "Length"}},
    {kTypeExtrudeLoop, "ExtrudeLoop", {"Normal", "Length"}},
  };
  // clang-format on
  return kinds;
}

const PrimitiveKind* PrimitiveKindOn(const TDF_Label& label)
{
  ShapeLabelMgr* registry = ShapeLabelMgr::GetInstance();
  TopoDS_Shape shape = registry->GetShapeByLabel(label);
  const int code = registry->GetPrimitiveType(shape);
  for (const PrimitiveKind& kind : PrimitiveKinds())
    if (kind.code == code)
      return &kind;
  return nullptr;
}

} // namespace

bool RegisterPrimitiveFeatureFromHistory(const FeatureHistoryItem& item)
{
  const TDF_Label label = item.label;
  const PrimitiveKind* kind = label.IsNull() ? nullptr : PrimitiveKindOn(label);
  if (kind == nullptr)
    return false;
  ParametricFeatureManager::FeatureInfo info;
  info.type = kind->type;
  info.key = ParametricFeatureManager::MakeLabelKey(label);
  info.rebuild = RebuildOf(*KindOfCode(kind->code), label);
  CollectParamLabels(label, kind->parameters, info);
  ParametricFeatureManager::GetInstance().RegisterFeature(label, info);
  return true;
}

void CollectParamLabels(const TDF_Label& label, const std::set<std::string>& names,
                        ParametricFeatureManager::FeatureInfo& info)
{
  VisitChildren(label, [&](const TDF_Label& child) {
    const auto text = NameOf(child);
    if (!text)
      return false;
    const std::string name = text->ToCString();
    if (names.empty() || names.contains(name)) {
      const std::string key = ParametricFeatureManager::MakeLabelKey(child);
      info.paramDependencies.push_back(key);
      info.paramLabels[name] = key;
    }
    return false;
  });
}

} // namespace Orvex
