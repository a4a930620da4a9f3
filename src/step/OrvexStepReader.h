// A small STEP reader: top-level shapes by name, failure by exception.
//
//   OrvexStepReader reader;
//   reader.SetInputFileName("bolt.step");
//   reader.Run();                               // or start(), and wait() for the end
//   for (const auto& [name, shape] : reader.GetImportShapesMap())
//     ...
//
// It reads into a document of its own (format "MDTV-CAF"), which lives as long as the reader.
//
// On its thread nothing can catch an exception: there the text of what was thrown becomes
// GetLastError, and ReadSucceeded is false.
//
// Caveat: no guard against faults of the processor, no isolated read, no report, no shape data
// list, no product tree: CStepFileReader has them. Progress and cancel of the base class work.
#pragma once

#include "step/CStepFileReader.h"

#include <TDocStd_Document.hxx>

class TDF_Label;

class ORVEX_API OrvexStepReader : public CStepFileReader
{
public:
  OrvexStepReader();
  ~OrvexStepReader() override;

  void SetInputFileName(const QString& fileName);

  // Reads on the calling thread. Adds to the shapes of earlier reads; of shapes with equal names
  // the last one stays.
  // Errors: throws std::string "Error reading STEP file: " and the reason; the kernel's own
  // exceptions (Standard_Failure) pass as they are.
  void Run();

  // Name to shape: the names of the top-level products, the label entry for one without a name.
  std::map<std::string, TopoDS_Shape> GetImportShapesMap() const;

private:
  void run() override;
  void readStepsCAF();
  std::string getLabelName(const TDF_Label& label) const;

  opencascade::handle<TDocStd_Document> document;
};
