// What lines hit in the parts of a file, as JSON and text.
#pragma once

#include "frame/Progress.h"
#include "picking/PickingLevel.h"

#include <QJsonObject>
#include <QString>
#include <gp_Lin.hxx>

#include <optional>
#include <string>
#include <vector>

namespace Orvex::Cli {

struct PickRequest
{
  std::string path;
  PickingLevel level = PickingLevel::Face;
  // The library's own if not given.
  std::optional<double> tolerance;
  std::vector<gp_Lin> rays;
};

// From "ox,oy,oz,dx,dy,dz", also with blanks or tabs between the numbers.
// Returns: none if it is not six finite numbers with a direction.
std::optional<gp_Lin> RayFromText(const std::string& text);

// A ray in each line; what follows a "#", and empty lines, are passed over.
// Errors: a Failure that names the line (ExitCode::Unreadable).
std::vector<gp_Lin> RaysFromFile(const std::string& path);

// Reads the file and picks among its parts by each ray.
//
// Returns: the result as in orvex.pick.schema.json, but for the schema itself.
// Errors: a Failure (ExitCode::Unreadable).
QJsonObject PickModel(const PickRequest& request, const ProgressSink& progress);

QString PickText(const QJsonObject& result);

} // namespace Orvex::Cli
