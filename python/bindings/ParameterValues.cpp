#include "ParameterValues.h"

#include <pybind11/stl.h>

#include <array>

namespace py = pybind11;

using Orvex::ParameterField;
using Orvex::ParameterValue;

void Refuse(const std::string& name, const std::string& allowed)
{
  throw py::value_error(std::string(name).append(": ").append(allowed));
}

namespace {

using Triple = std::array<double, 3>;

gp_XYZ XyzOf(const py::handle& value)
{
  const auto numbers = value.cast<Triple>();
  return gp_XYZ(numbers[0], numbers[1], numbers[2]);
}

// A value of the type that the field holds.
struct Reading
{
  const ParameterField& field;
  const py::handle& given;

  ParameterValue operator()(double) const
  {
    const auto number = given.cast<double>();
    if (!field.range.Holds(number))
      Refuse(field.name, field.range.Text());
    return number;
  }
  ParameterValue operator()(int) const
  {
    const auto number = given.cast<int>();
    if (!field.range.Holds(number))
      Refuse(field.name, field.range.Text());
    return number;
  }
  ParameterValue operator()(const gp_Pnt&) const
  {
    return gp_Pnt(XyzOf(given));
  }
  ParameterValue operator()(const gp_Dir&) const
  {
    const gp_XYZ numbers = XyzOf(given);
    if (!(numbers.Modulus() > gp::Resolution()))
      Refuse(field.name, "a vector that is not zero");
    return gp_Dir(numbers);
  }
  ParameterValue operator()(const gp_Vec&) const
  {
    return gp_Vec(XyzOf(given));
  }
  ParameterValue operator()(const TopoDS_Shape&) const
  {
    return given.cast<TopoDS_Shape>();
  }
  ParameterValue operator()(const Orvex::PointList&) const
  {
    Orvex::PointList points;
    for (const auto& point : given.cast<std::vector<Triple>>())
      points.emplace_back(point[0], point[1], point[2]);
    return points;
  }
};

struct Telling
{
  template <typename Place>
  static py::object OfPlace(const Place& place)
  {
    return py::make_tuple(place.X(), place.Y(), place.Z());
  }

  py::object operator()(double value) const
  {
    return py::float_(value);
  }
  py::object operator()(int value) const
  {
    return py::int_(value);
  }
  py::object operator()(const TopoDS_Shape& value) const
  {
    return py::cast(value);
  }
  py::object operator()(const Orvex::PointList& points) const
  {
    py::list told;
    for (const gp_Pnt& point : points)
      told.append(OfPlace(point));
    return told;
  }
  template <typename Place>
  py::object operator()(const Place& place) const
  {
    return OfPlace(place);
  }
};

} // namespace

ParameterValue ValueOf(const ParameterField& field, const py::handle& given)
{
  try {
    return std::visit(Reading{field, given}, field.initial);
  } catch (const py::cast_error&) {
    Refuse(field.name, "a number, three numbers or a shape, as the parameter is");
  }
}

py::object ToPython(const ParameterValue& value)
{
  return std::visit(Telling(), value);
}
