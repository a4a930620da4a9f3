// The description of a file as a person reads it: made from the JSON entry, so that both always
// tell the same.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

struct TextStyle
{
  bool colour = false;   // the terminal shows colours
  bool allNames = false; // no "and 12 more"
};

// Takes an entry that has not failed. Ends with a line end.
QString InfoText(const QJsonObject& entry, const TextStyle& style);

// "at (1, 2, 3), turned 90° about (0, 0, 1)", empty for the identity. Takes the 16 values of a
// placement, row by row.
QString PlacementText(const QJsonArray& placement);

} // namespace Orvex::Cli
