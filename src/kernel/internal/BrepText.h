// Shapes as text in the kernel's own format: with triangles, without normals, format version 3.
#pragma once

#include <TopoDS_Shape.hxx>

#include <string>

namespace Orvex {

// Units: numbers with full precision, in the "C" locale whatever the process has.
std::string BrepText(const TopoDS_Shape& shape);

// Null for an empty text and for one that the kernel does not read. A shape that was read has its
// "checked" flags set; in all else it is what was written.
TopoDS_Shape ShapeOfBrepText(const std::string& text);

} // namespace Orvex
