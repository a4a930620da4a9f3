// The export of OrvexGeometryOp.
#include "creators/GeometryTool.h"
#include "operations/OrvexGeometryOp.h"

void OrvexGeometryOp::SaveShapeToIgsFile(std::string& path, TopoDS_Shape shape)
{
  GeometryTool::SaveShapeToIgsFile(path, shape);
}
