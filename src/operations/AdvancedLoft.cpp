#include "kernel/internal/CurveShapes.h"
#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/AdvancedSurfaceOp.h"
#include "operations/internal/AttemptLadder.h"
#include "operations/internal/LoftLadder.h"
#include "operations/internal/LoftSections.h"
#include "operations/internal/SectionCheck.h"

#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <algorithm>

using namespace Orvex;

namespace {

using Shapes = AdvancedSurfaceOp::Shapes;

// The kernel goes on with its result without a look whether its approximation has given one, and
// dereferences null. What stands in its place before keeps it from that.
class Loft : public BRepOffsetAPI_ThruSections
{
public:
  using BRepOffsetAPI_ThruSections::BRepOffsetAPI_ThruSections;

  void Build(const Message_ProgressRange& range = Message_ProgressRange()) override
  {
    TopoDS_Compound nothing;
    BRep_Builder().MakeCompound(nothing);
    myShape = nothing;
    BRepOffsetAPI_ThruSections::Build(range);
    if (IsDone() && myShape.IsSame(nothing))
      NotDone();
  }
};

LoftSize SizeOf(const Shapes& sections, const Shapes& guides)
{
  return {static_cast<int>(sections.size()), CountValidGuides(guides)};
}

void Apply(const AdvancedLoftOptions& options, Loft& loft)
{
  static constexpr GeomAbs_Shape kContinuities[] = {GeomAbs_C0, GeomAbs_C1, GeomAbs_C2};
  static constexpr Approx_ParametrizationType kParametrizations[] = {
    Approx_IsoParametric, Approx_ChordLength, Approx_Centripetal};
  loft.CheckCompatibility(options.checkCompatibility);
  loft.SetSmoothing(options.smoothing);
  loft.SetContinuity(kContinuities[options.continuity]);
  loft.SetMaxDegree(options.maxDegree);
  loft.SetParType(kParametrizations[options.parametrization]);
}

Shapes UsedGuides(const Shapes& guides, const AdvancedLoftOptions& options)
{
  if (options.guideMode == 0)
    return {};
  if (!std::all_of(guides.begin(), guides.end(), &IsValidGuide))
    throw AttemptFailure("a guide is no curve");
  return guides;
}

std::vector<TopoDS_Wire> PlacedSections(const Shapes& sections, const Shapes& guides,
                                        const AdvancedLoftOptions& options)
{
  // One copier, since sections may share vertices.
  TopologyCopier copier;
  std::vector<TopoDS_Wire> wires;
  const std::size_t last = sections.size() - 1;
  for (std::size_t i = 0; i <= last; ++i) {
    TopoDS_Wire wire = ToWire(copier.Copy(sections[i]));
    if (wire.IsNull())
      throw AttemptFailure("a section is no curve");
    if (i > 0 && i < last && !guides.empty())
      wire =
        MovedByGuides(wire, guides, static_cast<double>(i) / static_cast<double>(last), options);
    wires.push_back(wire);
  }
  CheckSections(wires, options);
  return wires;
}

TopoDS_Shape TryLoft(const Shapes& sections, const Shapes& guides,
                     const AdvancedLoftOptions& options)
{
  Loft loft(options.solid, options.ruled, options.tolerance);
  Apply(options, loft);
  for (const TopoDS_Wire& wire : PlacedSections(sections, UsedGuides(guides, options), options))
    loft.AddWire(wire);
  loft.Build();
  return ShapeIfDone(loft);
}

const char* ReasonToRefuse(const Shapes& sections, const Shapes& guides)
{
  if (sections.size() < 2)
    return "a loft needs two sections";
  if (HasDuplicates(sections))
    return "a section is given twice";
  if (HasDuplicates(guides))
    return "a guide is given twice";
  if (!std::all_of(sections.begin(), sections.end(), &HasFinitePlaces))
    return "a section has a vertex at no finite place";
  return nullptr;
}

TopoDS_Shape BuildLoft(const Shapes& sections, const Shapes& guides,
                       const AdvancedLoftOptions& options, OperationReport& report)
{
  if (const char* reason = ReasonToRefuse(sections, guides))
    return Refused(report, reason);
  const std::vector<AdvancedLoftOptions> sets = LoftAttempts(SizeOf(sections, guides), options);
  if (!IsSameLoft(sets.front(), options))
    report.notes.emplace_back("the options were reduced before the first attempt");
  std::vector<Attempt> attempts;
  for (const AdvancedLoftOptions& set : sets)
    attempts.push_back(
      {TextOf(set), [&sections, &guides, set] { return TryLoft(sections, guides, set); }});
  return FirstBuilt(attempts, report);
}

} // namespace

TopoDS_Shape AdvancedSurfaceOp::BuildAdvancedLoft(const Shapes& sections, const Shapes& guides,
                                                  const AdvancedLoftOptions& options)
{
  return BuildAdvancedLoft(sections, guides, options, nullptr);
}

TopoDS_Shape AdvancedSurfaceOp::BuildAdvancedLoft(const Shapes& sections, const Shapes& guides,
                                                  const AdvancedLoftOptions& options,
                                                  OperationReport* report)
{
  return Reported(report, [&](OperationReport& written) {
    return BuildLoft(sections, guides, options, written);
  });
}

AdvancedLoftOptions
AdvancedSurfaceOp::SanitizeAdvancedLoftOptions(const Shapes& sections, const Shapes& guides,
                                               const AdvancedLoftOptions& options, bool* isComplex,
                                               bool* changed)
{
  const LoftSize size = SizeOf(sections, guides);
  const AdvancedLoftOptions sanitized = SanitizedLoftOptions(size, options);
  if (isComplex != nullptr)
    *isComplex = IsComplexLoft(size, options);
  if (changed != nullptr)
    *changed = !IsSameLoft(sanitized, options);
  return sanitized;
}
