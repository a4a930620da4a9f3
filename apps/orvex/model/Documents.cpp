#include "model/Documents.h"

#include "document/ShapeDocMgr.h"
#include "features/FeatureTree.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <BinXCAFDrivers.hxx>
#include <UnitsMethods_LengthUnit.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>

namespace Orvex::Cli {

namespace {

const Handle(XCAFApp_Application) & Application()
{
  static const Handle(XCAFApp_Application) application = [] {
    auto made = XCAFApp_Application::GetApplication();
    BinXCAFDrivers::DefineFormat(made);
    return made;
  }();
  return application;
}

QString ReasonOf(PCDM_ReaderStatus status)
{
  switch (status) {
  case PCDM_RS_NoVersion:
  case PCDM_RS_NoSchema:
  case PCDM_RS_UnrecognizedFileFormat:
    return QStringLiteral("the kernel does not know its format or version");
  case PCDM_RS_FormatFailure:
  case PCDM_RS_ReaderException:
  case PCDM_RS_MakeFailure:
  case PCDM_RS_DriverFailure:
    return QStringLiteral("it is damaged or cut off");
  case PCDM_RS_WrongResource:
  case PCDM_RS_NoDriver:
  case PCDM_RS_TypeFailure:
  case PCDM_RS_TypeNotFoundInSchema:
    return QStringLiteral("it is no XCAF document");
  default:
    return QStringLiteral("the kernel does not read it (status %1)").arg(int(status));
  }
}

} // namespace

Handle(TDocStd_Document) NewDocument()
{
  Handle(TDocStd_Document) document;
  Application()->NewDocument("BinXCAF", document);
  XCAFDoc_DocumentTool::SetLengthUnit(document, 1.0, UnitsMethods_LengthUnit_Millimeter);
  ShapeDocMgr::GetInstance()->SetDoc(document);
  return document;
}

OpenDocument::OpenDocument(const std::string& path)
{
  const PCDM_ReaderStatus status =
    Application()->Open(TCollection_ExtendedString(path.c_str(), true), document);
  if (status != PCDM_RS_OK)
    throw Failure{ExitCode::Unreadable, TextFromBytes(path), {}, ReasonOf(status), {}};
}

OpenDocument::~OpenDocument()
{
  Application()->Close(document);
}

const Handle(TDocStd_Document) & OpenDocument::Get() const
{
  return document;
}

OpenModel::OpenModel(const std::string& path) : opened(path)
{
  ShapeDocMgr::GetInstance()->SetDoc(opened.Get());
  const std::string parameters = ParameterFileOf(path);
  if (QString error; !GlobalParaMeterMgr::LoadFromFile(TextFromBytes(parameters), &error))
    throw Failure{ExitCode::Unreadable,
                  TextFromBytes(parameters),
                  {},
                  QStringLiteral("it is no file of global parameters"),
                  QStringLiteral("it belongs to %1").arg(TextFromBytes(path))};
  RestoreFeatureTree();
}

OpenModel::~OpenModel()
{
  // The history and the registry hold labels, which end with the document.
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
}

std::string ParameterFileOf(const std::string& documentPath)
{
  return GlobalParaMeterMgr::SidecarPath(TextFromBytes(documentPath)).toStdString();
}

bool SaveDocument(const Handle(TDocStd_Document) & document, const std::string& path)
{
  const TCollection_ExtendedString place(path.c_str(), true);
  return Application()->SaveAs(document, place) == PCDM_SS_OK;
}

} // namespace Orvex::Cli
