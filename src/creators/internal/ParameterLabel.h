// Makes the child label of a parameter.
#pragma once

#include <TCollection_AsciiString.hxx>
#include <TDF_Label.hxx>

namespace Orvex {

// Which value attribute a parameter child bears. The numbers are part of the callers' contract.
enum class ParameterLabelKind {
  Real = 1,
  Integer = 2,
  Point = 3,
  NameOnly = 5 // the name is also the value
};

// Finds or creates child `tag` of the parent, sets its name, and makes sure that it bears the value
// attribute: a new real holds 0.0, a new integer 0, a new position the origin. Returns the child.
TDF_Label MakeParameterLabel(const TDF_Label& parent, int tag, const TCollection_AsciiString& name,
                             ParameterLabelKind kind);

} // namespace Orvex
