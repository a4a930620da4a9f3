#include "info/ShapeCounts.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>

namespace Orvex::Cli {

namespace {

using ShapeMap = TopTools_IndexedMapOfShape;

ShapeMap AllOf(TopAbs_ShapeEnum kind, const std::vector<TopoDS_Shape>& shapes)
{
  ShapeMap found;
  for (const TopoDS_Shape& shape : shapes)
    TopExp::MapShapes(shape, kind, found);
  return found;
}

ShapeMap Unplaced(const ShapeMap& shapes)
{
  ShapeMap found;
  for (int i = 1; i <= shapes.Extent(); ++i)
    found.Add(shapes(i).Located(TopLoc_Location()));
  return found;
}

ShapeMap PartsOf(const ShapeMap& larger, TopAbs_ShapeEnum kind)
{
  ShapeMap parts;
  for (int i = 1; i <= larger.Extent(); ++i)
    TopExp::MapShapes(larger(i), kind, parts);
  return parts;
}

KindCount Count(const ShapeMap& ofKind, TopAbs_ShapeEnum kind, const ShapeMap& larger)
{
  const ShapeMap owned = PartsOf(larger, kind);
  return {ofKind.Extent(), Unplaced(ofKind).Extent(), ofKind.Extent() - owned.Extent()};
}

const char* SurfaceKind(const TopoDS_Face& face)
{
  if (BRep_Tool::Surface(face).IsNull())
    return "none";
  switch (BRepAdaptor_Surface(face, false).GetType()) {
  case GeomAbs_Plane:
    return "plane";
  case GeomAbs_Cylinder:
    return "cylinder";
  case GeomAbs_Cone:
    return "cone";
  case GeomAbs_Sphere:
    return "sphere";
  case GeomAbs_Torus:
    return "torus";
  case GeomAbs_BezierSurface:
    return "bezier";
  case GeomAbs_BSplineSurface:
    return "bspline";
  case GeomAbs_SurfaceOfRevolution:
    return "revolution";
  case GeomAbs_SurfaceOfExtrusion:
    return "extrusion";
  case GeomAbs_OffsetSurface:
    return "offset";
  default:
    return "other";
  }
}

std::map<std::string, int> CountSurfaces(const ShapeMap& faces)
{
  std::map<std::string, int> counts;
  const ShapeMap unplaced = Unplaced(faces);
  for (int i = 1; i <= unplaced.Extent(); ++i)
    ++counts[SurfaceKind(TopoDS::Face(unplaced(i)))];
  return counts;
}

// The kernel's quick box of such a face is flat.
bool IsTorusFromBelowZero(const TopoDS_Face& face)
{
  if (BRep_Tool::Surface(face).IsNull())
    return false;
  const BRepAdaptor_Surface surface(face, true);
  return surface.GetType() == GeomAbs_Torus && surface.FirstVParameter() < 0.0;
}

void AddFace(const TopoDS_Face& face, Bnd_Box& box)
{
  if (IsTorusFromBelowZero(face))
    BRepBndLib::AddOptimal(face, box, false, true);
  else
    BRepBndLib::Add(face, box, false);
}

void AddUnlessPart(const ShapeMap& shapes, TopAbs_ShapeEnum kind, const ShapeMap& larger,
                   Bnd_Box& box)
{
  const ShapeMap owned = PartsOf(larger, kind);
  for (int i = 1; i <= shapes.Extent(); ++i)
    if (!owned.Contains(shapes(i)))
      BRepBndLib::Add(shapes(i), box, false);
}

Bnd_Box BoxOf(const ShapeMap& faces, const ShapeMap& edges, const ShapeMap& vertices)
{
  Bnd_Box box;
  for (int i = 1; i <= faces.Extent(); ++i)
    AddFace(TopoDS::Face(faces(i)), box);
  AddUnlessPart(edges, TopAbs_EDGE, faces, box);
  AddUnlessPart(vertices, TopAbs_VERTEX, edges, box);
  return box;
}

} // namespace

ShapeCounts CountShapes(const std::vector<TopoDS_Shape>& shapes)
{
  const ShapeMap solids = AllOf(TopAbs_SOLID, shapes);
  const ShapeMap shells = AllOf(TopAbs_SHELL, shapes);
  const ShapeMap faces = AllOf(TopAbs_FACE, shapes);
  const ShapeMap wires = AllOf(TopAbs_WIRE, shapes);
  const ShapeMap edges = AllOf(TopAbs_EDGE, shapes);
  const ShapeMap vertices = AllOf(TopAbs_VERTEX, shapes);

  ShapeCounts counts;
  counts.solids = Count(solids, TopAbs_SOLID, ShapeMap());
  counts.shells = Count(shells, TopAbs_SHELL, solids);
  counts.faces = Count(faces, TopAbs_FACE, shells);
  counts.wires = Count(wires, TopAbs_WIRE, faces);
  counts.edges = Count(edges, TopAbs_EDGE, faces);
  counts.vertices = Count(vertices, TopAbs_VERTEX, edges);
  counts.surfaces = CountSurfaces(faces);
  counts.box = BoxOf(faces, edges, vertices);
  return counts;
}

} // namespace Orvex::Cli
