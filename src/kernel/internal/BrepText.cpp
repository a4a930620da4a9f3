#include "kernel/internal/BrepText.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <TopTools_FormatVersion.hxx>

#include <sstream>

namespace Orvex {

std::string BrepText(const TopoDS_Shape& shape)
{
  std::ostringstream out;
  out.imbue(std::locale::classic());
  BRepTools::Write(shape, out, true, false, TopTools_FormatVersion_VERSION_3);
  return std::move(out).str();
}

TopoDS_Shape ShapeOfBrepText(const std::string& text)
{
  TopoDS_Shape shape;
  if (text.empty())
    return shape;
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  try {
    // The kernel does not look whether a read succeeded: behind the end of a text it reads the same
    // number for ever.
    in.exceptions(std::ios::failbit | std::ios::badbit);
    BRepTools::Read(shape, in, BRep_Builder());
  } catch (...) {
    return {};
  }
  return shape;
}

} // namespace Orvex
