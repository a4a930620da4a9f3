// Documents of the kernel in its binary format.
#pragma once

#include <TDocStd_Document.hxx>

#include <string>

namespace Orvex::Cli {

// An empty document, which is the current one from then on.
Handle(TDocStd_Document) NewDocument();

// A document from a file, closed at the end of the scope: the kernel opens no file twice.
class OpenDocument
{
public:
  // Errors: a Failure (ExitCode::Unreadable) for a file that the kernel does not take.
  explicit OpenDocument(const std::string& path);
  ~OpenDocument();
  OpenDocument(const OpenDocument&) = delete;
  OpenDocument& operator=(const OpenDocument&) = delete;

  const Handle(TDocStd_Document) & Get() const;

private:
  Handle(TDocStd_Document) document;
};

// A document from a file as the current one, with its global parameters (the file beside it, if
// there is one) and its feature history.
class OpenModel
{
public:
  // Errors: a Failure (ExitCode::Unreadable) for a file that cannot be read.
  explicit OpenModel(const std::string& path);
  ~OpenModel();

private:
  OpenDocument opened;
};

// The file of global parameters that belongs to a document.
std::string ParameterFileOf(const std::string& documentPath);

// Returns: false when the kernel does not manage to.
bool SaveDocument(const Handle(TDocStd_Document) & document, const std::string& path);

} // namespace Orvex::Cli
