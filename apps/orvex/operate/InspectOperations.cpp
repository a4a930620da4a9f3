// What operations tell of shapes without making any.
#include "operate/OperationOptions.h"

#include "operations/OrvexGeometryOp.h"

#include <QJsonArray>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace Orvex::Cli {

namespace {

TopoDS_Face FirstFaceOf(const TopoDS_Shape& shape)
{
  const TopExp_Explorer first(shape, TopAbs_FACE);
  return first.More() ? TopoDS::Face(first.Current()) : TopoDS_Face();
}

OperationOutcome CountTriangles(const OperationCall& call)
{
  TopoDS_Shape shape = call.inputs[0];
  return {{}, {{"triangles", OrvexGeometryOp::GetShapeTrianglesNum(shape)}}};
}

OperationOutcome DescribeFace(const OperationCall& call)
{
  TopoDS_Face face = FirstFaceOf(call.inputs[0]);
  int vertices = 0;
  gp_Pnt center;
  double area = 0;
  OrvexGeometryOp::GetFaceGeometry(face, vertices, center, area);
  return {{},
          {{"vertices", vertices},
           {"center", QJsonArray{center.X(), center.Y(), center.Z()}},
           {"area", area}}};
}

OperationOutcome CompareFaces(const OperationCall& call)
{
  TopoDS_Face first = FirstFaceOf(call.inputs[0]), second = FirstFaceOf(call.inputs[1]);
  return {{}, {{"same", OrvexGeometryOp::IsSameFace(first, second)}}};
}

} // namespace

std::span<const Operation> InspectOperations()
{
  static const std::vector<Operation> rows = {
    {"triangle-count",
     "How many triangles the faces hold; nothing is meshed",
     "any shape",
     1,
     1,
     {},
     CountTriangles,
     false},
    {"face-geometry",
     "What faces are compared by: corners, center, area",
     "a face; of another shape its first face",
     1,
     1,
     {},
     DescribeFace,
     false},
    {"same-face",
     "Whether two faces agree in number of corners, center and area",
     "two faces; of other shapes their first face",
     2,
     2,
     {},
     CompareFaces,
     false},
  };
  return rows;
}

} // namespace Orvex::Cli
