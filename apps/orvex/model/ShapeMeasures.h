// How large a shape is, as JSON and as text.
#pragma once

#include <QJsonObject>
#include <QString>
#include <TopoDS_Shape.hxx>

namespace Orvex::Cli {

// "measures" (the volume of solids, the area of faces; the length of what has neither), "counts"
// and "box" of a shape. Errors: Standard_Failure passes.
QJsonObject SizeJson(const TopoDS_Shape& shape);

// Takes such an object: whether no measure is zero or infinite and the shape has an end.
bool HasSize(const QJsonObject& size);

// Takes such an object: a line for each measure and for the box.
QString SizeText(const QJsonObject& size);

} // namespace Orvex::Cli
