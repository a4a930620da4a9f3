// Short ways to write the options in the tables of operations.
#pragma once

#include "operate/Operation.h"

namespace Orvex::Cli {

inline constexpr ValueRange kAnyReal{};
inline constexpr ValueRange kAboveZero{.from = 0, .fromExcluded = true};
inline constexpr ValueRange kFromZero{.from = 0};

inline OperationOption RealOption(const char* name, const char* help, Unit unit, ValueRange range,
                                  std::optional<ParameterValue> preset = {})
{
  return {{.name = name, .initial = 0.0, .unit = unit, .range = range, .preset = preset}, help};
}

inline OperationOption IntegerOption(const char* name, const char* help, ValueRange range,
                                     std::optional<ParameterValue> preset = {})
{
  return {{.name = name, .initial = 0, .range = range, .preset = preset}, help};
}

// The default is the place of a word; none: it must be given.
inline OperationOption WordOption(const char* name, const char* help,
                                  std::span<const char* const> words, std::optional<int> preset)
{
  std::optional<ParameterValue> value;
  if (preset)
    value = *preset;
  return {{.name = name, .initial = 0, .preset = value}, help, words};
}

inline OperationOption FlagOption(const char* name, const char* help, bool preset)
{
  return WordOption(name, help, kNoYes, preset ? 1 : 0);
}

inline OperationOption DirectionOption(const char* name, const char* help,
                                       std::optional<ParameterValue> preset = {})
{
  return {{.name = name, .initial = gp_Dir(0, 0, 1), .preset = preset}, help};
}

inline OperationOption VectorOption(const char* name, const char* help)
{
  return {{.name = name, .initial = gp_Vec(0, 0, 1), .unit = Unit::Length}, help};
}

inline OperationOption PointsOption(const char* name, const char* help)
{
  return {{.name = name, .initial = PointList(), .unit = Unit::Length}, help};
}

// A further file. Without it the shape is null.
inline OperationOption ShapeOption(const char* name, const char* help)
{
  return {{.name = name, .initial = TopoDS_Shape(), .preset = TopoDS_Shape()}, help};
}

} // namespace Orvex::Cli
