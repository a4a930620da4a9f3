// The table of operations, for people and programs.
#pragma once

#include "operate/Operation.h"

namespace Orvex::Cli {

// An entry of "operations" in orvex.operations.schema.json.
QJsonObject OperationJson(const Operation& operation);

// Takes such an entry.
QString OperationText(const QJsonObject& operation);

} // namespace Orvex::Cli
