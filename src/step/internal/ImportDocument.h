// A document of the kernel's application for the length of a scope. The application keeps every
// document that it made until it is closed.
#pragma once

#include <TDocStd_Document.hxx>

namespace Orvex {

class ImportDocument
{
public:
  explicit ImportDocument(const char* format);
  ~ImportDocument();
  ImportDocument(const ImportDocument&) = delete;
  ImportDocument& operator=(const ImportDocument&) = delete;

  opencascade::handle<TDocStd_Document>& Get();

private:
  opencascade::handle<TDocStd_Document> document;
};

} // namespace Orvex
