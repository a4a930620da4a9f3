#include "picking/OCCPickingSystem.h"

#include "picking/OCCPickingSystemImpl.h"

OCCPickingSystem::OCCPickingSystem() : impl(std::make_unique<OCCPickingSystemImpl>())
{}

OCCPickingSystem::~OCCPickingSystem() = default;

void OCCPickingSystem::SetShapesToPick(const std::vector<TopoDS_Shape>& shapes)
{
  impl->SetShapes(shapes);
}

void OCCPickingSystem::SetPickingLevel(PickingLevel level)
{
  impl->SetPickingLevel(level);
}

void OCCPickingSystem::SetPickingTolerance(double tolerance)
{
  impl->SetPickingTolerance(tolerance);
}

std::vector<PickResult> OCCPickingSystem::PickShapes(const gp_Lin& ray)
{
  return impl->PickShapes(ray);
}
