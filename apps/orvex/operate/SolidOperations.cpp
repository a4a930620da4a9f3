// Sweeps, offset and export.
#include "operate/OperationOptions.h"

#include "operations/OrvexGeometryOp.h"

#include <BRepOffset_Mode.hxx>
#include <GeomAbs_JoinType.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace Orvex::Cli {

namespace {

// In the order of the kernel's enumerations.
constexpr const char* kModes[] = {"skin", "pipe", "recto-verso"};
constexpr const char* kJoins[] = {"arc", "tangent", "intersection"};

std::vector<OperationOption> SweepOptions()
{
  return {RealOption("length", "against the direction if negative", Unit::Length, kAnyReal),
          DirectionOption("direction", "of the sweep", gp_Dir(0, 0, 1))};
}

OperationOutcome Sweep(const OperationCall& call)
{
  const TopoDS_Shape& section = call.inputs[0];
  const gp_Dir direction = call.Direction("direction");
  const double length = call.Real("length");
  if (section.ShapeType() == TopAbs_WIRE)
    return {OrvexGeometryOp::CreateShapeBySweep(TopoDS::Wire(section), direction, length)};
  std::vector<TopoDS_Edge> edges;
  for (TopExp_Explorer edge(section, TopAbs_EDGE); edge.More(); edge.Next())
    edges.push_back(TopoDS::Edge(edge.Current()));
  std::vector<const TopoDS_Edge*> pointers;
  for (const TopoDS_Edge& edge : edges)
    pointers.push_back(&edge);
  return {OrvexGeometryOp::CreateShapeBySweep(pointers, direction, length)};
}

OperationOutcome SweepPolyline(const OperationCall& call)
{
  return {OrvexGeometryOp::CreateShapeBySweep(call.Points("points"), call.Direction("direction"),
                                              call.Real("length"))};
}

OperationOutcome Offset(const OperationCall& call)
{
  TopoDS_Shape shape = call.inputs[0];
  return {OrvexGeometryOp::OffsetObject(
    shape, {call.Real("distance"), call.Integer("mode"), call.Integer("join"),
            call.Real("tolerance"), call.Flag("intersection"), call.Flag("self-intersection")})};
}

OperationOutcome Iges(const OperationCall& call)
{
  return {call.inputs[0]};
}

std::vector<OperationOption> PolylineOptions()
{
  std::vector<OperationOption> options = SweepOptions();
  options.insert(options.begin(), PointsOption("points", "corners; the first again at the end"));
  return options;
}

} // namespace

std::span<const Operation> SolidOperations()
{
  static const std::vector<Operation> rows = {
    {"sweep", "The prism of the face that a section bounds", "a closed wire, or edges in order", 1,
     1, SweepOptions(), Sweep},
    {"sweep-polyline", "The prism of the face inside a polyline", "", 0, 0, PolylineOptions(),
     SweepPolyline},
    {"offset",
     "The shape at a distance of another one",
     "a solid, shell or face",
     1,
     1,
     {RealOption("distance", "inwards if negative", Unit::Length, kAnyReal),
      WordOption("mode", "the kernel builds the same for all", kModes, BRepOffset_Skin),
      WordOption("join", "between neighbouring faces", kJoins, GeomAbs_Arc),
      RealOption("tolerance", "of coincidence", Unit::Length, kAboveZero, 1e-3),
      FlagOption("intersection", "intersect all faces, not only neighbours", false),
      FlagOption("self-intersection", "take out what crosses itself", false)},
     Offset},
    {"iges",
     "An IGES file in millimetres, of faces",
     "any shape",
     1,
     1,
     {},
     Iges,
     true,
     FileFormat::Iges},
  };
  return rows;
}

} // namespace Orvex::Cli
