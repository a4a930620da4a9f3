// Makes one shape of a kind in a document of its own.
#pragma once

#include "create/ParameterInput.h"
#include "model/ShapeFiles.h"

#include <QJsonObject>

#include <optional>

namespace Orvex::Cli {

// Makes the shape, checks that it is sound and writes it if there is a target.
//
// Returns: the result as in orvex.new.schema.json, but for the schema itself.
// Errors: a Failure; ExitCode::KernelFailure for values that the kind or the kernel refuses and
//   for a result that is not valid, ExitCode::Unreadable for the file of a parameter.
QJsonObject MakeShape(const NewShape& wanted, const std::optional<WriteTarget>& target);

// Takes such a result.
QString MadeText(const QJsonObject& made);

} // namespace Orvex::Cli
