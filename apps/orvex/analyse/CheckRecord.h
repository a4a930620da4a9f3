// The model check of one file, as JSON and as text.
#pragma once

#include "analysis/ModelCheckOptions.h"
#include "frame/Progress.h"

#include <QJsonObject>
#include <QString>

#include <string>

namespace Orvex::Cli {

// Reads the file and checks every part. A shape that occurs several times is checked once; its
// issues are told for each occurrence, with the place there.
//
// Returns: an entry of "files" in orvex.check.schema.json.
// Errors: a Failure; ExitCode::Unreadable for the file.
QJsonObject CheckModel(const std::string& path, const ModelCheckOptions& options,
                       const ProgressSink& progress);

// Takes such an entry: its issues grouped by code, critical ones first; all of them, or a few of
// each.
QString CheckText(const QJsonObject& entry, bool all);

} // namespace Orvex::Cli
