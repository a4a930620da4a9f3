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

// What a sweep or an operation can start from: the shape in a BRep or STEP file, without the
// compounds and shells that only wrap one thing, so that a face stays a face on its way through a
// file. Errors: a Failure (ExitCode::Unreadable).
TopoDS_Shape ReadOperand(const std::string& path);

// Where a shape is to be written.
struct WriteTarget
{
  FileFormat format;
  std::string path; // where to write
  std::string name; // what the user calls it
};

// The format that the ending of a name tells.
// Errors: a Failure (ExitCode::Usage) for an ending that tells none.
FileFormat OutputFormat(const std::string& path);

// Writes the shape on a label, or for the binary format its whole document. The display name goes
// along where the format has room for one.
// Errors: a Failure (ExitCode::Partial) when the kernel does not manage to.
void WriteModel(const TDF_Label& label, const WriteTarget& target);

} // namespace Orvex::Cli
