#include "picking/OrvexPickShapeData.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

namespace {

constexpr double kLinearDeflection = 0.1;
constexpr double kAngularDeflection = 0.5;

opencascade::handle<Poly_Triangulation> TriangulationOf(const TopoDS_Face& face,
                                                        TopLoc_Location& location)
{
  opencascade::handle<Poly_Triangulation> mesh = BRep_Tool::Triangulation(face, location);
  if (mesh.IsNull()) {
    BRepMesh_IncrementalMesh(face, kLinearDeflection, false, kAngularDeflection, false);
    mesh = BRep_Tool::Triangulation(face, location);
  }
  return mesh;
}

OrvexTriangleData TriangleOf(const TopoDS_Face& face, const Poly_Triangulation& mesh,
                             const gp_Trsf& placement, int triangle)
{
  int a = 0, b = 0, c = 0;
  mesh.Triangle(triangle).Get(a, b, c);
  OrvexTriangleData data{mesh.Node(a).Transformed(placement),
                         mesh.Node(b).Transformed(placement),
                         mesh.Node(c).Transformed(placement),
                         face,
                         {}};
  data.box.Add(data.A);
  data.box.Add(data.B);
  data.box.Add(data.C);
  return data;
}

void AppendTriangles(const TopoDS_Face& face, std::vector<OrvexTriangleData>& triangles)
{
  TopLoc_Location location;
  const opencascade::handle<Poly_Triangulation> mesh = TriangulationOf(face, location);
  if (mesh.IsNull())
    return;
  const gp_Trsf placement = location.Transformation();
  for (int i = 1; i <= mesh->NbTriangles(); ++i)
    triangles.push_back(TriangleOf(face, *mesh, placement, i));
}

std::vector<OrvexTriangleData> TrianglesOf(const TopoDS_Shape& shape)
{
  std::vector<OrvexTriangleData> triangles;
  for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
    AppendTriangles(TopoDS::Face(faces.Current()), triangles);
  return triangles;
}

} // namespace

OrvexPickShapeData::OrvexPickShapeData(const TopoDS_Shape& pickedShape) : shape(pickedShape)
{}

void OrvexPickShapeData::Initialize()
{
  tree = std::make_unique<OrvexKDTree>(TrianglesOf(shape));
  triangles.reset();
}

const TopoDS_Shape& OrvexPickShapeData::GetShape() const
{
  return shape;
}

const std::vector<OrvexTriangleData>& OrvexPickShapeData::GetTriangles() const
{
  if (!triangles)
    triangles = tree == nullptr ? std::vector<OrvexTriangleData>() : tree->Triangles();
  return *triangles;
}

const OrvexKDTree* OrvexPickShapeData::GetKDTree() const
{
  return tree.get();
}
