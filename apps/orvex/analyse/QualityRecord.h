// The surface analyses of a file, as JSON, CSV and text.
#pragma once

#include "frame/Progress.h"

#include <QJsonObject>
#include <QString>
#include <gp_Dir.hxx>

#include <string>

namespace Orvex::Cli {

enum class QualityKind { Curvature, Zebra, Draft, MinRadius, Thickness, Reflection, Continuity };

struct QualityRequest
{
  QualityKind kind = QualityKind::Curvature;
  std::string path;
  int grid = 10;
  // Light, pull or view.
  gp_Dir direction = gp_Dir(0, 0, 1);
  double minAngleDegrees = 1.0;
  double frequency = 10.0;
  double tileSize = 0.2;
  double tolerance = 1e-6;
  // The result has the samples themselves, too.
  bool withSamples = true;
};

// Reads the file and analyses the whole model.
//
// Returns: the result as in orvex.quality.schema.json, but for the schema itself.
// Errors: a Failure; ExitCode::Unreadable for the file, ExitCode::KernelFailure where there is
// nothing
//   to sample.
QJsonObject AnalyseQuality(const QualityRequest& request, const ProgressSink& progress);

// Take such a result: figures and a histogram of the values; a line for each sample.
QString QualityText(const QJsonObject& result);
QString QualityCsv(const QJsonObject& result);

} // namespace Orvex::Cli
