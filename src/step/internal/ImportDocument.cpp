#include "step/internal/ImportDocument.h"

#include <XCAFApp_Application.hxx>

namespace Orvex {

ImportDocument::ImportDocument(const char* format)
{
  XCAFApp_Application::GetApplication()->NewDocument(format, document);
}

ImportDocument::~ImportDocument()
{
  try {
    if (!document.IsNull())
      XCAFApp_Application::GetApplication()->Close(document);
  } catch (const Standard_Failure&) {
    // The document stays with the application; what was read is not touched by that.
  }
}

opencascade::handle<TDocStd_Document>& ImportDocument::Get()
{
  return document;
}

} // namespace Orvex
