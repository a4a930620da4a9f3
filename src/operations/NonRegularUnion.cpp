// The unions of OrvexGeometryOp that also take the section of their operands.
#include "operations/OrvexGeometryOp.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/OperandKeeping.h"
#include "operations/internal/SimulationDump.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepLib_MakeFace.hxx>

namespace {

// Null, too, for shapes that do not meet: the kernel gives an empty compound then.
TopoDS_Shape SectionOrNull(const TopoDS_Shape* first, const TopoDS_Shape* second)
{
  if (first == nullptr || second == nullptr)
    return {};
  const TopoDS_Shape section = Orvex::SectionOf(*first, *second);
  return section.IsNull() || section.NbChildren() == 0 ? TopoDS_Shape() : section;
}

TopoDS_Shape FuseOrNull(const TopoDS_Shape* first, const TopoDS_Shape* second)
{
  if (first == nullptr || second == nullptr)
    return {};
  return Orvex::BooleanOf(BOPAlgo_FUSE, *first, *second);
}

TopoDS_Shape FaceSpannedBy(const TopoDS_Shape& section)
{
  BRepBuilderAPI_MakeWire wire;
  for (const TopoDS_Edge& edge : Orvex::EdgesOf(section))
    wire.Add(edge);
  return BRepLib_MakeFace(wire.Wire(), false).Face();
}

TopoDS_Shape CopyOf(const TopoDS_Shape& section)
{
  BRepBuilderAPI_Copy copy;
  copy.Perform(section, true, false);
  return copy.Shape();
}

bool IsFaceOrShell(const TopoDS_Shape& shape)
{
  return !shape.IsNull() && (shape.ShapeType() == TopAbs_SHELL || shape.ShapeType() == TopAbs_FACE);
}

} // namespace

TopoDS_Shape OrvexGeometryOp::PerformNoneRegularUnite(const TopoDS_Shape* first,
                                                      const TopoDS_Shape* second)
{
  const TopoDS_Shape section = SectionOrNull(first, second);
  if (section.IsNull())
    return {};
  TopoDS_Shape result = FaceSpannedBy(section);
  if (result.IsNull())
    result = CopyOf(section);
  CreateAttribue(result);
  return result;
}

bool OrvexGeometryOp::PerformNoneRegularUnite(const TopoDS_Shape* first, const TopoDS_Shape* second,
                                              TopoDS_Shape& result, std::vector<TopoDS_Face>&)
{
  const TopoDS_Shape section = SectionOrNull(first, second);
  result = FuseOrNull(first, second);
  return !section.IsNull();
}

bool OrvexGeometryOp::PerformNoneRegularUniteForSimulation(const TopoDS_Shape* first,
                                                           const TopoDS_Shape* second,
                                                           TopoDS_Shape& result,
                                                           std::vector<TopoDS_Face>& faces)
{
  const TopoDS_Shape section = SectionOrNull(first, second);
  const TopoDS_Shape fused = FuseOrNull(first, second);
  if (!section.IsNull()) {
    Orvex::DumpSimulationUnion(*first, *second, fused);
    std::vector<TopoDS_Edge> edges = Orvex::EdgesOf(section);
    CreateFacesByEdgesWrapGroup(edges, faces);
  }
  // Last: the caller may hand in one of the operands.
  result = fused;
  return !section.IsNull();
}

bool OrvexGeometryOp::ExeNonRegUniteWithInFace(std::vector<TopoDS_Shape>& shapes,
                                               std::vector<TopoDS_Face>& faces,
                                               TopoDS_Shape& result)
{
  if (shapes.size() < 2)
    return false;
  TopoDS_Shape united = shapes.front(), last;
  std::vector<TopoDS_Face> workFaces;
  for (std::size_t i = 1; i < shapes.size(); ++i) {
    if (IsFaceOrShell(shapes[i]))
      continue;
    PerformNoneRegularUniteForSimulation(&united, &shapes[i], last, workFaces);
    if (!last.IsNull())
      united = last;
  }
  faces.insert(faces.end(), workFaces.begin(), workFaces.end());
  result = last;
  return !last.IsNull();
}
