// The comparison of two models, as JSON and as text.
#pragma once

#include "analysis/ShapeEquivalence.h"
#include "frame/Progress.h"

#include <QJsonObject>
#include <QString>

#include <string>

namespace Orvex::Cli {

// Returns: the result as in orvex.compare.schema.json, but for the schema itself.
// Errors: a Failure; ExitCode::Unreadable for a file.
QJsonObject CompareModels(const std::string& source, const std::string& candidate,
                          const ShapeEquivalenceOptions& options, const ProgressSink& progress);

// Takes such a result: both models side by side with what differs.
QString CompareText(const QJsonObject& compared);

} // namespace Orvex::Cli
