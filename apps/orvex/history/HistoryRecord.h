// The feature history of the current document, as JSON and as text.
#pragma once

#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

// {"features": [...]} as in orvex.history.schema.json.
QJsonObject HistoryJson();

// Takes such an object.
QString HistoryText(const QJsonObject& history);

} // namespace Orvex::Cli
