#include "model/Documents.h"

#include "document/ShapeDocMgr.h"
#include "frame/Failure.h"
#include "frame/Text.h"

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

bool SaveDocument(const Handle(TDocStd_Document) & document, const std::string& path)
{
  const TCollection_ExtendedString place(path.c_str(), true);
  return Application()->SaveAs(document, place) == PCDM_SS_OK;
}

} // namespace Orvex::Cli
