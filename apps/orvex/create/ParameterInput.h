// Parameters as they come from the command line.
#pragma once

#include "creators/ShapeKind.h"

#include <QString>

#include <string>
#include <vector>

namespace Orvex::Cli {

// What somebody can fill in: the parameters of a kind of shape, the options of an operation.
struct ParameterForm
{
  ParameterForm(const ShapeKind& kind)
      : word(kind.word), fields(kind.fields), condition(kind.condition)
  {}
  ParameterForm(const char* word_, std::span<const ParameterField> fields_)
      : word(word_), fields(fields_)
  {}

  const char* word;
  std::span<const ParameterField> fields;
  // What must hold beyond the ranges, for people. Null for nothing.
  const char* condition = nullptr;
};

// A form that was filled in.
struct GivenParameters
{
  // In the order of the form's fields. Shapes are null yet: their files are read in the worker.
  ParameterSet values;
  // As given; empty where the preset counts.
  std::vector<std::string> texts;
};

// A shape that is to be made.
struct NewShape : GivenParameters
{
  const ShapeKind* kind = nullptr;
};

// Errors: a Failure (ExitCode::Usage) that tells the kinds there are.
const ShapeKind& KindNamed(const std::string& word);

// Takes "name=value" texts. Names count without regard to case, blanks, '-' and '_'.
// Errors: a Failure (ExitCode::Usage) for a name that the form does not know or that comes twice,
//   for a value that is none or is out of range, and for parameters that are missing;
//   ExitCode::Unreadable for a file of a shape that cannot be read.
GivenParameters ReadParameterInput(const ParameterForm& form,
                                   const std::vector<std::string>& inputs);

// The place of a parameter among the form's fields; its value from a text. Names count as above.
// Errors: as above.
std::size_t FieldNamed(const ParameterForm& form, const std::string& name);
ParameterValue ValueOf(const ParameterForm& form, const ParameterField& field,
                       const std::string& text);

// The values with the shapes that their files hold.
// Errors: a Failure (ExitCode::Unreadable).
ParameterSet ValuesWithShapes(const GivenParameters& given);

// "a number > 0 mm", "x,y,z mm".
QString AllowedText(const ParameterField& field);

// The ranges of the form's parameters and its condition, for what cannot be made.
QString AllowedText(const ParameterForm& form);

// "Length=10, Width=20", shortened if it gets long.
QString GivenText(const ParameterForm& form, const GivenParameters& given);

} // namespace Orvex::Cli
