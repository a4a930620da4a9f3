// The offset of OrvexGeometryOp.
#include "operations/OrvexGeometryOp.h"

#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepOffsetAPI_MakeOffsetShape.hxx>

namespace {

bool IsSound(const sOffsetParameter& parameter)
{
  return Orvex::IsFinite(parameter.offset) && Orvex::IsFinite(parameter.tolerance) &&
         parameter.mode >= BRepOffset_Skin && parameter.mode <= BRepOffset_RectoVerso &&
         parameter.join >= GeomAbs_Arc && parameter.join <= GeomAbs_Intersection;
}

} // namespace

TopoDS_Shape OrvexGeometryOp::OffsetObject(TopoDS_Shape& shape, sOffsetParameter parameter)
{
  if (!IsSound(parameter) || !Orvex::HasFinitePlaces(shape))
    return {};
  BRepOffsetAPI_MakeOffsetShape offset;
  offset.PerformByJoin(Orvex::TopologyCopier().Copy(shape), parameter.offset, parameter.tolerance,
                       static_cast<BRepOffset_Mode>(parameter.mode), parameter.intersection,
                       parameter.selfIntersection, static_cast<GeomAbs_JoinType>(parameter.join),
                       false);
  return offset.IsDone() ? offset.Shape() : TopoDS_Shape();
}
