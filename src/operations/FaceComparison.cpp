// The comparison of faces and the count of triangles of OrvexGeometryOp.
#include "operations/OrvexGeometryOp.h"

#include "foundation/OrvexDebugLogFile.h"

#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <Geom_Curve.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <cmath>

namespace {

double AreaOf(const TopoDS_Face& face)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(face, properties, false, false);
  return properties.Mass();
}

// The sum of the places of all vertices; counts them.
gp_XYZ SumOfVertices(const TopoDS_Face& face, int& count)
{
  gp_XYZ sum;
  for (TopExp_Explorer vertex(face, TopAbs_VERTEX); vertex.More(); vertex.Next(), ++count)
    sum += BRep_Tool::Pnt(TopoDS::Vertex(vertex.Current())).XYZ();
  return sum;
}

// The sum of the middles of all edges that have a curve; counts the others, too.
gp_XYZ SumOfMiddles(const TopoDS_Face& face, int& count)
{
  gp_XYZ sum;
  for (TopExp_Explorer edge(face, TopAbs_EDGE); edge.More(); edge.Next(), ++count) {
    double first = 0, last = 0;
    const auto curve = BRep_Tool::Curve(TopoDS::Edge(edge.Current()), first, last);
    if (!curve.IsNull())
      sum += curve->Value((first + last) / 2).XYZ();
  }
  return sum;
}

Handle(Poly_Triangulation) TrianglesOf(const TopoDS_Shape& face)
{
  TopLoc_Location location;
  return BRep_Tool::Triangulation(TopoDS::Face(face), location);
}

bool IsMeshed(const TopoDS_Shape& shape)
{
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    if (TrianglesOf(face.Current()).IsNull())
      return false;
  return true;
}

} // namespace

void OrvexGeometryOp::GetFaceGeometry(TopoDS_Face& face, int& vertexCount, gp_Pnt& center,
                                      double& area)
{
  vertexCount = 0;
  center = gp_Pnt();
  area = face.IsNull() ? 0 : AreaOf(face);
  int edgeCount = 0;
  const gp_XYZ sum = SumOfVertices(face, vertexCount) + SumOfMiddles(face, edgeCount);
  if (vertexCount + edgeCount > 0)
    center.SetXYZ(sum / (vertexCount + edgeCount));
}

bool OrvexGeometryOp::IsSameFace(TopoDS_Face& first, TopoDS_Face& second)
{
  constexpr double kDistance = 1e-6, kArea = 1e-6;
  if (first.IsNull() || second.IsNull())
    return false;
  struct
  {
    int vertexCount;
    gp_Pnt center;
    double area;
  } a, b;
  GetFaceGeometry(first, a.vertexCount, a.center, a.area);
  GetFaceGeometry(second, b.vertexCount, b.center, b.area);
  return a.vertexCount == b.vertexCount && a.center.Distance(b.center) <= kDistance &&
         std::abs(a.area - b.area) < kArea;
}

int OrvexGeometryOp::GetShapeTrianglesNum(TopoDS_Shape& shape)
{
  OrvexDebugLogFile::GetInstance()->dumpToFile(
    IsMeshed(shape) ? "Info: It is OK that no run BRepMesh_IncrementalMesh"
                    : "Error: It is not supposed to run BRepMesh_IncrementalMesh");
  int count = 0;
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    if (const auto triangles = TrianglesOf(face.Current()); !triangles.IsNull())
      count += triangles->NbTriangles();
  return count;
}
