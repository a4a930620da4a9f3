#include "collision/internal/BoxClip.h"

#include "kernel/internal/OperandKeeping.h"

#include <BRepPrimAPI_MakeBox.hxx>

namespace Orvex {

namespace {

gp_Pnt Lower(const BoxLimits& box)
{
  return {box.min[0], box.min[1], box.min[2]};
}

gp_Pnt Upper(const BoxLimits& box)
{
  return {box.max[0], box.max[1], box.max[2]};
}

TopoDS_Shape BoxSolid(const BoxLimits& box)
{
  return BRepPrimAPI_MakeBox(Lower(box), Upper(box)).Shape();
}

TopoDS_Shape BooleanWith(BOPAlgo_Operation operation, const TopoDS_Shape& shape,
                         const BoxLimits& box, double fuzzy)
{
  return BooleanOf(operation, shape, BoxSolid(box), [fuzzy](BRepAlgoAPI_BooleanOperation& kernel) {
    kernel.SetFuzzyValue(fuzzy);
    kernel.SetRunParallel(true);
  });
}

// Around both, with room to spare.
BoxLimits BigBox(const BoxLimits& region, const BoxLimits& overall)
{
  double sum = 0, largest = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    sum += region.Extent(axis);
    largest = std::max({largest, overall.Extent(axis), region.Extent(axis)});
  }
  const double margin = sum + 2 * largest + 1.0;
  BoxLimits big = overall;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    big.min[axis] -= margin;
    big.max[axis] += margin;
  }
  return big;
}

// A slab without thickness cuts nothing.
TopoDS_Shape WithoutSlab(const TopoDS_Shape& shape, BoxLimits slab, double fuzzy)
{
  constexpr double kThin = 1e-7;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (slab.min[axis] > slab.max[axis])
      std::swap(slab.min[axis], slab.max[axis]);
    if (slab.Extent(axis) < kThin)
      return shape;
  }
  return BooleanWith(BOPAlgo_CUT, shape, slab, fuzzy);
}

} // namespace

TopoDS_Shape ClippedByCommon(const TopoDS_Shape& shape, const BoxLimits& region, double fuzzy)
{
  return BooleanWith(BOPAlgo_COMMON, shape, region, fuzzy);
}

TopoDS_Shape ClippedBySlabs(const TopoDS_Shape& shape, const BoxLimits& region,
                            const BoxLimits& overall, double fuzzy)
{
  const BoxLimits big = BigBox(region, overall);
  TopoDS_Shape clipped = shape;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    BoxLimits below = big, above = big;
    below.max[axis] = region.min[axis];
    above.min[axis] = region.max[axis];
    for (const BoxLimits& slab : {below, above}) {
      if (clipped.IsNull())
        return clipped;
      clipped = WithoutSlab(clipped, slab, fuzzy);
    }
  }
  return clipped;
}

} // namespace Orvex
