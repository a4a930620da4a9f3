// Surfaces made of curves, and surfaces edited.
#include "operate/OperationOptions.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "operations/AdvancedSurfaceOp.h"

#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepTools.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

namespace Orvex::Cli {

namespace {

constexpr ValueRange kLevels{.from = 0, .to = 2};
constexpr const char* kLevelHelp = "0 position, 1 tangent, 2 curvature";
constexpr const char* kSides[] = {"other", "u-start", "u-end", "v-start", "v-end"};
constexpr const char* kGuideModes[] = {"ignore", "soft", "strict"};
constexpr const char* kSpacings[] = {"even", "chord", "centripetal"};

Failure Unfit(const OperationCall& call, const char* entity, const char* reason)
{
  return {ExitCode::Usage, TextFromBytes(call.operation.name), TextFromBytes(entity),
          TextFromBytes(reason), TextFromBytes(call.operation.inputs)};
}

template <typename Shape>
Shape FirstOf(const OperationCall& call, const TopoDS_Shape& shape, TopAbs_ShapeEnum type,
              const char* reason)
{
  const TopExp_Explorer found(shape, type);
  if (!found.More())
    throw Unfit(call, "input", reason);
  return static_cast<const Shape&>(found.Current());
}

TopoDS_Face FaceOf(const OperationCall& call, const TopoDS_Shape& shape)
{
  return FirstOf<TopoDS_Face>(call, shape, TopAbs_FACE, "it has no face");
}

TopoDS_Edge EdgeOf(const OperationCall& call, const TopoDS_Shape& shape)
{
  return FirstOf<TopoDS_Edge>(call, shape, TopAbs_EDGE, "it has no edge");
}

// A wire as it is, the outer one of a face, or one of all edges.
TopoDS_Wire WireOf(const OperationCall& call, const TopoDS_Shape& shape)
{
  if (shape.ShapeType() == TopAbs_WIRE)
    return TopoDS::Wire(shape);
  if (shape.ShapeType() == TopAbs_FACE)
    return BRepTools::OuterWire(TopoDS::Face(shape));
  TopTools_ListOfShape edges;
  for (TopExp_Explorer edge(shape, TopAbs_EDGE); edge.More(); edge.Next())
    edges.Append(edge.Current());
  BRepBuilderAPI_MakeWire wire;
  wire.Add(edges);
  if (!wire.IsDone())
    throw Unfit(call, "input", "its edges make no wire");
  return wire.Wire();
}

std::vector<TopoDS_Shape> Given(const std::vector<TopoDS_Shape>& shapes)
{
  std::vector<TopoDS_Shape> given;
  for (const TopoDS_Shape& shape : shapes)
    if (!shape.IsNull())
      given.push_back(shape);
  return given;
}

OperationOutcome Told(const TopoDS_Shape& shape, const OperationReport& report)
{
  OperationOutcome outcome{shape, {}, {}, TextFromBytes(report.reason)};
  for (const OperationAttempt& attempt : report.attempts)
    outcome.notes.append(QStringLiteral("%1: %2").arg(
      TextFromBytes(attempt.description),
      attempt.built ? QStringLiteral("built") : TextFromBytes(attempt.reason)));
  for (const std::string& note : report.notes)
    outcome.notes.append(TextFromBytes(note));
  return outcome;
}

SurfaceContinuityLevel LevelOf(const OperationCall& call)
{
  return static_cast<SurfaceContinuityLevel>(call.Integer("continuity"));
}

OperationOutcome Loft(const OperationCall& call)
{
  AdvancedLoftOptions options;
  options.solid = call.Flag("solid");
  options.ruled = call.Flag("ruled");
  options.smoothing = call.Flag("smoothing");
  options.checkCompatibility = call.Flag("compatible");
  options.tolerance = call.Real("tolerance");
  options.continuity = call.Integer("continuity");
  options.maxDegree = call.Integer("degree");
  options.parametrization = call.Integer("spacing");
  options.guideMode = call.Integer("guides");
  OperationReport report;
  const TopoDS_Shape shape = AdvancedSurfaceOp::BuildAdvancedLoft(
    call.inputs, Given({call.Shape("guide"), call.Shape("guide-2")}), options, &report);
  return Told(shape, report);
}

OperationOutcome Sweep2(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape = AdvancedSurfaceOp::BuildSweep2(
    call.inputs[0], call.inputs[1], {call.inputs.begin() + 2, call.inputs.end()},
    call.Integer("continuity"), &report);
  return Told(shape, report);
}

OperationOutcome Blend(const OperationCall& call)
{
  const auto support = [&](const char* name) {
    const TopoDS_Shape shape = call.Shape(name);
    return shape.IsNull() ? TopoDS_Face() : FaceOf(call, shape);
  };
  BlendSurfaceOptions options;
  options.continuity = call.Integer("continuity");
  options.blendFactor = call.Real("factor");
  options.firstSupport = support("support");
  options.secondSupport = support("support-2");
  OperationReport report;
  const TopoDS_Shape shape = AdvancedSurfaceOp::BuildBlendSurface(
    EdgeOf(call, call.inputs[0]), EdgeOf(call, call.inputs[1]), options, &report);
  return Told(shape, report);
}

OperationOutcome Patch(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape =
    AdvancedSurfaceOp::BuildPatchSurface(WireOf(call, call.inputs[0]), call.Points("points"),
                                         call.Real("quality"), call.Integer("continuity"), &report);
  return Told(shape, report);
}

OperationOutcome Fill(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape =
    AdvancedSurfaceOp::FillHole(WireOf(call, call.inputs[0]), {}, LevelOf(call), &report);
  return Told(shape, report);
}

OperationOutcome Network(const OperationCall& call)
{
  std::vector<TopoDS_Wire> wires;
  for (const TopoDS_Shape& input : call.inputs)
    wires.push_back(WireOf(call, input));
  OperationReport report;
  const TopoDS_Shape shape =
    AdvancedSurfaceOp::BuildSurfaceNetwork(wires, {}, LevelOf(call), &report);
  return Told(shape, report);
}

OperationOutcome ExtendSurface(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape =
    AdvancedSurfaceOp::ExtendSurface(FaceOf(call, call.inputs[0]), call.Real("length"),
                                     call.Integer("side"), call.Integer("continuity"), &report);
  return Told(shape, report);
}

OperationOutcome TrimSurface(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape = AdvancedSurfaceOp::TrimSurface(
    FaceOf(call, call.inputs[0]), call.inputs[1], call.Flag("project"), &report);
  return Told(shape, report);
}

OperationOutcome Intersect(const OperationCall& call)
{
  OperationReport report;
  const TopoDS_Shape shape =
    AdvancedSurfaceOp::IntersectSurfaces(call.inputs[0], call.inputs[1], &report);
  return Told(shape, report);
}

OperationOutcome Project(const OperationCall& call)
{
  const gp_Dir direction = call.Direction("direction");
  OperationReport report;
  const TopoDS_Shape shape = AdvancedSurfaceOp::ProjectCurveToSurface(
    call.inputs[0], call.inputs[1], call.Flag("along-normals") ? nullptr : &direction, &report);
  return Told(shape, report);
}

} // namespace

std::span<const Operation> SurfaceOperations()
{
  static const std::vector<Operation> rows = {
    {"loft",
     "A shell or solid through sections, with guides if wanted",
     "sections: wires, edges or faces, in order",
     2,
     Operation::kAnyNumber,
     {FlagOption("solid", "close it by the end sections", false),
      FlagOption("ruled", "straight from section to section", false),
      FlagOption("smoothing", "fit by least squares", true),
      FlagOption("compatible", "bring sections to the same number of edges", true),
      RealOption("tolerance", "of the fit", Unit::Length, kAboveZero, 1e-6),
      IntegerOption("continuity", kLevelHelp, kLevels, 1),
      IntegerOption("degree", "across the sections, at most", {.from = 2, .to = 14}, 8),
      WordOption("spacing", "of the parameters", kSpacings, 1),
      WordOption("guides", "what guides do", kGuideModes, 1),
      ShapeOption("guide", "a curve that draws the inner sections"),
      ShapeOption("guide-2", "another one")},
     Loft},
    {"rail-sweep",
     "Sections swept along two rails",
     "rail, rail, then sections",
     3,
     Operation::kAnyNumber,
     {IntegerOption("continuity", kLevelHelp, kLevels, 1)},
     Sweep2},
    {"blend",
     "A face between two edges",
     "two edges; of other shapes their first ones",
     2,
     2,
     {IntegerOption("continuity", kLevelHelp, kLevels, 0),
      RealOption("factor", "0 deepest, 2 flattest", Unit::None, {.from = 0, .to = 2}, 1.0),
      ShapeOption("support", "a face that the first edge lies on"),
      ShapeOption("support-2", "a face that the second edge lies on")},
     Blend},
    {"patch",
     "A face within a wire and through points",
     "a wire, an edge or the outline of a face",
     1,
     1,
     {PointsOption("points", "that it goes through"),
      RealOption("quality", "0 quick, 2 best", Unit::None, {.from = 0, .to = 2}, 1.0),
      IntegerOption("continuity", kLevelHelp, kLevels, 0)},
     Patch},
    {"fill",
     "A face within a wire",
     "a wire, an edge or the outline of a face",
     1,
     1,
     {IntegerOption("continuity", kLevelHelp, kLevels, 0)},
     Fill},
    {"network",
     "A skin over closed wires with caps at both ends",
     "closed wires, in order",
     2,
     Operation::kAnyNumber,
     {IntegerOption("continuity", kLevelHelp, kLevels, 0)},
     Network},
    {"surface-extend",
     "A face made longer on one side, to its natural bounds",
     "a face; of another shape its first one",
     1,
     1,
     {RealOption("length", "to go on", Unit::Length, kAboveZero),
      WordOption("side", "which one", kSides, 2),
      IntegerOption("continuity", "0 position, 1 curvature; 2 extends nothing", kLevels, 1)},
     ExtendSurface},
    {"surface-trim",
     "A face split along a curve; all parts come back",
     "a face, then what cuts it: edges on it, or with project a curve",
     2,
     2,
     {FlagOption("project", "project the curve along the normals first", false)},
     TrimSurface},
    {"intersect", "The edges in which two shapes meet", "two shapes", 2, 2, {}, Intersect},
    {"project",
     "A curve projected on a face",
     "a wire or edge, then a face; of another shape its first one",
     2,
     2,
     {DirectionOption("direction", "along which, both ways", gp_Dir(0, 0, 1)),
      FlagOption("along-normals", "along the face's normals instead", false)},
     Project},
  };
  return rows;
}

} // namespace Orvex::Cli
