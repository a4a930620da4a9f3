#include "collision/internal/ExactStages.h"

#include "kernel/internal/OperandKeeping.h"

#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

namespace Orvex {

std::optional<ExactDistance> ExactDistanceOf(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  // Loaded one by one: the constructor with two shapes measures at once, before it is asked to.
  BRepExtrema_DistShapeShape kernel;
  kernel.SetFlag(Extrema_ExtFlag_MINMAX);
  kernel.SetAlgo(Extrema_ExtAlgo_Grad);
  kernel.LoadS1(first);
  kernel.LoadS2(second);
  kernel.Perform();
  if (!kernel.IsDone())
    return std::nullopt;
  ExactDistance distance{kernel.Value(), {}};
  if (kernel.NbSolution() > 0)
    distance.points = {kernel.PointOnShape1(1), kernel.PointOnShape2(1)};
  return distance;
}

TopoDS_Shape CommonOf(const TopoDS_Shape& first, const TopoDS_Shape& second, double fuzzyTolerance,
                      bool runParallel)
{
  return BooleanOf(BOPAlgo_COMMON, first, second, [&](BRepAlgoAPI_BooleanOperation& boolean) {
    boolean.SetFuzzyValue(fuzzyTolerance);
    boolean.SetRunParallel(runParallel);
  });
}

double VolumeOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(shape, properties);
  return properties.Mass();
}

double CommonVolumeOrNone(const TopoDS_Shape& first, const TopoDS_Shape& second,
                          double fuzzyTolerance)
{
  try {
    const TopoDS_Shape common = CommonOf(first, second, fuzzyTolerance, false);
    return common.IsNull() ? 0 : VolumeOf(common);
  } catch (...) {
    return 0;
  }
}

} // namespace Orvex
