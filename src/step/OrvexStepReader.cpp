#include "step/OrvexStepReader.h"

#include "foundation/ScopedNumericLocale.h"
#include "step/internal/ErrorText.h"
#include "step/internal/FileLoad.h"
#include "step/internal/LabelReading.h"
#include "step/internal/ReadControl.h"

#include <STEPCAFControl_Reader.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <stdexcept>
#include <utility>

OrvexStepReader::OrvexStepReader()
{
  XCAFApp_Application::GetApplication()->NewDocument("MDTV-CAF", document);
}

OrvexStepReader::~OrvexStepReader()
{
  wait(); // here, not in the base: by then the thread's entry would be the base's
  Orvex::ErrorTextOf([this] { XCAFApp_Application::GetApplication()->Close(document); }, "");
}

void OrvexStepReader::SetInputFileName(const QString& fileName)
{
  CStepFileReader::SetInputFileName(fileName);
}

std::map<std::string, TopoDS_Shape> OrvexStepReader::GetImportShapesMap() const
{
  return importShapes;
}

void OrvexStepReader::run()
{
  const auto error = Orvex::ErrorTextOf([this] { Run(); }, "Error reading STEP file");
  lastError = error.value_or(QString());
  readSucceeded = !error;
}

void OrvexStepReader::Run()
{
  const Orvex::ScopedNumericLocale locale;
  BeginRead();
  try {
    readStepsCAF();
  } catch (const std::exception& error) {
    EndRead(true);
    throw std::string("Error reading STEP file: ").append(error.what());
  } catch (...) {
    EndRead(true);
    throw;
  }
  EndRead(false);
}

void OrvexStepReader::readStepsCAF()
{
  Orvex::ReadControl control(options, cancelRequested);
  STEPCAFControl_Reader reader;
  reader.SetColorMode(true);
  reader.SetLayerMode(true);
  reader.SetNameMode(true);
  control.Enter("parse", 0.0);
  if (Orvex::LoadFile(reader.ChangeReader(), inputFileName, control) != IFSelect_RetDone)
    throw std::runtime_error("Failed to read STEP file");
  control.Enter("transfer", 0.0);
  const Handle(Orvex::KernelProgress) progress = new Orvex::KernelProgress(control);
  if (!reader.Transfer(document, progress->Start()))
    throw std::runtime_error("Failed to transfer STEP file to document");

  control.Enter("collect");
  TDF_LabelSequence labels;
  XCAFDoc_DocumentTool::ShapeTool(document->Main())->GetFreeShapes(labels);
  for (const TDF_Label& label : labels) {
    const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
    if (!shape.IsNull())
      importShapes[getLabelName(label)] = shape;
  }
}

std::string OrvexStepReader::getLabelName(const TDF_Label& label) const
{
  opencascade::handle<TDataStd_Name> name;
  return label.FindAttribute(TDataStd_Name::GetID(), name) ? Orvex::ProductNameOf(label)
                                                           : Orvex::EntryOf(label);
}
