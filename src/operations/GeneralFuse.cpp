// The general fuses of OrvexGeometryOp.
#include "operations/OrvexGeometryOp.h"

#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BOPAlgo_Builder.hxx>

#include <algorithm>

namespace {

// The kernel's non-destructive mode still takes a mark from operands that become part of the result
// as a whole, so it gets copies.
TopoDS_Shape FusedGenerally(const NCollection_List<TopoDS_Shape>& shapes)
{
  constexpr double kFuzzyValue = 1e-5;
  if (!std::all_of(shapes.begin(), shapes.end(), Orvex::HasFinitePlaces))
    return {};
  Orvex::TopologyCopier copier;
  BOPAlgo_Builder builder;
  for (const TopoDS_Shape& shape : shapes)
    builder.AddArgument(copier.Copy(shape));
  builder.SetRunParallel(true);
  builder.SetFuzzyValue(kFuzzyValue);
  builder.SetNonDestructive(true);
  builder.SetGlue(BOPAlgo_GlueShift);
  builder.SetCheckInverted(false);
  builder.SetUseOBB(true);
  // Which sub-shape came from which is asked by nobody, and costs time.
  builder.SetToFillHistory(false);
  builder.Perform();
  return builder.Shape();
}

} // namespace

TopoDS_Shape OrvexGeometryOp::NonRegularBool2ShapesLCW(TopoDS_Shape* first, TopoDS_Shape* second)
{
  if (first == nullptr || second == nullptr)
    return {};
  NCollection_List<TopoDS_Shape> both;
  both.Append(*first);
  both.Append(*second);
  return FusedGenerally(both);
}

TopoDS_Shape OrvexGeometryOp::NonRegularBoolLCW(NCollection_List<TopoDS_Shape>& shapes)
{
  if (shapes.IsEmpty())
    return {};
  return shapes.Extent() == 1 ? shapes.First() : FusedGenerally(shapes);
}
