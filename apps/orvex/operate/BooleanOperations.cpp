// Booleans, chop, sewing, general fuse, and unions with their section.
#include "operate/OperationOptions.h"

#include "document/LabelScheme.h"
#include "frame/Text.h"
#include "operations/OrvexGeometryOp.h"

#include <BRep_Builder.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace Orvex::Cli {

namespace {

constexpr const char* kGlues[] = {"off", "shift", "full"};
constexpr const char* kWanted[] = {"union", "section-faces"};

OperationOutcome OnLabel(const TDF_Label& label)
{
  return {label.IsNull() ? TopoDS_Shape() : XCAFDoc_ShapeTool::GetShape(label)};
}

TopoDS_Shape CompoundOf(const std::vector<TopoDS_Face>& faces)
{
  TopoDS_Compound compound;
  if (faces.empty())
    return compound;
  BRep_Builder().MakeCompound(compound);
  for (const TopoDS_Face& face : faces)
    BRep_Builder().Add(compound, face);
  return compound;
}

OperationOutcome Unite(const OperationCall& call)
{
  std::vector<TopoDS_Shape> shapes = call.inputs;
  return OnLabel(OrvexGeometryOp::PerformUnite(shapes, true));
}

OperationOutcome Cut(const OperationCall& call)
{
  TopoDS_Shape first = call.inputs[0], second = call.inputs[1];
  return {OrvexGeometryOp::PerformSubtract(first, second, false)};
}

OperationOutcome Common(const OperationCall& call)
{
  TopoDS_Shape first = call.inputs[0], second = call.inputs[1];
  return {OrvexGeometryOp::PerformIneersect(first, second)};
}

OperationOutcome Chop(const OperationCall& call)
{
  BooleanSettings settings;
  settings.fuzzyValue = call.Real("fuzzy");
  settings.runParallel = call.Flag("parallel");
  settings.nonDestructive = call.Flag("non-destructive");
  settings.glue = static_cast<BOPAlgo_GlueEnum>(call.Integer("glue"));
  const ChopResult chop =
    OrvexGeometryOp::PerformChopEnhanced(call.inputs[0], call.inputs[1], settings);
  return {
    chop.choppedShape, {{"overlapVolume", chop.overlapVolume}}, {}, TextFromBytes(chop.message)};
}

OperationOutcome Sew(const OperationCall& call)
{
  TopoDS_Shape first = call.inputs[0], second = call.inputs[1];
  return OnLabel(OrvexGeometryOp::PerformSew(first, second));
}

int FaceCountOf(const TopoDS_Shape& shape)
{
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(shape, TopAbs_FACE, faces);
  return faces.Extent();
}

OperationOutcome FuseGenerally(const OperationCall& call)
{
  NCollection_List<TopoDS_Shape> shapes;
  int faceCount = 0;
  for (const TopoDS_Shape& input : call.inputs) {
    shapes.Append(input);
    faceCount += FaceCountOf(input);
  }
  OperationOutcome outcome{OrvexGeometryOp::NonRegularBoolLCW(shapes)};
  if (shapes.Size() > 1 && !outcome.shape.IsNull() && FaceCountOf(outcome.shape) == faceCount)
    outcome.notes.append(QStringLiteral("nothing was cut: this is for shapes that touch, and those "
                                        "whose insides overlap stay as they are"));
  return outcome;
}

OperationOutcome SectionFace(const OperationCall& call)
{
  return {OrvexGeometryOp::PerformNoneRegularUnite(&call.inputs[0], &call.inputs[1]),
          {},
          {},
          QStringLiteral("the shapes do not meet")};
}

OperationOutcome UniteForSimulation(const OperationCall& call)
{
  std::vector<TopoDS_Shape> shapes = call.inputs;
  std::vector<TopoDS_Face> faces;
  TopoDS_Shape united;
  OrvexGeometryOp::ExeNonRegUniteWithInFace(shapes, faces, united);
  const bool wantsFaces = call.Integer("result") == 1;
  return {wantsFaces ? CompoundOf(faces) : united,
          {{"sectionFaces", static_cast<int>(faces.size())}},
          {},
          wantsFaces ? QStringLiteral("the sections span no face") : QString()};
}

OperationOutcome FacesOfEdges(const OperationCall& call)
{
  std::vector<TopoDS_Edge> edges;
  std::vector<TopoDS_Face> faces;
  for (const TopoDS_Shape& input : call.inputs)
    for (TopExp_Explorer edge(input, TopAbs_EDGE); edge.More(); edge.Next())
      edges.push_back(TopoDS::Edge(edge.Current()));
  OrvexGeometryOp::CreateFacesByEdgesWrapGroup(edges, faces);
  return {CompoundOf(faces),
          {{"faces", static_cast<int>(faces.size())}},
          {},
          QStringLiteral("the edges make no closed loop that spans a face")};
}

} // namespace

std::span<const Operation> BooleanOperations()
{
  static const std::vector<Operation> rows = {
    {"union",
     "All shapes as one; what cannot be fused is put side by side",
     "solids",
     1,
     Operation::kAnyNumber,
     {},
     Unite},
    {"cut", "The first shape without the second", "two solids", 2, 2, {}, Cut},
    {"common", "What two shapes have in common", "two solids", 2, 2, {}, Common},
    {"chop",
     "The second shape without its overlap with the first, whose volume is told",
     "two solids",
     2,
     2,
     {RealOption("fuzzy", "distance within which they touch", Unit::Length, kFromZero, 1e-7),
      FlagOption("parallel", "use the kernel's threads", true),
      FlagOption("non-destructive", "the kernel's mode of that name", false),
      WordOption("glue", "for shapes that touch only: faster", kGlues, BOPAlgo_GlueOff)},
     Chop},
    {"sew",
     "Two shapes sewn along edges that lie within 1e-6 mm",
     "faces, shells or solids",
     2,
     2,
     {},
     Sew},
    {"general-fuse",
     "Shapes cut along each other, for parts that touch; common faces once",
     "shapes that touch and do not overlap",
     1,
     Operation::kAnyNumber,
     {},
     FuseGenerally},
    {"section-face",
     "The face that the section of two shapes spans, or the section",
     "two shapes that meet in one loop",
     2,
     2,
     {},
     SectionFace},
    {"simulation-union",
     "The union with all later shapes but faces and shells; dumps IGES files",
     "solids",
     2,
     Operation::kAnyNumber,
     {WordOption("result", "the union, or the faces of the sections", kWanted, 0)},
     UniteForSimulation},
    {"faces-of-edges",
     "The faces that edges span, joined in any order",
     "shapes with edges",
     1,
     Operation::kAnyNumber,
     {},
     FacesOfEdges},
  };
  return rows;
}

} // namespace Orvex::Cli
