// All that `orvex info` tells about a binary document, a BRep or an IGES file: an entry of "files"
// in orvex.info.schema.json.
#pragma once

#include "frame/Progress.h"
#include "model/FileFormat.h"

#include <QJsonObject>

#include <string>

namespace Orvex::Cli {

// Reads the file and describes it; with the tree of a document if there is to be one. A file that
// cannot be read, for whatever reason, gives an entry that failed.
//
// Never throws.
QJsonObject DescribeModelFile(const std::string& path, FileFormat format, bool withTree,
                              const ProgressSink& progress);

} // namespace Orvex::Cli
