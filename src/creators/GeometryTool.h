// Export of a single shape.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

#include <string>

class ORVEX_API GeometryTool
{
public:
  // Writes an IGES file in millimetres: the whole file takes the place of what was there, or
  // nothing changes. A null shape writes nothing; whether the file could be written is not
  // reported. Errors: Standard_Failure passes.
  static void SaveShapeToIgsFile(const std::string& path, const TopoDS_Shape& shape);
};
