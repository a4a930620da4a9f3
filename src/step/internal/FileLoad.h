// Loads a STEP file into a kernel reader through a stream of our own, which tells how much of the
// file has been read and can end it early. Gives the same model as the reader's own ReadFile, file
// name for external references included.
#pragma once

#include <IFSelect_ReturnStatus.hxx>
#include <QString>

class STEPControl_Reader;

namespace Orvex {

class ReadControl;

// Requires: `path` names a file in UTF-8.
// Returns: the kernel's status; IFSelect_RetError for a file that cannot be opened. A cancelled
// read ends as if the file were cut short.
IFSelect_ReturnStatus LoadFile(STEPControl_Reader& reader, const QString& path,
                               ReadControl& control);

} // namespace Orvex
