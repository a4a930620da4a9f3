// Parameters as they come from the command line.
#pragma once

#include "creators/ShapeKind.h"

#include <QString>

#include <string>
#include <vector>

namespace Orvex::Cli {

// A shape that is to be made.
struct NewShape
{
  const ShapeKind* kind = nullptr;
  // In the order of the kind's fields. Shapes are null yet: their files are read in the worker.
  ParameterSet values;
  // As given; empty where the preset counts.
  std::vector<std::string> texts;
};

// Errors: a Failure (ExitCode::Usage) that tells the kinds there are.
const ShapeKind& KindNamed(const std::string& word);

// Takes "name=value" texts. Names count without regard to case, blanks, '-' and '_'.
// Errors: a Failure (ExitCode::Usage) for a name that the kind does not know or that comes twice,
//   for a value that is none or is out of range, and for parameters that are missing;
//   ExitCode::Unreadable for a file of a shape that cannot be read.
NewShape ReadParameterInput(const ShapeKind& kind, const std::vector<std::string>& inputs);

// The place of a parameter among the kind's fields; its value from a text. Names count as above.
// Errors: as above.
std::size_t FieldNamed(const ShapeKind& kind, const std::string& name);
ParameterValue ValueOf(const ShapeKind& kind, const ParameterField& field, const std::string& text);

// "a number > 0 mm", "x,y,z mm".
QString AllowedText(const ParameterField& field);

// The ranges of the kind's parameters and its condition, for a shape that cannot be made.
QString AllowedText(const ShapeKind& kind);

// "Length=10, Width=20", shortened if it gets long.
QString GivenText(const NewShape& shape);

} // namespace Orvex::Cli
