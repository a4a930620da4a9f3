// Short forms for the fields of a kind's table, and for reading values by their place in it.
#pragma once

#include "creators/ShapeKind.h"

#include <numbers>

namespace Orvex {

inline ParameterField PointField(const char* name, ReadRule read = ReadRule::Stored)
{
  return {.name = name, .initial = gp_Pnt(), .read = read, .unit = Unit::Length};
}

// A point where a new shape stands at the origin unless told otherwise.
inline ParameterField OriginField(const char* name, ReadRule read = ReadRule::Stored)
{
  ParameterField field = PointField(name, read);
  field.preset = gp_Pnt();
  return field;
}

inline ParameterField DirectionField(const char* name)
{
  return {.name = name, .initial = gp_Dir(), .preset = gp_Dir(0, 0, 1)};
}

// A length above zero, unless another range is given.
inline ParameterField LengthField(const char* name, ReadRule read = ReadRule::Stored,
                                  ValueRange range = {.from = 0.0, .fromExcluded = true})
{
  return {.name = name, .initial = 0.0, .read = read, .unit = Unit::Length, .range = range};
}

// A new shape takes in as much of the turn as there is.
inline ParameterField DegreesField(const char* name, double from, double to,
                                   ReadRule read = ReadRule::Stored)
{
  // A full turn to one side starts above zero; an angle that may be zero says so with its end.
  const bool turn = from == 0.0 && to == 360.0;
  return {.name = name,
          .initial = 0.0,
          .read = read,
          .unit = Unit::Degrees,
          .range = {.from = from, .to = to, .fromExcluded = turn},
          .preset = from < 0.0 ? from : to};
}

inline double RealAt(const ParameterSet& values, int field)
{
  return std::get<double>(values[static_cast<std::size_t>(field)]);
}

inline double& RealAt(ParameterSet& values, int field)
{
  return std::get<double>(values[static_cast<std::size_t>(field)]);
}

inline const gp_Pnt& PointAt(const ParameterSet& values, int field)
{
  return std::get<gp_Pnt>(values[static_cast<std::size_t>(field)]);
}

inline const gp_Dir& DirectionAt(const ParameterSet& values, int field)
{
  return std::get<gp_Dir>(values[static_cast<std::size_t>(field)]);
}

inline const PointList& PointsAt(const ParameterSet& values, int field)
{
  return std::get<PointList>(values[static_cast<std::size_t>(field)]);
}

inline const TopoDS_Shape& ShapeAt(const ParameterSet& values, int field)
{
  return std::get<TopoDS_Shape>(values[static_cast<std::size_t>(field)]);
}

inline double Radians(double degrees)
{
  return degrees * std::numbers::pi / 180.0;
}

// The smallest length of a rebuilt solid, in model units.
inline constexpr double kSmallestLength = 1e-6;

// Clamps of rebuilds. A NaN is in no range and is brought into it like any other value.
inline void RaiseToSmallestLength(double& length)
{
  if (!(length >= kSmallestLength))
    length = kSmallestLength;
}

inline void MakeFullTurnUnlessWithin(double& degrees)
{
  if (!(degrees > 0.0 && degrees <= 360.0))
    degrees = 360.0;
}

} // namespace Orvex
