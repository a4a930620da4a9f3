// All that `orvex info` tells about one file, as one JSON object: an entry of "files" in
// orvex.info.schema.json.
#pragma once

#include "frame/Failure.h"
#include "frame/Progress.h"

#include "step/StepShapeData.h"
#include <QJsonObject>

#include <TopoDS_Shape.hxx>

#include <string>
#include <vector>

namespace Orvex::Cli {

struct StepInfoOptions
{
  bool plain = false;            // the reader that knows shapes and their names only
  bool tree = false;             // include the product tree
  double timeLimitSeconds = 0.0; // 0: none; looked at between two reports of progress
};

// Reads the file and describes it. A file that cannot be read, for whatever reason, gives an entry
// that failed.
//
// Never throws. Looks at InterruptRequested while it runs.
QJsonObject DescribeStepFile(const std::string& path, const StepInfoOptions& options,
                             const ProgressSink& progress);

// The shapes alone, by the plain reader.
// Errors: a Failure (ExitCode::Unreadable).
std::vector<TopoDS_Shape> ReadStepShapes(const std::string& path);

// The shapes by the full reader, which leaves the product tree in AssemblyTreeMgr.
// Errors: a Failure (ExitCode::Unreadable, TimeLimit or Interrupted).
std::vector<StepShapeData> ReadStepModel(const std::string& path, const ProgressSink& progress);

QJsonObject FailedEntry(const Failure& failure);
bool HasFailed(const QJsonObject& entry);

} // namespace Orvex::Cli
