#include "step/internal/EntityName.h"

#include <StepBasic_Product.hxx>
#include <StepBasic_ProductDefinition.hxx>
#include <StepBasic_ProductDefinitionFormation.hxx>
#include <StepBasic_ProductDefinitionRelationship.hxx>
#include <StepRepr_Representation.hxx>
#include <StepRepr_RepresentationItem.hxx>
#include <TCollection_HAsciiString.hxx>

namespace Orvex {

namespace {

using Text = opencascade::handle<TCollection_HAsciiString>;

template <typename Kind>
opencascade::handle<Kind> As(const opencascade::handle<Standard_Transient>& entity)
{
  return opencascade::handle<Kind>::DownCast(entity);
}

std::string TextOf(const Text& text)
{
  return text.IsNull() ? std::string() : text->ToCString();
}

std::string FirstText(const Text& text, const Text& fallback)
{
  std::string first = TextOf(text);
  return first.empty() ? TextOf(fallback) : first;
}

std::string NameOfProduct(const opencascade::handle<StepBasic_Product>& product)
{
  return product.IsNull() ? std::string() : FirstText(product->Name(), product->Id());
}

std::string NameOfDefinition(const StepBasic_ProductDefinition& definition)
{
  const auto formation = definition.Formation();
  return formation.IsNull() ? std::string() : NameOfProduct(formation->OfProduct());
}

} // namespace

std::string ObjectNameOf(const opencascade::handle<Standard_Transient>& entity)
{
  if (const auto item = As<StepRepr_RepresentationItem>(entity))
    return TextOf(item->Name());
  if (const auto representation = As<StepRepr_Representation>(entity))
    return TextOf(representation->Name());
  if (const auto definition = As<StepBasic_ProductDefinition>(entity))
    return NameOfDefinition(*definition);
  if (const auto product = As<StepBasic_Product>(entity))
    return NameOfProduct(product);
  if (const auto relationship = As<StepBasic_ProductDefinitionRelationship>(entity))
    return FirstText(relationship->Name(), relationship->Description());
  return {};
}

} // namespace Orvex
