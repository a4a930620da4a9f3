#include "operations/AdvancedSurfaceOp.h"

#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/internal/BlendSurfaceShape.h"
#include "operations/internal/SurfaceFill.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <TopoDS.hxx>

#include <algorithm>

using namespace Orvex;

namespace {

using Status = BlendSurfaceInputStatus;
using BuildOptions = BlendSurfaceBuildOptions;

constexpr double kNoLength = 1e-7;

struct EdgeEnds
{
  bool hasCurve = false;
  gp_Pnt first, last;
};

EdgeEnds EndsOf(const TopoDS_Edge& edge)
{
  double first = 0, last = 0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (curve.IsNull())
    return {};
  return {true, curve->Value(first), curve->Value(last)};
}

bool IsDegenerate(const TopoDS_Edge& edge)
{
  const EdgeEnds ends = EndsOf(edge);
  return !ends.hasCurve || !(ends.first.Distance(ends.last) > kNoLength);
}

bool IsSupportMissing(const BlendBoundaryConstraint& constraint)
{
  return constraint.continuity != 0 && constraint.supportFace.IsNull();
}

bool IsOffSupport(const BlendBoundaryConstraint& constraint)
{
  double first = 0, last = 0;
  return !constraint.supportFace.IsNull() &&
         BRep_Tool::CurveOnSurface(constraint.edge, constraint.supportFace, first, last).IsNull();
}

Status StatusOf(const BuildOptions& options)
{
  const auto& [first, second, blendFactor, flags] = options;
  if (first.edge.IsNull())
    return Status::MissingFirstEdge;
  if (second.edge.IsNull())
    return Status::MissingSecondEdge;
  if (IsSameShape(first.edge, second.edge))
    return Status::SameEdge;
  if (IsDegenerate(first.edge))
    return Status::FirstEdgeDegenerate;
  if (IsDegenerate(second.edge))
    return Status::SecondEdgeDegenerate;
  if (IsSupportMissing(first))
    return Status::FirstSupportMissing;
  if (IsSupportMissing(second))
    return Status::SecondSupportMissing;
  if (IsOffSupport(first))
    return Status::FirstEdgeNotOnSupport;
  return IsOffSupport(second) ? Status::SecondEdgeNotOnSupport : Status::Valid;
}

const char* TextOf(Status status)
{
  static const char* const kTexts[] = {"valid",
                                       "there is no first edge",
                                       "there is no second edge",
                                       "both edges are the same",
                                       "the first edge is closed or has no length",
                                       "the second edge is closed or has no length",
                                       "the first side has a level and no support face",
                                       "the second side has a level and no support face",
                                       "the first edge has no curve on its support face",
                                       "the second edge has no curve on its support face"};
  return kTexts[static_cast<int>(status)];
}

// Also of an edge that runs to infinity, which has no vertices.
bool IsBounded(const TopoDS_Edge& edge)
{
  const EdgeEnds ends = EndsOf(edge);
  return HasFinitePlaces(edge) && IsFinite(ends.first.Distance(ends.last));
}

const char* ReasonToRefuse(const BuildOptions& options)
{
  const Status status = StatusOf(options);
  if (status != Status::Valid)
    return TextOf(status);
  const bool areBounded = IsBounded(options.first.edge) && IsBounded(options.second.edge);
  return areBounded ? nullptr : "an edge has an end at no finite place";
}

TopoDS_Edge Connector(const gp_Pnt& from, const gp_Pnt& to)
{
  BRepBuilderAPI_MakeEdge line(from, to);
  const bool isLine = line.IsDone() && from.Distance(to) > kNoLength;
  return isLine ? line.Edge() : TopoDS_Edge();
}

TopoDS_Wire WireOf(const TopoDS_Edge& first, const TopoDS_Edge& firstConnector,
                   const TopoDS_Edge& second, const TopoDS_Edge& secondConnector)
{
  if (firstConnector.IsNull() || secondConnector.IsNull())
    return {};
  BRepBuilderAPI_MakeWire wire(first, firstConnector, second, secondConnector);
  return wire.IsDone() ? wire.Wire() : TopoDS_Wire();
}

TopoDS_Wire Frame(const BuildOptions& options)
{
  TopologyCopier copier;
  const TopoDS_Edge first = TopoDS::Edge(copier.Copy(options.first.edge));
  const TopoDS_Edge second = TopoDS::Edge(copier.Copy(options.second.edge));
  const EdgeEnds a = EndsOf(first), b = EndsOf(second);
  const double crossed = a.first.Distance(b.last) + a.last.Distance(b.first);
  const double straight = a.first.Distance(b.first) + a.last.Distance(b.last);
  if (crossed > straight + kNoLength)
    return WireOf(first, Connector(a.last, b.last), TopoDS::Edge(second.Reversed()),
                  Connector(b.first, a.first));
  return WireOf(first, Connector(a.last, b.first), second, Connector(b.last, a.first));
}

bool IsConstrained(const BlendBoundaryConstraint& constraint)
{
  return !constraint.supportFace.IsNull() || constraint.continuity != 0;
}

TopoDS_Face Unconstrained(const BuildOptions& options, OperationReport& report)
{
  const auto build = [&]() -> TopoDS_Shape {
    const Handle(Geom_BSplineSurface) surface =
      BlendBetween(options.first.edge, options.second.edge, options.blendFactor);
    BRepBuilderAPI_MakeFace face(surface, kNoLength);
    return ShapeIfDone(face);
  };
  return TopoDS::Face(BuiltBy("from curve to curve, without constraints", build, report));
}

// The filled frame alone; no frame counts as an attempt that failed.
TopoDS_Face FilledFrame(const BuildOptions& options, OperationReport& report)
{
  TopoDS_Wire frame;
  const auto makeFrame = [&]() -> TopoDS_Shape { return frame = Frame(options); };
  OperationReport framing;
  BuiltBy("a frame round both edges", makeFrame, framing);
  if (!frame.IsNull())
    return FilledHole("the frame filled, ", frame, {}, SurfaceContinuityLevel::Position, report);
  report.attempts.push_back(framing.attempts.front());
  report.outcome = OperationOutcome::Failed;
  report.reason = framing.reason;
  return {};
}

TopoDS_Face Constrained(const BuildOptions& options, OperationReport& report)
{
  report.notes.emplace_back("levels and support faces do not shape the blend");
  const TopoDS_Face seed = FilledFrame(options, report);
  if (seed.IsNull())
    return Unconstrained(options, report);
  if (BRepCheck_Analyzer(seed, true).IsValid())
    return seed;
  RejectLast(report, "the filled frame is not a valid face");
  return Unconstrained(options, report);
}

TopoDS_Face Blend(const BuildOptions& options, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(options))
    return TopoDS::Face(Refused(report, reason));
  return AdvancedSurfaceOp::RequiresConstrainedBlendSolve(options) ? Constrained(options, report)
                                                                   : Unconstrained(options, report);
}

TopoDS_Face Seed(const BuildOptions& options, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(options))
    return TopoDS::Face(Refused(report, reason));
  const TopoDS_Wire frame = Frame(options);
  if (frame.IsNull())
    return {};
  const TopoDS_Face seed = FilledHole("", frame, {}, SurfaceContinuityLevel::Position, report);
  const bool mayBeAny = !AdvancedSurfaceOp::RequiresConstrainedBlendSolve(options);
  return seed.IsNull() && mayBeAny ? Unconstrained(options, report) : seed;
}

// Runs work, which gives a face or a wire, and gives a null one for what the kernel raises.
template <typename Result, typename Work>
Result NullOnFailure(OperationReport* report, Work&& work)
{
  return Reported(report, [&](OperationReport& written) {
    try {
      return Result(work(written));
    } catch (const Standard_Failure& failure) {
      Refused(written, ReasonOf(failure));
      return Result();
    }
  });
}

} // namespace

BlendSurfaceInputStatus
AdvancedSurfaceOp::ValidateBlendSurfaceInput(const BlendSurfaceBuildOptions& options)
{
  return StatusOf(options);
}

bool AdvancedSurfaceOp::RequiresConstrainedBlendSolve(const BlendSurfaceBuildOptions& options)
{
  return IsConstrained(options.first) || IsConstrained(options.second);
}

TopoDS_Wire AdvancedSurfaceOp::BuildBlendBoundaryFrame(const BlendSurfaceBuildOptions& options)
{
  return NullOnFailure<TopoDS_Wire>(nullptr, [&](OperationReport&) {
    return ReasonToRefuse(options) == nullptr ? Frame(options) : TopoDS_Wire();
  });
}

TopoDS_Face
AdvancedSurfaceOp::BuildBlendBoundarySeedSurface(const BlendSurfaceBuildOptions& options)
{
  return NullOnFailure<TopoDS_Face>(
    nullptr, [&](OperationReport& written) { return Seed(options, written); });
}

TopoDS_Face AdvancedSurfaceOp::BuildBlendSurface(const BlendSurfaceBuildOptions& options)
{
  return BuildBlendSurface(options, nullptr);
}

TopoDS_Face AdvancedSurfaceOp::BuildBlendSurface(const BlendSurfaceBuildOptions& options,
                                                 OperationReport* report)
{
  return NullOnFailure<TopoDS_Face>(
    report, [&](OperationReport& written) { return Blend(options, written); });
}

TopoDS_Face AdvancedSurfaceOp::BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                                 const BlendSurfaceOptions& options)
{
  return BuildBlendSurface(edge1, edge2, options, nullptr);
}

TopoDS_Face AdvancedSurfaceOp::BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                                 const BlendSurfaceOptions& options,
                                                 OperationReport* report)
{
  const int level = std::clamp(options.continuity, 0, 2);
  BlendSurfaceBuildOptions both;
  both.first = {edge1, options.firstSupport, level};
  both.second = {edge2, options.secondSupport, level};
  both.blendFactor = options.blendFactor;
  return BuildBlendSurface(both, report);
}

TopoDS_Face AdvancedSurfaceOp::BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                                 int continuity, double blendFactor)
{
  BlendSurfaceOptions options;
  options.continuity = continuity;
  options.blendFactor = blendFactor;
  return BuildBlendSurface(edge1, edge2, options);
}

TopoDS_Face BuildBlendSurfaceWithOptions(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                         const BlendSurfaceOptions& options)
{
  return AdvancedSurfaceOp::BuildBlendSurface(edge1, edge2, options);
}
