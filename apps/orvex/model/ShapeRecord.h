// Shapes as JSON: what they are, how many of what, how large.
#pragma once

#include "info/ShapeCounts.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

// "solid", "face", "edge".
QString ShapeWord(const TopoDS_Shape& shape);

QJsonObject CountsJson(const ShapeCounts& counts);

// Null for a box without an end and for none at all: JSON knows no infinities.
QJsonValue BoxJson(const Bnd_Box& box);

// "#b833ca" of a colour in linear RGB. A broken file can give anything, no number at all included:
// that becomes 0.
QString Hex(double r, double g, double b);

} // namespace Orvex::Cli
