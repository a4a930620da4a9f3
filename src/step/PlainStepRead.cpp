// The plain way through a file: shapes and the names of their entities, no document.
#include "step/CStepFileReader.h"

#include "foundation/OrvexEnvVariableSet.h"
#include "foundation/ScopedNumericLocale.h"
#include "step/internal/EntityName.h"
#include "step/internal/ErrorText.h"
#include "step/internal/FaultGuard.h"
#include "step/internal/FileLoad.h"
#include "step/internal/ReadControl.h"
#include "step/internal/ReadLog.h"
#include "step/internal/ReportCollector.h"

#include <STEPControl_Reader.hxx>
#include <TopoDS_Iterator.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include <QFileInfo>

bool CStepFileReader::TryReadStepsMapNew()
{
  const Orvex::ScopedNumericLocale locale;
  BeginRead();
  std::optional<QString> error;
  const auto read = [this] {
    options.isolated ? ReadIsolated(false) : readStepsMapNew(inputFileName, true);
  };
  if (Orvex::FaultGuard::Run(
        [&] { error = Orvex::ErrorTextOf(read, "basic STEP reader failed"); }) != 0)
    error = "basic STEP reader crashed";
  if (!error && !HasImportedShapes())
    error = "basic STEP reader returned no shapes";
  if (error && lastError.isEmpty())
    lastError = *error;
  EndRead(error.has_value());
  return !error;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is given
void CStepFileReader::readStepsMapNew(QString file, bool /*flag*/)
{
  baseName = QFileInfo(file).completeBaseName();
  Orvex::ReadControl control(options, cancelRequested);

  STEPControl_Reader reader;
  Orvex::LogRead("StepReader: start to ReadFile()");
  control.Enter("parse", 0.0);
  const IFSelect_ReturnStatus status = Orvex::LoadFile(reader, file, control);
  Orvex::LogRead("StepReader: Finish to ReadFile()");
  control.ThrowIfCancelled(Orvex::kPlainCancelled);
  if (status != IFSelect_RetDone)
    return;
  if (options.collectReport)
    Orvex::ReportLoad(reader, report);

  Orvex::LogRead("StepReader: start to TransferRoots()");
  control.Enter("transfer", 0.0);
  const Handle(Orvex::KernelProgress) progress = new Orvex::KernelProgress(control);
  reader.TransferRoots(progress->Start());
  Orvex::LogRead("StepReader: Finish to TransferRoots()");
  control.ThrowIfCancelled(Orvex::kPlainCancelled);

  control.Enter("collect");
  TopoDS_Shape shape = reader.OneShape();
  if (options.collectReport)
    Orvex::ReportTransfer(reader, {shape}, report);
  if (!shape.IsNull())
    StorePlain(reader.WS()->TransferReader(), shape);
}

void CStepFileReader::StorePlain(const opencascade::handle<XSControl_TransferReader>& transfer,
                                 TopoDS_Shape& shape)
{
  if (shape.ShapeType() != TopAbs_COMPOUND) {
    const auto entity = transfer->EntityFromShapeResult(shape, 1);
    if (!entity.IsNull())
      importShapes[PlainNameOf(entity)] = shape;
    return;
  }
  if (OrvexEnvVariableSet::isDumpMessageToFile())
    Orvex::LogRead("StepReader: Start to iterate all shapes, all Shape number is: " +
                   std::to_string(shape.NbChildren()));
  ParseCompound(transfer, shape);
}

void CStepFileReader::ParseCompound(const opencascade::handle<XSControl_TransferReader>& transfer,
                                    TopoDS_Shape& shape)
{
  for (TopoDS_Iterator child(shape); child.More(); child.Next()) {
    TopoDS_Shape part = child.Value();
    if (OrvexEnvVariableSet::isReadSTEPSubgroup() && part.ShapeType() == TopAbs_COMPOUND)
      ParseCompound(transfer, part);
    importShapes[PlainNameOf(transfer->EntityFromShapeResult(part, 1))] = part;
  }
}

std::string
CStepFileReader::PlainNameOf(const opencascade::handle<Standard_Transient>& entity) const
{
  if (readObjectNames && !entity.IsNull()) {
    std::string name = Orvex::ObjectNameOf(entity);
    if (!name.empty())
      return name;
  }
  return baseName.toStdString() + "_" + std::to_string(NextNumberForUnnamed()++);
}

int& CStepFileReader::NextNumberForUnnamed()
{
  static int number = 0;
  return number;
}
