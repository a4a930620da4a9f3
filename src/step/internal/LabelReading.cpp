#include "step/internal/LabelReading.h"

#include <TCollection_AsciiString.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace Orvex {

std::string ProductNameOf(const TDF_Label& label)
{
  opencascade::handle<TDataStd_Name> name;
  if (!label.FindAttribute(TDataStd_Name::GetID(), name))
    return {};
  const TCollection_AsciiString text(name->Get());
  return {text.ToCString(), static_cast<std::size_t>(text.Length())};
}

std::string ProductNameOf(const TDF_Label& label, const TDF_Label& fallback)
{
  std::string name = ProductNameOf(label);
  return name.empty() && !fallback.IsNull() ? ProductNameOf(fallback) : name;
}

std::optional<Quantity_Color> ColorOf(const opencascade::handle<XCAFDoc_ColorTool>& tool,
                                      std::initializer_list<TDF_Label> labels)
{
  Quantity_Color color;
  for (const TDF_Label& label : labels)
    if (tool->GetColor(label, XCAFDoc_ColorSurf, color) ||
        tool->GetColor(label, XCAFDoc_ColorGen, color))
      return color;
  return std::nullopt;
}

TDF_Label ReferredProduct(const TDF_Label& occurrence)
{
  TDF_Label product;
  return XCAFDoc_ShapeTool::GetReferredShape(occurrence, product) ? product : TDF_Label();
}

std::vector<TDF_Label> ComponentsOf(const TDF_Label& assembly)
{
  TDF_LabelSequence components;
  XCAFDoc_ShapeTool::GetComponents(assembly, components, false);
  return {components.begin(), components.end()};
}

} // namespace Orvex
