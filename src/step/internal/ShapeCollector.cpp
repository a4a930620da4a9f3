#include "step/internal/ShapeCollector.h"

#include <TDF_LabelSequence.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <utility>

namespace Orvex {

namespace {

int HashOf(const TopoDS_Shape& shape)
{
  return shape.HashCode(0x7fffffff);
}

bool IsBagOfBodies(const TopoDS_Shape& shape)
{
  return shape.ShapeType() == TopAbs_COMPOUND || shape.ShapeType() == TopAbs_COMPSOLID;
}

} // namespace

ShapeCollector::ShapeCollector(const opencascade::handle<XCAFDoc_ColorTool>& colorTool,
                               std::string nameForUnnamed,
                               std::map<std::string, TopoDS_Shape>& shapesByName,
                               std::vector<StepShapeData>& shapeList,
                               const ReadControl& readControl)
    : colors(colorTool), baseName(std::move(nameForUnnamed)), shapes(shapesByName), list(shapeList),
      control(readControl)
{}

void ShapeCollector::Collect(const TDF_Label& label)
{
  control.ThrowIfCancelled(kXcafCancelled);
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  if (shape.IsNull())
    return;
  if (XCAFDoc_ShapeTool::IsAssembly(label)) {
    for (const TDF_Label& component : ComponentsOf(label))
      CollectComponent(component);
  } else if (XCAFDoc_ShapeTool::IsSimpleShape(label)) {
    if (IsBagOfBodies(shape))
      CollectBodies(label, shape);
    else
      Add(shape, ProductNameOf(label), ColorOf(colors, {label}));
  }
}

void ShapeCollector::CollectComponent(const TDF_Label& component)
{
  const TDF_Label product = ReferredProduct(component);
  if (product.IsNull()) {
    Collect(component);
    return;
  }
  const TopoDS_Shape placed = XCAFDoc_ShapeTool::GetShape(component);
  if (!placed.IsNull())
    Add(placed, ProductNameOf(product, component), ColorOf(colors, {product, component}));
}

void ShapeCollector::CollectBodies(const TDF_Label& label, const TopoDS_Shape& shape)
{
  TDF_LabelSequence bodies;
  if (!XCAFDoc_ShapeTool::GetSubShapes(label, bodies)) {
    const std::string name = ProductNameOf(label);
    const auto color = ColorOf(colors, {label});
    for (TopoDS_Iterator child(shape); child.More(); child.Next())
      Add(child.Value(), name, color);
    return;
  }
  for (const TDF_Label& body : bodies) {
    const TopoDS_Shape bodyShape = XCAFDoc_ShapeTool::GetShape(body);
    if (!bodyShape.IsNull())
      Add(bodyShape, ProductNameOf(body, label), ColorOf(colors, {body, label}));
  }
}

std::string ShapeCollector::UniqueName(const std::string& proposedName) const
{
  const std::string number = std::to_string(runningNumber);
  std::string name = proposedName;
  if (name.empty())
    name.append(baseName).append("_").append(number);
  // Made unique once: a name that still clashes takes the place of the earlier shape.
  if (shapes.contains(name))
    name.append("_").append(number);
  return name;
}

void ShapeCollector::Add(const TopoDS_Shape& shape, const std::string& proposedName,
                         const std::optional<Quantity_Color>& color)
{
  StepShapeData record;
  record.shape = shape;
  record.name = UniqueName(proposedName);
  if (color) {
    record.r = color->Red();
    record.g = color->Green();
    record.b = color->Blue();
    record.hasColor = true;
  }
  shapes[record.name] = shape;
  namesByHash[HashOf(shape)].all.push_back(record.name);
  list.push_back(std::move(record));
  ++runningNumber;
}

std::string ShapeCollector::TakeNameOf(const TopoDS_Shape& shape)
{
  const auto found = namesByHash.find(HashOf(shape));
  if (found == namesByHash.end() || found->second.taken == found->second.all.size())
    return {};
  return found->second.all[found->second.taken++];
}

} // namespace Orvex
