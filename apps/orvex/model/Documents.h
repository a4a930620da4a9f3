// Documents of the kernel in its binary format.
#pragma once

#include <TDocStd_Document.hxx>

#include <string>

namespace Orvex::Cli {

// An empty document, which is the current one from then on.
Handle(TDocStd_Document) NewDocument();

// Errors: a Failure (ExitCode::Unreadable) for a file that the kernel does not take.
Handle(TDocStd_Document) OpenDocument(const std::string& path);

// Returns: false when the kernel does not manage to.
bool SaveDocument(const Handle(TDocStd_Document) & document, const std::string& path);

} // namespace Orvex::Cli
