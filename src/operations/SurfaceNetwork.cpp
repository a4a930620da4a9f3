#include "operations/AdvancedSurfaceOp.h"

#include "kernel/internal/BrepText.h"
#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/internal/RuledSides.h"
#include "operations/internal/SurfaceFill.h"

#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_Wire.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <algorithm>
#include <set>

using namespace Orvex;

namespace {

using Wires = std::vector<TopoDS_Wire>;
using Constraints = std::vector<SurfaceNetworkBoundaryConstraint>;
using Shapes = AdvancedSurfaceOp::Shapes;

Wires CopiesOf(const Wires& wires)
{
  TopologyCopier copier;
  Wires copies;
  for (const TopoDS_Wire& wire : wires)
    copies.push_back(TopoDS::Wire(copier.Copy(wire)));
  return copies;
}

bool HasCopies(const Wires& wires)
{
  std::set<std::string> texts;
  return !std::all_of(wires.begin(), wires.end(),
                      [&](const TopoDS_Wire& wire) { return texts.insert(BrepText(wire)).second; });
}

bool IsClosed(const TopoDS_Wire& wire)
{
  return !EdgesOf(wire).empty() && BRepCheck_Analyzer(wire).IsValid() &&
         BRepCheck_Wire(wire).Closed(false) == BRepCheck_NoError;
}

bool AreValid(const Constraints& constraints, std::size_t wires)
{
  std::set<int> numbers;
  return std::all_of(constraints.begin(), constraints.end(), [&](const auto& constraint) {
    return constraint.index >= 1 && constraint.index <= static_cast<int>(wires) &&
           numbers.insert(constraint.index).second;
  });
}

bool IsNull(const TopoDS_Wire& wire)
{
  return wire.IsNull();
}

const char* ReasonToRefuse(const Wires& wires, const Constraints& constraints)
{
  if (wires.size() < 2)
    return "a network needs two wires";
  if (std::any_of(wires.begin(), wires.end(), &IsNull))
    return "a wire is missing";
  if (!std::all_of(wires.begin(), wires.end(), &HasFinitePlaces))
    return "a wire has a vertex at no finite place";
  if (HasDuplicates(Shapes(wires.begin(), wires.end())) || HasCopies(wires))
    return "a wire is given twice";
  if (!std::all_of(wires.begin(), wires.end(), &IsClosed))
    return "a wire is not valid or not closed";
  return AreValid(constraints, wires.size()) ? nullptr
                                             : "a constraint has an unknown number, or one twice";
}

SurfaceContinuityLevel LevelOf(std::size_t wire, const Constraints& constraints,
                               SurfaceContinuityLevel level)
{
  const int number = static_cast<int>(wire) + 1;
  const auto found = std::find_if(constraints.begin(), constraints.end(),
                                  [&](const auto& each) { return each.index == number; });
  return found == constraints.end() ? level
                                    : static_cast<SurfaceContinuityLevel>(found->continuity);
}

TopoDS_Shape LoftOver(const Wires& wires, OperationReport& report)
{
  AdvancedLoftOptions options;
  options.checkCompatibility = wires.size() > 3;
  OperationReport loft;
  const TopoDS_Shape sides =
    AdvancedSurfaceOp::BuildAdvancedLoft(Shapes(wires.begin(), wires.end()), {}, options, &loft);
  for (OperationAttempt& attempt : loft.attempts)
    attempt.description.insert(0, "sides, ");
  report.attempts.insert(report.attempts.end(), loft.attempts.begin(), loft.attempts.end());
  report.notes.insert(report.notes.end(), loft.notes.begin(), loft.notes.end());
  if (sides.IsNull())
    report.notes.push_back(std::string("no sides: ").append(loft.reason));
  return sides;
}

TopoDS_Shape Sides(const Wires& wires, OperationReport& report)
{
  if (wires.size() > 2)
    return LoftOver(wires, report);
  return BuiltBy(
    "sides, ruled", [&] { return RuledBetween(wires.front(), wires.back()); }, report);
}

TopoDS_Shape CompoundOfAll(const Shapes& shapes)
{
  TopoDS_Compound compound;
  BRep_Builder().MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    BRep_Builder().Add(compound, shape);
  return compound;
}

TopoDS_Shape Cap(std::size_t wire, const Wires& wires, const Constraints& constraints,
                 SurfaceContinuityLevel level, OperationReport& report)
{
  const std::string what =
    std::string("cap on wire ").append(std::to_string(wire + 1)).append(", ");
  return FilledHole(what, wires[wire], {}, LevelOf(wire, constraints, level), report);
}

TopoDS_Shape Network(const Wires& given, const Constraints& constraints,
                     SurfaceContinuityLevel level, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(given, constraints))
    return Refused(report, reason);
  const Wires wires = CopiesOf(given);
  Shapes parts = {Sides(wires, report)};
  const bool hasSides = !parts.front().IsNull();
  if (!hasSides)
    report.notes.emplace_back("the wires have no skin between them and are filled one by one");
  for (std::size_t i = 0; i < wires.size(); ++i)
    if (!hasSides || i == 0 || i + 1 == wires.size())
      parts.push_back(Cap(i, wires, constraints, level, report));
  std::erase_if(parts, [](const TopoDS_Shape& part) { return part.IsNull(); });
  if (parts.empty())
    return {};
  const TopoDS_Shape sewn = Sewn(parts);
  report.outcome = OperationOutcome::Built;
  report.reason.clear();
  return sewn.IsNull() ? CompoundOfAll(parts) : sewn;
}

} // namespace

TopoDS_Shape AdvancedSurfaceOp::BuildSurfaceNetwork(
  const std::vector<TopoDS_Wire>& wires,
  const std::vector<SurfaceNetworkBoundaryConstraint>& constraints, SurfaceContinuityLevel level)
{
  return BuildSurfaceNetwork(wires, constraints, level, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::BuildSurfaceNetwork(
  const std::vector<TopoDS_Wire>& wires,
  const std::vector<SurfaceNetworkBoundaryConstraint>& constraints, SurfaceContinuityLevel level,
  OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) -> TopoDS_Shape {
    try {
      return Network(wires, constraints, level, written);
    } catch (const Standard_Failure& failure) {
      written.outcome = OperationOutcome::Failed;
      written.reason = ReasonOf(failure);
      return {};
    }
  });
}

TopoDS_Shape AdvancedSurfaceOp::BuildSurfaceNetwork(const std::vector<TopoDS_Wire>& wires,
                                                    SurfaceContinuityLevel level)
{
  return BuildSurfaceNetwork(wires, {}, level, nullptr);
}
