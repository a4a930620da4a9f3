#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/AdvancedSurfaceOp.h"
#include "operations/internal/AttemptLadder.h"

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepOffsetAPI_MakePipeShell.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>

using namespace Orvex;

namespace {

using Shapes = AdvancedSurfaceOp::Shapes;

struct SweepInput
{
  TopoDS_Wire rail1, rail2;
  Shapes profiles; // one for each section; null for one that is no curve
  Shapes wires;    // of the profiles that have one
};

// A face, or the wire of a section that bounds none.
TopoDS_Shape ProfileOf(const TopoDS_Shape& section)
{
  if (!section.IsNull() && section.ShapeType() == TopAbs_FACE)
    return section;
  const TopoDS_Wire wire = ToWire(section);
  if (wire.IsNull())
    return wire;
  BRepBuilderAPI_MakeFace face(wire, false);
  return face.IsDone() ? TopoDS_Shape(face.Face()) : TopoDS_Shape(wire);
}

bool ClosesASolid(const TopoDS_Shape& profile)
{
  if (profile.IsNull())
    return false;
  return profile.ShapeType() == TopAbs_FACE || BRep_Tool::IsClosed(profile);
}

SweepInput CopiesOf(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2, const Shapes& sections)
{
  TopologyCopier copier;
  SweepInput input = {ToWire(copier.Copy(rail1)), ToWire(copier.Copy(rail2)), {}, {}};
  for (const TopoDS_Shape& section : sections) {
    input.profiles.push_back(ProfileOf(copier.Copy(section)));
    const TopoDS_Wire wire = ToWire(input.profiles.back());
    if (!wire.IsNull())
      input.wires.push_back(wire);
  }
  return input;
}

AdvancedLoftOptions LoftOptionsFor(int continuity)
{
  AdvancedLoftOptions options;
  options.continuity = continuity < 0 ? 1 : std::min(continuity, 2);
  return options;
}

// The kernel turns the profile with the help of a plane that it takes to be there.
bool IsPlanar(const TopoDS_Wire& wire)
{
  return BRepBuilderAPI_MakeFace(wire, true).IsDone();
}

// The kernel passes over edges without a curve, and takes it that others are left and are passed
// once.
bool IsRail(const TopoDS_Wire& wire)
{
  const std::vector<TopoDS_Edge> edges = EdgesOf(wire);
  return std::any_of(edges.begin(), edges.end(), &HasCurve) && !PassesAnEdgeTwice(wire);
}

// Now and then the kernel crashes at the corners of the first rail, if the profile lies further off
// than one and a half times its own size; in two thousand random sweeps never from closer by.
bool IsNearRails(const TopoDS_Wire& profile, const SweepInput& input)
{
  if (EdgesOf(input.rail1).size() == 1)
    return true;
  Bnd_Box box;
  BRepBndLib::Add(profile, box);
  const double size = std::sqrt(box.SquareExtent());
  return BRepExtrema_DistShapeShape(profile, input.rail1).Value() <= size &&
         BRepExtrema_DistShapeShape(profile, input.rail2).Value() <= size;
}

TopoDS_Shape PipeAlong(const SweepInput& input)
{
  const TopoDS_Wire profile = TopoDS::Wire(input.wires.front());
  if (!IsPlanar(profile))
    throw AttemptFailure("the section lies in no plane, or in many");
  if (!IsNearRails(profile, input))
    throw AttemptFailure("the section lies further from rails of several edges than its size");
  BRepOffsetAPI_MakePipeShell pipe(input.rail1);
  pipe.SetMode(input.rail2, true, BRepFill_ContactOnBorder);
  pipe.Add(profile, false, true);
  if (!pipe.IsReady())
    throw AttemptFailure("the kernel is not ready to sweep");
  pipe.Build();
  const TopoDS_Shape swept = ShapeIfDone(pipe);
  const bool canClose = swept.ShapeType() == TopAbs_SHELL &&
                        std::all_of(input.profiles.begin(), input.profiles.end(), &ClosesASolid);
  return canClose && pipe.MakeSolid() ? pipe.Shape() : swept;
}

const char* ReasonToRefuse(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2,
                           const Shapes& sections)
{
  if (sections.empty())
    return "there is no section";
  if (!HasFinitePlaces(rail1) || !HasFinitePlaces(rail2) ||
      !std::all_of(sections.begin(), sections.end(), &HasFinitePlaces))
    return "a rail or section has a vertex at no finite place";
  return nullptr;
}

TopoDS_Shape Sweep(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2, const Shapes& sections,
                   int continuity, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(rail1, rail2, sections))
    return Refused(report, reason);
  const SweepInput input = CopiesOf(rail1, rail2, sections);
  if (!IsRail(input.rail1) || !IsRail(input.rail2))
    return Refused(report, "a rail is no curve");
  if (input.wires.empty())
    return Refused(report, "no section is a curve");
  if (input.wires.size() == 1)
    return BuiltBy(
      "the section swept along both rails", [&] { return PipeAlong(input); }, report);
  return AdvancedSurfaceOp::BuildAdvancedLoft(input.wires, {rail1, rail2},
                                              LoftOptionsFor(continuity), &report);
}

} // namespace

TopoDS_Shape AdvancedSurfaceOp::BuildSweep2(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2,
                                            const Shapes& sections, int continuity)
{
  return BuildSweep2(rail1, rail2, sections, continuity, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::BuildSweep2(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2,
                                            const Shapes& sections, int continuity,
                                            OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) -> TopoDS_Shape {
    try {
      return Sweep(rail1, rail2, sections, continuity, written);
    } catch (const Standard_Failure& failure) {
      return Refused(written, ReasonOf(failure));
    }
  });
}
