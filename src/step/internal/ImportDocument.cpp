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
    if (document.IsNull())
      return;
    // Layers and their shapes hold each other; closing alone would leave them in memory.
    document->Main().Root().ForgetAllAttributes(true);
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
