// Fills a StepReadReport from what a kernel reader and its document hold after a read.
#pragma once

#include "step/StepReadReport.h"

#include <TopoDS_Shape.hxx>

#include <vector>

class STEPControl_Reader;
class TDocStd_Document;

namespace Orvex {

// Schema, unit, counts of the file, and the complaints of loading.
// Requires: a loaded file.
void ReportLoad(STEPControl_Reader& reader, StepReadReport& report);

// The complaints of the translation, what it lost, and what came out of it.
// Requires: a translated file; `outcome` holds its top-level shapes.
void ReportTransfer(const STEPControl_Reader& reader, const std::vector<TopoDS_Shape>& outcome,
                    StepReadReport& report);

// Products, occurrences, names and colours.
void ReportDocument(const TDocStd_Document& document, StepReadReport& report);

} // namespace Orvex
