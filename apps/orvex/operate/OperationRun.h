// Runs one operation on shapes from files.
#pragma once

#include "create/ParameterInput.h"
#include "model/ShapeFiles.h"
#include "operate/Operation.h"

namespace Orvex::Cli {

// A run as the command line asks for it.
struct OperationRequest
{
  const Operation* operation = nullptr;
  std::vector<std::string> inputs;
  GivenParameters options;
};

// Checks names, numbers and files.
// Errors: a Failure; ExitCode::Usage, or ExitCode::Unreadable for a file.
OperationRequest RequestFor(const Operation& operation, const std::vector<std::string>& inputs,
                            const std::vector<std::string>& options);

// "sweep: length=10", and the ranges: for lines about a run that failed.
QString GivenText(const OperationRequest& request);
QString AllowedText(const OperationRequest& request);

// Reads the inputs, runs the operation and writes its shape if there is a target.
//
// Returns: the result as in orvex.op.schema.json, but for the schema itself.
// Errors: a Failure; ExitCode::Unreadable for an input, ExitCode::KernelFailure for what the
//   operation or the kernel refuses, ExitCode::Partial for a target that cannot be written.
QJsonObject RunOperation(const OperationRequest& request, const std::optional<WriteTarget>& target);

// Takes such a result.
QString OutcomeText(const QJsonObject& outcome);

} // namespace Orvex::Cli
