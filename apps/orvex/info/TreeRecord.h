// The product tree as JSON, with what can be counted in it.
#pragma once

#include "assembly/AssemblyTreeMgr.h"

#include <QJsonArray>
#include <QJsonObject>

#include <map>
#include <string>

namespace Orvex::Cli {

struct TreeRecord
{
  QJsonArray roots;       // nested nodes, see orvex.info.schema.json
  QJsonArray definitions; // the parts, in the order in which the tree first uses them
  int occurrences = 0;    // nodes below the roots
  int leaves = 0;         // nodes without children, roots included
  int depth = 0;          // 0: nothing below the roots
};

// `colours` gives a leaf its colour by the name of its shape.
TreeRecord RecordTree(const AssemblyTreeMgr& tree, const std::map<std::string, QString>& colours);

} // namespace Orvex::Cli
