// The table of kinds, for people and programs.
#pragma once

#include "creators/ShapeKind.h"

#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

// An entry of "kinds" in orvex.kinds.schema.json.
QJsonObject KindJson(const ShapeKind& kind);

// Takes such an entry.
QString KindText(const QJsonObject& kind);

} // namespace Orvex::Cli
