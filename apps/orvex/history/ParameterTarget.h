// A parameter of a shape in the current document, as the command line names it.
#pragma once

#include "creators/ShapeKind.h"
#include "features/FeatureHistoryItem.h"

#include <QString>

#include <string>

namespace Orvex::Cli {

struct ParameterTarget
{
  TDF_Label shape;
  TDF_Label parameter;
  const ShapeKind* kind = nullptr;
  const ParameterField* field = nullptr;
  std::string name; // of the shape, as given
  std::string text; // behind the "="
};

// The parts of "LABEL:PARAMETER=TEXT".
// Errors: a Failure (ExitCode::Usage) that tells what there is.
ParameterTarget TargetOf(const std::string& input);

// The value from the target's text goes on its label, in the place of what the parameter followed.
// Errors: a Failure (ExitCode::Usage) for a value that is none, is out of range, or is a shape.
void SetValue(const ParameterTarget& target);

// The target's text becomes the expression of the parameter; an empty one ends it.
// Errors: a Failure (ExitCode::Usage) for a parameter that is no real number.
void SetExpression(const ParameterTarget& target);

// Gives a global parameter another value, or makes one.
// Errors: a Failure (ExitCode::Usage).
void SetGlobalParameter(const std::string& input);

} // namespace Orvex::Cli
