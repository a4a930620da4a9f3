#include "operations/internal/SectionCheck.h"

#include "kernel/internal/CurveShapes.h"
#include "operations/internal/AttemptLadder.h"

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepCheck_Wire.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Precision.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex {

namespace {

bool IsTooSmall(const TopoDS_Wire& wire)
{
  Bnd_Box box;
  BRepBndLib::AddOptimal(wire, box, false, false);
  return box.IsVoid() || std::sqrt(box.SquareExtent()) <= Precision::Confusion();
}

bool IsSimpleLoop(const TopoDS_Wire& wire)
{
  BRepBuilderAPI_MakeFace face(wire, true);
  if (!face.IsDone())
    return false;
  TopoDS_Edge one, other;
  return BRepCheck_Wire(wire).SelfIntersect(face.Face(), one, other) == BRepCheck_NoError;
}

bool HasAsManyEdges(const std::vector<TopoDS_Wire>& sections)
{
  return std::all_of(sections.begin(), sections.end(), [&](const TopoDS_Wire& wire) {
    return EdgesOf(wire).size() == EdgesOf(sections.front()).size();
  });
}

bool IsClosed(const TopoDS_Wire& wire)
{
  return BRep_Tool::IsClosed(wire);
}

void CheckWhatIsMadeCompatible(const std::vector<TopoDS_Wire>& sections)
{
  if (std::any_of(sections.begin(), sections.end(), &IsTooSmall))
    throw AttemptFailure("a section is smaller than the kernel's tolerance");
  if (std::any_of(sections.begin(), sections.end(), &PassesAnEdgeTwice))
    throw AttemptFailure("a section passes an edge twice");
  const bool haveLoops = std::any_of(sections.begin(), sections.end(), &IsClosed);
  if (haveLoops && !HasAsManyEdges(sections) &&
      !std::all_of(sections.begin(), sections.end(), &IsSimpleLoop))
    throw AttemptFailure(
      "sections with different numbers of edges cross themselves or lie in no plane");
}

} // namespace

void CheckSections(const std::vector<TopoDS_Wire>& sections, const AdvancedLoftOptions& options)
{
  const bool isRuled = options.ruled || sections.size() == 2;
  if (options.checkCompatibility)
    CheckWhatIsMadeCompatible(sections);
  if (!isRuled && options.smoothing && options.continuity == 0)
    throw AttemptFailure("smoothing without continuity");
  if (!options.checkCompatibility && !isRuled && !HasAsManyEdges(sections))
    throw AttemptFailure("the sections have different numbers of edges");
}

} // namespace Orvex
