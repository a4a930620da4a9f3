#include "operations/AdvancedSurfaceOp.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/OperandKeeping.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/internal/AttemptLadder.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepFeat_SplitShape.hxx>
#include <BRepOffsetAPI_NormalProjection.hxx>
#include <BRepProj_Projection.hxx>
#include <BRep_Tool.hxx>
#include <GeomLib.hxx>
#include <Geom_RectangularTrimmedSurface.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

using namespace Orvex;

namespace {

struct Extension
{
  const char* name;
  bool inU, after;
};

Extension ExtensionOf(int side)
{
  static constexpr Extension kSides[] = {{"start of U", true, false},
                                         {"end of U", true, true},
                                         {"start of V", false, false},
                                         {"end of V", false, true}};
  return kSides[side >= 1 && side <= 4 ? side - 1 : 1];
}

int OrderOf(int continuity)
{
  return continuity <= 0 ? 0 : continuity == 1 ? 2 : 4;
}

TopoDS_Shape NaturalFaceOf(const Handle(Geom_BoundedSurface) & surface)
{
  double uFirst = 0, uLast = 0, vFirst = 0, vLast = 0;
  surface->Bounds(uFirst, uLast, vFirst, vLast);
  BRepBuilderAPI_MakeFace face(surface, uFirst, uLast, vFirst, vLast, 1e-7);
  return ShapeIfDone(face);
}

std::string TextOf(const Extension& side, int order)
{
  return std::string(side.name).append(", order ").append(std::to_string(order));
}

TopoDS_Shape Extend(const TopoDS_Face& face, double length, int side, int continuity,
                    OperationReport& report)
{
  if (face.IsNull())
    return Refused(report, "there is no face");
  if (!(length > 0) || !IsFinite(length))
    return Refused(report, "the length is not above 0 and finite");
  const BRepAdaptor_Surface bounds(face, true);
  const double uFirst = bounds.FirstUParameter(), uLast = bounds.LastUParameter();
  const double vFirst = bounds.FirstVParameter(), vLast = bounds.LastVParameter();
  if (!IsFinite(uFirst) || !IsFinite(uLast) || !IsFinite(vFirst) || !IsFinite(vLast))
    return Refused(report, "the face has no finite bounds");
  Handle(Geom_BoundedSurface) surface = new Geom_RectangularTrimmedSurface(
    BRep_Tool::Surface(face), uFirst, uLast, vFirst, vLast, true, true);
  const Extension extension = ExtensionOf(side);
  const int order = OrderOf(continuity);
  if (order > 3)
    report.notes.emplace_back(
      "a continuity of 2 extends nothing: the kernel extends up to order 3");
  const auto extend = [&] {
    GeomLib::ExtendSurfByLength(surface, length, order, extension.inU, extension.after);
    return NaturalFaceOf(surface);
  };
  return BuiltBy(TextOf(extension, order), extend, report);
}

TopoDS_Shape NormalProjection(const TopoDS_Shape& wire, const TopoDS_Shape& face)
{
  BRepOffsetAPI_NormalProjection projection(face);
  projection.Add(wire);
  projection.Compute3d(true);
  projection.Build();
  return projection.IsDone() ? projection.Shape() : TopoDS_Shape();
}

// The kernel dereferences the curve of an edge without a look whether there is one.
TopoDS_Shape SplitAlong(const TopoDS_Shape& cutter, const TopoDS_Face& face)
{
  BRepFeat_SplitShape splitter(face);
  for (const TopoDS_Edge& edge : EdgesOf(cutter)) {
    if (!HasCurve(edge))
      throw AttemptFailure("an edge of the cutter has no curve");
    splitter.Add(edge, face);
  }
  splitter.Build();
  return ShapeIfDone(splitter);
}

TopoDS_Shape Trim(const TopoDS_Face& givenFace, const TopoDS_Shape& givenCutter, bool project,
                  OperationReport& report)
{
  if (givenFace.IsNull() || givenCutter.IsNull())
    return Refused(report, "there is no face or no cutter");
  if (!HasFinitePlaces(givenFace) || !HasFinitePlaces(givenCutter))
    return Refused(report, "a vertex is at no finite place");
  TopologyCopier copier;
  const TopoDS_Face face = TopoDS::Face(copier.Copy(givenFace));
  TopoDS_Shape cutter = copier.Copy(givenCutter);
  if (project && AreTooLargeToFollow({face, cutter}))
    return Refused(report, "a curved shape of this size takes the kernel for ever");
  if (project)
    cutter = WireOfCurve(cutter);
  if (cutter.IsNull())
    return Refused(report, "the cutter is no edge or wire");
  const auto split = [&] {
    const TopoDS_Shape edges = project ? NormalProjection(cutter, face) : cutter;
    if (edges.IsNull())
      throw AttemptFailure("the cutter does not project to the face");
    return SplitAlong(edges, face);
  };
  return BuiltBy(project ? "split along the projected cutter" : "split along the cutter", split,
                 report);
}

TopoDS_Shape Intersect(const TopoDS_Shape& first, const TopoDS_Shape& second,
                       OperationReport& report)
{
  if (first.IsNull() || second.IsNull())
    return Refused(report, "an operand is missing");
  const TopoDS_Shape section = BuiltBy(
    "the section of both", [&] { return SectionOf(first, second); }, report);
  if (!section.IsNull() && section.NbChildren() == 0)
    report.notes.emplace_back("the section is empty: the shapes do not meet");
  return section;
}

TopoDS_Shape FirstFaceOf(const TopoDS_Shape& shape)
{
  const TopExp_Explorer first(shape, TopAbs_FACE);
  return first.More() ? first.Current() : TopoDS_Shape();
}

TopoDS_Shape ProjectionAlong(const gp_Dir& direction, const TopoDS_Wire& wire,
                             const TopoDS_Shape& face)
{
  BRepProj_Projection projection(wire, face, direction);
  return projection.IsDone() ? TopoDS_Shape(projection.Shape()) : TopoDS_Shape();
}

bool PointsSomewhere(const gp_Dir* direction)
{
  return direction != nullptr && direction->XYZ().SquareModulus() > 1e-24;
}

TopoDS_Shape Project(const TopoDS_Shape& curve, const TopoDS_Shape& surface,
                     const gp_Dir* direction, OperationReport& report)
{
  TopologyCopier copier;
  const TopoDS_Wire wire = WireOfCurve(copier.Copy(curve));
  const TopoDS_Shape face = FirstFaceOf(copier.Copy(surface));
  if (wire.IsNull())
    return Refused(report, "the curve is no edge or wire");
  if (face.IsNull())
    return Refused(report, "there is no face to project to");
  if (!HasFinitePlaces(wire) || !HasFinitePlaces(face))
    return Refused(report, "a vertex is at no finite place");
  if (AreTooLargeToFollow({wire, face}))
    return Refused(report, "a curved shape of this size takes the kernel for ever");
  if (surface.ShapeType() != TopAbs_FACE)
    report.notes.emplace_back("the projection is on the first face only");
  const bool isDirected = PointsSomewhere(direction);
  const TopoDS_Shape projected =
    isDirected ? ProjectionAlong(*direction, wire, face) : NormalProjection(wire, face);
  const char* description = isDirected ? "along the direction" : "along the normals";
  const bool isBuilt = !projected.IsNull();
  report.attempts.push_back({description, isBuilt, isBuilt ? "" : "nothing projects"});
  report.outcome = isBuilt ? OperationOutcome::Built : OperationOutcome::Failed;
  report.reason = report.attempts.back().reason;
  return projected;
}

} // namespace

TopoDS_Shape AdvancedSurfaceOp::ExtendSurface(const TopoDS_Face& face, double length, int side,
                                              int continuity)
{
  return ExtendSurface(face, length, side, continuity, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::ExtendSurface(const TopoDS_Face& face, double length, int side,
                                              int continuity, OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) {
    return Extend(face, length, side, continuity, written);
  });
}

TopoDS_Shape AdvancedSurfaceOp::TrimSurface(const TopoDS_Face& face, const TopoDS_Shape& cutter,
                                            bool project)
{
  return TrimSurface(face, cutter, project, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::TrimSurface(const TopoDS_Face& face, const TopoDS_Shape& cutter,
                                            bool project, OperationReport* report)
{
  return Reported(report,
                  [&](OperationReport& written) { return Trim(face, cutter, project, written); });
}

TopoDS_Shape AdvancedSurfaceOp::IntersectSurfaces(const TopoDS_Shape& first,
                                                  const TopoDS_Shape& second)
{
  return IntersectSurfaces(first, second, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::IntersectSurfaces(const TopoDS_Shape& first,
                                                  const TopoDS_Shape& second,
                                                  OperationReport* report)
{
  return Reported(report,
                  [&](OperationReport& written) { return Intersect(first, second, written); });
}

TopoDS_Shape AdvancedSurfaceOp::ProjectCurveToSurface(const TopoDS_Shape& curve,
                                                      const TopoDS_Shape& surface,
                                                      const gp_Dir* direction)
{
  return ProjectCurveToSurface(curve, surface, direction, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::ProjectCurveToSurface(const TopoDS_Shape& curve,
                                                      const TopoDS_Shape& surface,
                                                      const gp_Dir* direction,
                                                      OperationReport* report)
{
  return Reported(
    report, [&](OperationReport& written) { return Project(curve, surface, direction, written); });
}
