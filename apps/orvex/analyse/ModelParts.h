// The shapes of a file under their names, for analyses.
#pragma once

#include "frame/Progress.h"

#include <QString>
#include <TopoDS_Shape.hxx>

#include <string>
#include <vector>

namespace Orvex::Cli {

struct ModelPart
{
  QString name;
  TopoDS_Shape shape;
};

// Checks that the file is a STEP or BRep file worth reading.
// Errors: a Failure (ExitCode::Unreadable).
void RequireModelFile(const std::string& path);

// Every occurrence of a part in a STEP file where it stands; the one shape of a BRep file.
// Errors: a Failure (ExitCode::Unreadable).
std::vector<ModelPart> ReadModelParts(const std::string& path, const ProgressSink& progress);

// The whole model: the shape of a single part, else all in one compound.
TopoDS_Shape WholeOf(const std::vector<ModelPart>& parts);

} // namespace Orvex::Cli
