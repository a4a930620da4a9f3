// What the walks over an imported document ask of its labels.
#pragma once

#include "document/LabelScheme.h"

#include <Quantity_Color.hxx>
#include <TDF_Label.hxx>
#include <TopoDS_Shape.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_ColorType.hxx>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvex {

// UTF-8; empty when the label has no name.
std::string ProductNameOf(const TDF_Label& label);

// The first name that is not empty.
std::string ProductNameOf(const TDF_Label& label, const TDF_Label& fallback);

// The first colour found: each label in order, on each as surface colour, then as generic colour.
std::optional<Quantity_Color> ColorOf(const opencascade::handle<XCAFDoc_ColorTool>& tool,
                                      std::initializer_list<TDF_Label> labels);

// The product that an occurrence stands for; null when it stands for none.
TDF_Label ReferredProduct(const TDF_Label& occurrence);

// The occurrences directly below an assembly, in order.
std::vector<TDF_Label> ComponentsOf(const TDF_Label& assembly);

} // namespace Orvex
