#include "step/internal/LengthUnit.h"

#include <STEPConstruct_UnitContext.hxx>
#include <STEPControl_Reader.hxx>
#include <StepBasic_ConversionBasedUnitAndLengthUnit.hxx>
#include <StepBasic_SiPrefix.hxx>
#include <StepBasic_SiUnitAndLengthUnit.hxx>
#include <StepData_StepModel.hxx>
#include <StepGeom_GeomRepContextAndGlobUnitAssCtxAndGlobUncertaintyAssCtx.hxx>
#include <StepGeom_GeometricRepresentationContextAndGlobalUnitAssignedContext.hxx>
#include <StepRepr_GlobalUnitAssignedContext.hxx>
#include <StepShape_ShapeRepresentation.hxx>
#include <TCollection_HAsciiString.hxx>

#include <algorithm>
#include <array>

namespace Orvex {

namespace {

template <typename Kind>
using Handle = opencascade::handle<Kind>;

// In the order of the kernel's StepBasic_SiPrefix.
constexpr std::array kPrefixes{"exa",  "peta",  "tera",  "giga",  "mega", "kilo", "hecto", "deca",
                               "deci", "centi", "milli", "micro", "nano", "pico", "femto", "atto"};
static_assert(StepBasic_spExa == 0 && StepBasic_spAtto == kPrefixes.size() - 1);

std::string LowerCase(std::string text)
{
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

Handle<StepRepr_GlobalUnitAssignedContext>
UnitsOf(const Handle<StepRepr_RepresentationContext>& context)
{
  using WithUncertainty = StepGeom_GeomRepContextAndGlobUnitAssCtxAndGlobUncertaintyAssCtx;
  using WithUnits = StepGeom_GeometricRepresentationContextAndGlobalUnitAssignedContext;
  if (const auto known = Handle<WithUncertainty>::DownCast(context))
    return known->GlobalUnitAssignedContext();
  if (const auto known = Handle<WithUnits>::DownCast(context))
    return known->GlobalUnitAssignedContext();
  return Handle<StepRepr_GlobalUnitAssignedContext>::DownCast(context);
}

// Empty for a unit of something else than length.
std::string NameOf(const Handle<StepBasic_NamedUnit>& unit)
{
  if (const auto named = Handle<StepBasic_ConversionBasedUnitAndLengthUnit>::DownCast(unit))
    return named->Name().IsNull() ? std::string() : LowerCase(named->Name()->ToCString());
  const auto metric = Handle<StepBasic_SiUnitAndLengthUnit>::DownCast(unit);
  if (metric.IsNull())
    return {};
  const std::string prefix =
    metric->HasPrefix() ? kPrefixes.at(static_cast<std::size_t>(metric->Prefix())) : "";
  return prefix + "metre";
}

LengthUnit In(const StepRepr_GlobalUnitAssignedContext& context)
{
  if (context.Units().IsNull())
    return {};
  for (int i = 1; i <= context.NbUnits(); ++i) {
    const auto unit = context.UnitsValue(i);
    LengthUnit found{NameOf(unit), 0.0};
    if (found.name.empty())
      continue;
    STEPConstruct_UnitContext factors;
    factors.ComputeFactors(unit);
    if (factors.LengthDone())
      found.inMillimetres = factors.LengthFactor();
    return found;
  }
  return {};
}

} // namespace

LengthUnit LengthUnitOf(STEPControl_Reader& reader)
{
  const auto model = reader.StepModel();
  for (int i = 1; i <= model->NbEntities(); ++i) {
    const auto representation = Handle<StepShape_ShapeRepresentation>::DownCast(model->Value(i));
    if (representation.IsNull())
      continue;
    const auto context = UnitsOf(representation->ContextOfItems());
    LengthUnit unit = context.IsNull() ? LengthUnit() : In(*context);
    if (!unit.name.empty())
      return unit;
  }
  return {};
}

} // namespace Orvex
