// What the reports on pairs of parts have in common.
#pragma once

#include "model/PartList.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <gp_Pnt.hxx>

#include <string>
#include <vector>

namespace Orvex::Cli {

QJsonObject PartJson(const NamedPart& part);
QJsonArray PointJson(const gp_Pnt& point);
QJsonArray FilesJson(const std::vector<std::string>& files);

// "12 parts", "1 part".
QString Counted(qsizetype count, const char* word);

// Writes shapes as one compound, in the format of the name.
// Errors: a Failure (ExitCode::Partial).
void WriteShapes(const std::vector<TopoDS_Shape>& shapes, const std::string& path,
                 const std::string& shown);

} // namespace Orvex::Cli
