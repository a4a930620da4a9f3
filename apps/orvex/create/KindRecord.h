// The table of kinds, for people and programs.
#pragma once

#include "creators/ShapeKind.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

// An entry of "kinds" in orvex.kinds.schema.json.
QJsonObject KindJson(const ShapeKind& kind);

// Takes such an entry.
QString KindText(const QJsonObject& kind);

// An entry of "parameters" there.
QJsonObject FieldJson(const ParameterField& field);

// Takes all such entries of one kind: a line for each. An entry may have a "help" besides.
QString FieldsText(const QJsonArray& fields);

} // namespace Orvex::Cli
