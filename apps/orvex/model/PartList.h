// The parts in files of models: the occurrences at the leaves of the product tree, placed.
#pragma once

#include "frame/Progress.h"

#include <TopoDS_Shape.hxx>

#include <QString>

#include <string>
#include <vector>

namespace Orvex::Cli {

struct NamedPart
{
  QString name;
  // Names down the tree with "/" between them, below the file if there are several. Of siblings
  // with one name each bears its number: "shaft/ball #3".
  QString path;
  TopoDS_Shape shape;
};

// A file without a product tree gives the solids in it, or the one shape that there is.
// Errors: a Failure (ExitCode::Unreadable).
std::vector<NamedPart> ReadParts(const std::vector<std::string>& files,
                                 const ProgressSink& progress);

// All of a file as one shape.
// Errors: a Failure (ExitCode::Unreadable).
TopoDS_Shape ReadWhole(const std::string& file, const ProgressSink& progress);

} // namespace Orvex::Cli
