// All that a STEP read produces, in one record that can be handed from process to process.
#pragma once

#include "assembly/AssemblyTreeMgr.h"
#include "step/StepReadReport.h"
#include "step/StepShapeData.h"

#include <QString>

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace Orvex {

struct ReadOutcome
{
  bool succeeded = false;
  QString lastError;
  std::map<std::string, TopoDS_Shape> importShapes;
  std::vector<StepShapeData> shapeDataList;
  std::vector<AssemblyTreeNode> roots;
  AssemblyTreeMgr::Definitions definitions;
  StepReadReport report;
  int nextNumber = 0; // for unnamed shapes of plain reads
};

// Writes an outcome in the byte order and layout of this machine: for a reader of the same build.
// Geometry that shapes share is written once and shared again after reading. The outcome stays as
// it is; it is not const because writing and reading are one piece of code.
void WriteOutcome(ReadOutcome& outcome, std::ostream& stream);

// Errors: throws std::string if the bytes are not a whole outcome.
ReadOutcome ReadOutcomeFrom(std::istream& stream);

} // namespace Orvex
