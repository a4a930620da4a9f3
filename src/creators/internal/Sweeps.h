// What the sweeps share: prisms along a vector.
#pragma once

#include "creators/ShapeKind.h"
#include "creators/internal/Fields.h"

#include <BRepPrimAPI_MakePrism.hxx>

namespace Orvex {

// A length or an angle of a sweep: a value that is not positive is refused with a message.
inline ParameterField SweepField(const char* name, Unit unit,
                                 std::optional<ParameterValue> preset = std::nullopt)
{
  return {.name = name,
          .initial = 0.0,
          .store = StoreRule::PositiveOrMessage,
          .unit = unit,
          .range = {.from = 0.0, .fromExcluded = true},
          .preset = std::move(preset)};
}

inline ParameterField ShapeField(const char* name)
{
  return {.name = name, .initial = TopoDS_Shape()};
}

// Null for a null shape, which the kernel would not survive.
inline TopoDS_Shape PrismOf(const TopoDS_Shape& shape, const gp_Vec& vector)
{
  if (shape.IsNull())
    return {};
  return BRepPrimAPI_MakePrism(shape, vector, false, true).Shape();
}

} // namespace Orvex
