// Makes one shape of a kind in a document of its own.
#pragma once

#include "create/ParameterInput.h"
#include "model/FileFormat.h"

#include <QJsonObject>

#include <optional>
#include <string>

namespace Orvex::Cli {

struct WriteTarget
{
  FileFormat format;
  std::string path; // where to write
  std::string name; // what the user calls it
};

// Makes the shape, checks that it is sound and writes it if there is a target.
//
// Returns: the result as in orvex.new.schema.json, but for the schema itself.
// Errors: a Failure; ExitCode::KernelFailure for values that the kind or the kernel refuses and
//   for a result that is not valid, ExitCode::Unreadable for the file of a parameter.
QJsonObject MakeShape(const NewShape& wanted, const std::optional<WriteTarget>& target);

// Takes such a result.
QString MadeText(const QJsonObject& made);

} // namespace Orvex::Cli
