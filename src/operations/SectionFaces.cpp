// The faces that OrvexGeometryOp spans by the edges of a section.
#include "operations/OrvexGeometryOp.h"

#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BOPAlgo_Tools.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_Wire.hxx>
#include <BRepOffsetAPI_MakeFilling.hxx>
#include <BRep_Builder.hxx>
#include <ShapeAnalysis_Edge.hxx>
#include <ShapeAnalysis_FreeBounds.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_HSequenceOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

namespace {

bool IsClosed(const TopoDS_Wire& wire)
{
  return BRepCheck_Wire(wire).Closed(false) == BRepCheck_NoError;
}

bool IsClosed(const TopoDS_Edge& edge)
{
  return ShapeAnalysis_Edge().IsClosed3d(edge);
}

// Whether a loop ends with a closed edge: it does unless the next edge goes on from there.
bool EndsLoop(const TopoDS_Edge& closed, const TopoDS_Edge& next)
{
  BRepBuilderAPI_MakeWire both(closed, next);
  return !both.IsDone() || IsClosed(both.Wire());
}

std::vector<bool> GroupEnds(const std::vector<TopoDS_Edge>& edges)
{
  std::vector<bool> ends(edges.size());
  for (std::size_t i = 0; i < edges.size(); ++i)
    ends[i] = IsClosed(edges[i]) && (i + 1 == edges.size() || EndsLoop(edges[i], edges[i + 1]));
  return ends;
}

// The edges joined by their ends, in chains as long as can be.
std::vector<TopoDS_Wire> ChainsOf(const std::vector<TopoDS_Edge>& edges)
{
  constexpr double kTolerance = 1e-7;
  if (edges.empty())
    return {};
  Handle(TopTools_HSequenceOfShape) loose = new TopTools_HSequenceOfShape, chains;
  for (const TopoDS_Edge& edge : edges)
    loose->Append(edge);
  ShapeAnalysis_FreeBounds::ConnectEdgesToWires(loose, kTolerance, false, chains);
  std::vector<TopoDS_Wire> wires;
  for (const TopoDS_Shape& chain : *chains)
    wires.push_back(TopoDS::Wire(chain));
  return wires;
}

// First the closed edges that are loops by themselves, then the chains of all others.
std::vector<TopoDS_Wire> LoopsAndChainsOf(const std::vector<TopoDS_Edge>& edges)
{
  const std::vector<bool> ends = GroupEnds(edges);
  std::vector<TopoDS_Wire> wires;
  std::vector<TopoDS_Edge> others;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (ends[i])
      wires.push_back(BRepBuilderAPI_MakeWire(edges[i]).Wire());
    else
      others.push_back(edges[i]);
  }
  for (const TopoDS_Wire& chain : ChainsOf(others))
    wires.push_back(chain);
  return wires;
}

TopoDS_Shape FilledThrough(const TopoDS_Wire& loop)
{
  BRepOffsetAPI_MakeFilling filling;
  for (TopExp_Explorer edge(loop, TopAbs_EDGE); edge.More(); edge.Next())
    filling.Add(TopoDS::Edge(edge.Current()), GeomAbs_C0);
  filling.Build();
  return filling.IsDone() ? filling.Shape() : TopoDS_Shape();
}

// Null for a wire that spans none.
TopoDS_Shape FaceIn(const TopoDS_Wire& loop)
{
  try {
    if (!IsClosed(loop) || Orvex::HasTornEdge(loop))
      return {};
    BRepBuilderAPI_MakeFace face(loop, false);
    const TopoDS_Shape made = face.IsDone() ? face.Shape() : FilledThrough(loop);
    return !made.IsNull() && BRepCheck_Analyzer(made).IsValid() ? made : TopoDS_Shape();
  } catch (const Standard_Failure&) {
    return {};
  }
}

// The faces in the planes in which wires branch: the pieces of crossing ellipses, say.
TopoDS_Shape PlaneFacesIn(const TopoDS_Shape& wires)
{
  TopoDS_Shape plane, faces;
  try {
    const bool done = BOPAlgo_Tools::EdgesToWires(wires, plane, true) == 0 &&
                      BOPAlgo_Tools::WiresToFaces(plane, faces);
    return done ? faces : TopoDS_Shape();
  } catch (const Standard_Failure&) {
    return {};
  }
}

std::vector<TopoDS_Edge> CopiesOf(const std::vector<TopoDS_Edge>& edges)
{
  Orvex::TopologyCopier copier;
  std::vector<TopoDS_Edge> copies;
  for (const TopoDS_Edge& edge : edges)
    if (!edge.IsNull() && Orvex::HasFinitePlaces(edge))
      copies.push_back(TopoDS::Edge(copier.Copy(edge)));
  return copies;
}

} // namespace

void OrvexGeometryOp::CreateFacesByEdgesWrapGroup(std::vector<TopoDS_Edge>& edges,
                                                  std::vector<TopoDS_Face>& faces)
{
  TopoDS_Compound left;
  BRep_Builder builder;
  builder.MakeCompound(left);
  for (const TopoDS_Wire& wire : LoopsAndChainsOf(CopiesOf(edges))) {
    if (const TopoDS_Shape face = FaceIn(wire); !face.IsNull())
      faces.push_back(TopoDS::Face(face));
    else if (!Orvex::HasTornEdge(wire))
      builder.Add(left, wire);
  }
  for (TopExp_Explorer face(PlaneFacesIn(left), TopAbs_FACE); face.More(); face.Next())
    if (BRepCheck_Analyzer(face.Current()).IsValid())
      faces.push_back(TopoDS::Face(face.Current()));
}
