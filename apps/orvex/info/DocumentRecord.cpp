#include "info/DocumentRecord.h"

#include "creators/ShapeKind.h"
#include "document/LabelScheme.h"
#include "frame/Text.h"
#include "model/ParameterRecord.h"
#include "model/ShapeRecord.h"

#include <Quantity_Color.hxx>
#include <TDataStd_Name.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace Orvex::Cli {

namespace {

QString TextOf(const TCollection_ExtendedString& text)
{
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.ToExtString()), text.Length());
}

QString WordOn(const TDF_Label& label)
{
  Handle(TDataStd_Name) word;
  if (label.IsNull() || !label.FindAttribute(TDataStd_Name::GetID(), word))
    return {};
  return TextOf(word->Get());
}

// The display name; on a label of somebody else's, the kernel's name.
QString DisplayName(const TDF_Label& label)
{
  const auto name = NameOf(label);
  return name ? TextFromBytes(name->ToCString()) : WordOn(label);
}

// Our own attribute counts before the kernel's.
QString ColourOf(const TDF_Label& label)
{
  if (const auto own = PointOf(label.FindChild(kColorTag, false)))
    return Hex(own->X(), own->Y(), own->Z());
  const auto tool = XCAFDoc_DocumentTool::ColorTool(label);
  for (const XCAFDoc_ColorType type : {XCAFDoc_ColorGen, XCAFDoc_ColorSurf, XCAFDoc_ColorCurv})
    if (Quantity_Color colour; tool->GetColor(label, type, colour))
      return Hex(colour.Red(), colour.Green(), colour.Blue());
  return {};
}

void InsertText(QJsonObject& json, const char* key, const QString& text)
{
  if (!text.isEmpty())
    json.insert(QLatin1String(key), text);
}

void InsertFlag(QJsonObject& json, const char* key, const TDF_Label& label)
{
  if (const auto flag = FlagOf(label))
    json.insert(QLatin1String(key), *flag);
}

// Child 1 of a label that is none of ours can be anything, so the type decides about the others.
void InsertAttributes(QJsonObject& json, const TDF_Label& label, int typeCode)
{
  const auto child = [&label](int tag) { return label.FindChild(tag, false); };
  const ShapeKind* kind = KindOfCode(typeCode);
  json.insert("kind", kind == nullptr ? "Compound" : kind->word);
  InsertFlag(json, "visible", child(kVisibilityTag));
  InsertFlag(json, "enabled", child(kEnabledTag));
  if (const auto opacity = RealOf(child(kTransparentTag)))
    json.insert("opacity", *opacity);
  InsertText(json, "material", WordOn(child(kMaterialTag)));
  InsertText(json, "displayMode", WordOn(child(kDisplayModeTag)));
  if (kind != nullptr)
    json.insert("parameters", ParametersJson(*kind, label));
}

AssemblyTransform PlacementOf(const TDF_Label& label)
{
  const gp_Trsf motion = XCAFDoc_ShapeTool::GetLocation(label).Transformation();
  AssemblyTransform placement;
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 4; ++column)
      placement.matrix[static_cast<std::size_t>(4 * row + column)] =
        motion.Value(row + 1, column + 1);
  return placement;
}

class TreeBuilder
{
public:
  explicit TreeBuilder(AssemblyTreeMgr::Definitions& definitions_) : definitions(definitions_)
  {}

  // A label at its place; what it refers to, if it is a component, gives name and children.
  AssemblyTreeNode NodeOf(const TDF_Label& placed)
  {
    TDF_Label product = placed;
    XCAFDoc_ShapeTool::GetReferredShape(placed, product);
    AssemblyTreeNode node;
    node.id = EntryOf(placed);
    node.transform = PlacementOf(placed);
    node.name = NameOf(placed, product);
    node.isAssembly = XCAFDoc_ShapeTool::IsAssembly(product);
    if (node.isAssembly)
      AddChildren(node, product);
    else
      Define(node, product);
    return node;
  }

private:
  static std::string NameOf(const TDF_Label& placed, const TDF_Label& product)
  {
    const QString own = DisplayName(product);
    return (own.isEmpty() ? DisplayName(placed) : own).toStdString();
  }

  void AddChildren(AssemblyTreeNode& node, const TDF_Label& product)
  {
    TDF_LabelSequence components;
    XCAFDoc_ShapeTool::GetComponents(product, components);
    for (const TDF_Label& component : components)
      node.children.push_back(NodeOf(component));
  }

  void Define(AssemblyTreeNode& node, const TDF_Label& product)
  {
    node.partId = EntryOf(product);
    node.shapeName = node.partId;
    definitions.try_emplace(node.partId, node.partId, node.name, node.shapeName);
  }

  AssemblyTreeMgr::Definitions& definitions;
};

} // namespace

QJsonObject ShapeLabelJson(const TDF_Label& label)
{
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  QJsonObject json{{"id", TextFromBytes(EntryOf(label))}, {"name", DisplayName(label)}};
  if (!shape.IsNull())
    json.insert("shape", ShapeWord(shape));
  if (const auto typeCode = ValidTypeOf(label))
    InsertAttributes(json, label, *typeCode);
  InsertText(json, "color", ColourOf(label));
  return json;
}

AssemblyTreeMgr TreeOf(const TDF_LabelSequence& freeShapes)
{
  AssemblyTreeMgr::Definitions definitions;
  TreeBuilder builder(definitions);
  std::vector<AssemblyTreeNode> roots;
  for (const TDF_Label& label : freeShapes)
    roots.push_back(builder.NodeOf(label));
  AssemblyTreeMgr tree;
  tree.SetRoots(std::move(roots));
  tree.SetDefinitions(std::move(definitions));
  return tree;
}

} // namespace Orvex::Cli
