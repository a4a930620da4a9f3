// Changes of parameters in a saved document, and the rebuild of what depends on them.
#pragma once

#include <QJsonObject>
#include <QString>

#include <string>
#include <vector>

namespace Orvex::Cli {

struct RebuildRequest
{
  std::string path;
  std::vector<std::string> values;      // "LABEL:PARAMETER=VALUE"
  std::vector<std::string> expressions; // "LABEL:PARAMETER=EXPRESSION", empty: no expression
  std::vector<std::string> globals;     // "NAME=VALUE"
};

// Where the results go; the files are there already, empty.
struct RebuildTargets
{
  std::string document;
  std::string parameters;
};

// Opens the document, applies the request in one command, rebuilds what depends on it (everything,
// if nothing is to change) and saves. A label is an entry (0:1:1:2), the name of a feature or of a
// shape.
//
// Returns: {"rebuilt": [...]} as in orvex.rebuild.schema.json.
// Errors: a Failure; ExitCode::Usage for a label, parameter, value or expression that cannot be,
//   ExitCode::KernelFailure for a feature that cannot be rebuilt or comes out unsound. Nothing has
//   been written then.
QJsonObject RebuildDocument(const RebuildRequest& request, const RebuildTargets& targets);

// Takes such an object.
QString RebuildText(const QJsonObject& rebuilt);

} // namespace Orvex::Cli
