#include "step/internal/ProductTree.h"

#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Mat.hxx>
#include <gp_Trsf.hxx>

namespace Orvex {

namespace {

AssemblyTransform PlacementOf(const TDF_Label& label)
{
  AssemblyTransform placement;
  const TopLoc_Location location = XCAFDoc_ShapeTool::GetShape(label).Location();
  if (location.IsIdentity())
    return placement;
  const gp_Trsf motion = location.Transformation();
  const gp_Mat rotation = motion.VectorialPart();
  double* cell = placement.matrix.data();
  for (int row = 1; row <= 3; ++row) {
    for (int column = 1; column <= 3; ++column)
      *cell++ = rotation.Value(row, column);
    *cell++ = motion.TranslationPart().Coord(row);
  }
  return placement;
}

void FillIfEmpty(std::string& text, const std::string& value)
{
  if (text.empty())
    text = value;
}

void NameAfterShape(AssemblyTreeNode& node)
{
  FillIfEmpty(node.name, node.shapeName);
  FillIfEmpty(node.name, "Part");
}

} // namespace

ProductTree::ProductTree(ShapeCollector& shapeCollector, const ReadControl& readControl)
    : collector(shapeCollector), control(readControl)
{}

AssemblyTreeNode ProductTree::RootOf(const TDF_Label& label)
{
  return NodeOf(label, TDF_Label());
}

AssemblyTreeMgr::Definitions& ProductTree::GetDefinitions()
{
  return definitions;
}

AssemblyTreeNode ProductTree::NodeOf(const TDF_Label& label, const TDF_Label& occurrence)
{
  control.ThrowIfCancelled(kXcafCancelled);
  const TDF_Label& placed = occurrence.IsNull() ? label : occurrence;
  AssemblyTreeNode node;
  node.isAssembly = XCAFDoc_ShapeTool::IsAssembly(label);
  node.id = EntryOf(placed);
  node.transform = PlacementOf(placed);
  node.name = ProductNameOf(label, occurrence);
  if (node.isAssembly) {
    FillIfEmpty(node.name, "Assembly");
    const auto components = ComponentsOf(label);
    node.children.reserve(components.size());
    for (const TDF_Label& component : components)
      node.children.push_back(ChildOf(component));
    return node;
  }
  FillIfEmpty(node.name, "Part");
  node.shapeName = collector.TakeNameOf(XCAFDoc_ShapeTool::GetShape(label));
  node.partId = Define(label, node.name, node.shapeName);
  return node;
}

AssemblyTreeNode ProductTree::ChildOf(const TDF_Label& component)
{
  const TDF_Label product = ReferredProduct(component);
  if (product.IsNull())
    return NodeOf(component, TDF_Label());
  if (XCAFDoc_ShapeTool::IsAssembly(product))
    return NodeOf(product, component);
  return LeafOf(component, product);
}

AssemblyTreeNode ProductTree::LeafOf(const TDF_Label& component, const TDF_Label& product)
{
  AssemblyTreeNode leaf;
  leaf.id = EntryOf(component);
  leaf.name = ProductNameOf(product, component);
  leaf.shapeName = collector.TakeNameOf(XCAFDoc_ShapeTool::GetShape(component));
  leaf.transform = PlacementOf(component);
  leaf.partId = Define(product, leaf.name, leaf.shapeName);
  NameAfterShape(leaf);
  return leaf;
}

std::string ProductTree::Define(const TDF_Label& product, const std::string& name,
                                const std::string& shapeName)
{
  std::string key = EntryOf(product);
  const auto [place, isNew] =
    definitions.try_emplace(key, AssemblyPartDefinition{key, name, shapeName});
  if (!isNew) {
    FillIfEmpty(place->second.name, name);
    FillIfEmpty(place->second.shapeName, shapeName);
  }
  return key;
}

} // namespace Orvex
