// Shapes from files and to files, through the kernel.
#pragma once

#include "model/FileFormat.h"

#include <TDF_Label.hxx>
#include <TopoDS_Shape.hxx>

#include <string>

namespace Orvex::Cli {

// The shape in a BRep file.
// Errors: a Failure (ExitCode::Unreadable).
TopoDS_Shape ReadBrep(const std::string& path);

struct IgesModel
{
  TopoDS_Shape shape; // lengths in millimetres; several roots make a compound
  std::string unit;   // as the file names it, "MM"; may be empty
  double unitInMillimetres = 0.0;
};

// Errors: a Failure (ExitCode::Unreadable).
IgesModel ReadIges(const std::string& path);

// What a sweep can start from: the shape in a BRep or STEP file, without the compounds and shells
// that only wrap one thing, so that a face stays a face on its way through a file.
// Errors: a Failure (ExitCode::Unreadable).
TopoDS_Shape ReadSweepable(const std::string& path);

// Writes the shape on a label, or for the binary format its whole document. The display name goes
// along where the format has room for one.
// Returns: false when the kernel does not manage to.
bool WriteModel(const TDF_Label& label, FileFormat format, const std::string& path);

} // namespace Orvex::Cli
