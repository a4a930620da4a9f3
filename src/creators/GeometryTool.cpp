#include "creators/GeometryTool.h"

#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>

void GeometryTool::SaveShapeToIgsFile(const std::string& path, const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return;
  IGESControl_Controller::Init();
  IGESControl_Writer writer("MM", 0);
  writer.AddShape(shape);
  writer.ComputeModel();
  writer.Write(path.c_str(), false);
}
