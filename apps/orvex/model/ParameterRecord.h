// Parameters of shapes, as JSON and as text.
#pragma once

#include "creators/ShapeKind.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <TDF_Label.hxx>

namespace Orvex::Cli {

// The type of a value: "real", "point"; and how it is written on the command line: "x,y,z".
QString TypeWord(const ParameterValue& value);
QString WrittenForm(const ParameterValue& value);

// "mm", "degrees", "radians"; empty for a number without a unit.
QString UnitWord(Unit unit);

// Numbers and lists of numbers; of a shape its kind, or null.
QJsonValue ValueJson(const ParameterValue& value);

// The form of the command line, of a value as ValueJson gives it.
QString ValueText(const QJsonValue& value);

// What the label holds of the kind's parameters, one object each; see orvex.info.schema.json.
QJsonArray ParametersJson(const ShapeKind& kind, const TDF_Label& label);

// A line for each, as "Length  10 mm".
QString ParametersText(const QJsonArray& parameters, const QString& indent);

} // namespace Orvex::Cli
