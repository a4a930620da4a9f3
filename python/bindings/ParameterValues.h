// Values of parameters, of shapes and of operations, between Python and the library.
#pragma once

#include <pybind11/pybind11.h>

#include "creators/ShapeKind.h"

#include <string>

// Throws what becomes a ValueError: "name: allowed".
[[noreturn]] void Refuse(const std::string& name, const std::string& allowed);

// A value of the type and in the range that the field has.
// Errors: a ValueError that names the field.
Orvex::ParameterValue ValueOf(const Orvex::ParameterField& field, const pybind11::handle& given);

// Numbers, tuples of three numbers for points and directions, shapes, lists of points.
pybind11::object ToPython(const Orvex::ParameterValue& value);
