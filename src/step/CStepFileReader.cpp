#include "step/CStepFileReader.h"

#include "assembly/AssemblyTreeMgr.h"
#include "foundation/OrvexEnvVariableSet.h"
#include "foundation/ScopedNumericLocale.h"
#include "step/internal/EntityName.h"
#include "step/internal/ErrorText.h"
#include "step/internal/FaultGuard.h"
#include "step/internal/FileLoad.h"
#include "step/internal/ImportDocument.h"
#include "step/internal/IsolatedRead.h"
#include "step/internal/ProductTree.h"
#include "step/internal/ReadControl.h"
#include "step/internal/ReadLog.h"
#include "step/internal/ReportCollector.h"
#include "step/replay/internal/ReplayModel.h"

#include <Interface_Static.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TDF_LabelSequence.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include <QFileInfo>

#include <algorithm>

namespace {

// The kernel drops settings that come before its controllers are initialised.
void SetUpKernel()
{
  STEPCAFControl_Controller::Init();
  Interface_Static::SetIVal("read.stepcaf.subshapes.name", 1);
  Interface_Static::SetCVal("read.step.codepage", "UTF8");
  Interface_Static::SetCVal("read.stepcaf.codepage", "UTF8");
}

std::vector<TDF_Label> FreeShapesOf(const TDocStd_Document& document)
{
  TDF_LabelSequence labels;
  XCAFDoc_DocumentTool::ShapeTool(document.Main())->GetFreeShapes(labels);
  return {labels.begin(), labels.end()};
}

std::vector<TopoDS_Shape> ShapesOf(const std::vector<TDF_Label>& labels)
{
  std::vector<TopoDS_Shape> shapes;
  shapes.reserve(labels.size());
  for (const TDF_Label& label : labels)
    shapes.push_back(XCAFDoc_ShapeTool::GetShape(label));
  return shapes;
}

void SetModes(STEPCAFControl_Reader& reader)
{
  reader.SetColorMode(true);
  reader.SetNameMode(true);
  reader.SetLayerMode(true);
  reader.SetPropsMode(true);
  reader.SetMatMode(true);
}

void LoadOrThrow(STEPCAFControl_Reader& reader, const QString& file, Orvex::ReadControl& control)
{
  control.Enter("parse", 0.0);
  const IFSelect_ReturnStatus status = Orvex::LoadFile(reader.ChangeReader(), file, control);
  Orvex::LogRead("StepReader(XCAF): finish ReadFile()");
  control.ThrowIfCancelled(Orvex::kXcafCancelled);
  if (status != IFSelect_RetDone)
    throw std::string("XCAF ReadFile failed");
}

void TransferOrThrow(STEPCAFControl_Reader& reader, Handle(TDocStd_Document) & document,
                     Orvex::ReadControl& control)
{
  Orvex::LogRead("StepReader(XCAF): start Transfer()");
  control.Enter("transfer", 0.0);
  const Handle(Orvex::KernelProgress) progress = new Orvex::KernelProgress(control);
  const bool isTransferred = reader.Transfer(document, progress->Start());
  control.ThrowIfCancelled(Orvex::kXcafCancelled);
  if (!isTransferred)
    throw std::string("XCAF Transfer failed");
  Orvex::LogRead("StepReader(XCAF): finish Transfer()");
}

void BuildProductTree(const std::vector<TDF_Label>& freeShapes, Orvex::ShapeCollector& collector,
                      const Orvex::ReadControl& control)
{
  Orvex::ProductTree tree(collector, control);
  std::vector<AssemblyTreeNode> roots;
  roots.reserve(freeShapes.size());
  for (const TDF_Label& label : freeShapes)
    roots.push_back(tree.RootOf(label));
  AssemblyTreeMgr::GetInstance().SetDefinitions(std::move(tree.GetDefinitions()));
  AssemblyTreeMgr::GetInstance().SetRoots(std::move(roots));
}

} // namespace

CStepFileReader::CStepFileReader() = default;

CStepFileReader::~CStepFileReader()
{
  wait();
}

void CStepFileReader::SetInputFileName(QString fileName)
{
  inputFileName = std::move(fileName);
  cancelRequested = false;
}

void CStepFileReader::SetReadOptions(const Orvex::StepReadOptions& readOptions)
{
  options = readOptions;
}

bool CStepFileReader::ReadSynchronously()
{
  wait();
  run();
  return readSucceeded;
}

void CStepFileReader::run()
{
  // Out here, since a fault skips what the read itself would put back.
  const Orvex::ScopedNumericLocale locale;
  readObjectNames = OrvexEnvVariableSet::isReadSTEPObjectName();
  readSucceeded = false;
  lastError.clear();
  importShapes.clear();
  shapeDataList.clear();

  bool succeeded = false;
  if (Orvex::FaultGuard::Run([&] { succeeded = TryReadStepWithXCAF(); }) != 0) {
    succeeded = false;
    SetLastErrorFromLatin1("XCAF reader crashed with SEH");
    EndRead(true);
  }
  readSucceeded = succeeded;
}

bool CStepFileReader::TryReadStepWithXCAF()
{
  const Orvex::ScopedNumericLocale locale;
  BeginRead();
  const auto error = Orvex::ErrorTextOf(
    [this] { options.isolated ? ReadIsolated(true) : readStepWithXCAF(inputFileName); },
    "XCAF reader failed");
  if (error)
    lastError = *error;
  else if (!HasImportedShapes())
    lastError = "XCAF reader returned no shapes";
  const bool failed = error || !HasImportedShapes();
  EndRead(failed);
  return !failed;
}

void CStepFileReader::readStepWithXCAF(const QString& file)
{
  AssemblyTreeMgr::GetInstance().Clear();
  baseName = QFileInfo(file).completeBaseName();
  Orvex::ReadControl control(options, cancelRequested);

  Orvex::LogRead("StepReader(XCAF): start ReadFile()");
  SetUpKernel();
  STEPCAFControl_Reader reader;
  SetModes(reader);
  LoadOrThrow(reader, file, control);
  if (options.collectReport)
    Orvex::ReportLoad(reader.ChangeReader(), report);

  Orvex::ImportDocument document("MDTV-XCAF");
  TransferOrThrow(reader, document.Get(), control);
  control.Enter("collect");
  CollectFrom(*document.Get(), control);
  if (options.collectReport) {
    Orvex::ReportTransfer(reader.Reader(), ShapesOf(FreeShapesOf(*document.Get())), report);
    Orvex::ReportDocument(*document.Get(), report);
  }
  Orvex::LogRead("StepReader(XCAF): imported " + std::to_string(shapeDataList.size()) + " shapes");
}

void CStepFileReader::CollectFrom(const TDocStd_Document& document,
                                  const Orvex::ReadControl& control)
{
  const std::vector<TDF_Label> freeShapes = FreeShapesOf(document);
  const auto colors = XCAFDoc_DocumentTool::ColorTool(document.Main());
  Orvex::ShapeCollector collector(colors, baseName.toStdString(), importShapes, shapeDataList,
                                  control);
  for (const TDF_Label& label : freeShapes)
    collector.Collect(label);
  BuildProductTree(freeShapes, collector, control);
}

void CStepFileReader::ReadIsolated(bool isFull)
{
  if (isFull)
    AssemblyTreeMgr::GetInstance().Clear();
  baseName = QFileInfo(inputFileName).completeBaseName();
  Orvex::ReadControl control(options, cancelRequested);
  Orvex::WorkerRequest request;
  request.file = inputFileName;
  request.isFull = isFull;
  request.collectReport = options.collectReport;
  request.readObjectNames = readObjectNames;
  request.nextNumber = NextNumberForUnnamed();
  request.timeLimitSeconds = options.timeLimitSeconds;
  Orvex::ReadOutcome outcome = Orvex::ReadInWorker(request, control, timeLimitReached);

  report = std::move(outcome.report);
  for (auto& [name, shape] : outcome.importShapes)
    importShapes.insert_or_assign(name, std::move(shape));
  if (isFull) {
    shapeDataList = std::move(outcome.shapeDataList);
    AssemblyTreeMgr::GetInstance().SetDefinitions(std::move(outcome.definitions));
    AssemblyTreeMgr::GetInstance().SetRoots(std::move(outcome.roots));
  } else {
    NextNumberForUnnamed() = outcome.nextNumber;
  }
  if (!outcome.succeeded)
    throw outcome.lastError.toStdString();
}

void CStepFileReader::BeginRead()
{
  replay.reset();
  report = {};
  wasCancelled = false;
  timeLimitReached = false;
}

void CStepFileReader::EndRead(bool failed)
{
  // A request that came too late must not end the next read.
  wasCancelled = cancelRequested.exchange(false) && failed;
}

bool CStepFileReader::HasImportedShapes() const
{
  return std::ranges::any_of(shapeDataList,
                             [](const StepShapeData& item) { return !item.shape.IsNull(); }) ||
         std::ranges::any_of(importShapes,
                             [](const auto& entry) { return !entry.second.IsNull(); });
}

bool CStepFileReader::ReadSucceeded() const
{
  return readSucceeded;
}

QString CStepFileReader::GetLastError() const
{
  return lastError;
}

void CStepFileReader::SetLastErrorFromLatin1(const char* text)
{
  lastError = QString::fromLatin1(text);
}

std::map<std::string, TopoDS_Shape> CStepFileReader::GetImportShapesMap() const
{
  return importShapes;
}

std::vector<StepShapeData>& CStepFileReader::GetImportShapeDataList()
{
  return shapeDataList;
}

const std::vector<StepShapeData>& CStepFileReader::GetImportShapeDataList() const
{
  return shapeDataList;
}

const Orvex::StepReadReport& CStepFileReader::GetReadReport() const
{
  return report;
}

void CStepFileReader::RequestCancel()
{
  cancelRequested = true;
}

bool CStepFileReader::WasCancelled() const
{
  return wasCancelled;
}

bool CStepFileReader::TimeLimitReached() const
{
  return timeLimitReached;
}
