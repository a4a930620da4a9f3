#include "collision/internal/CacheFilling.h"

#include "collision/internal/ParallelLoop.h"

namespace Orvex {

std::vector<TopoDS_Shape> ShapesOf(const std::vector<OrvexModelPart>& parts)
{
  std::vector<TopoDS_Shape> shapes;
  for (const OrvexModelPart& part : parts)
    shapes.push_back(part.shape);
  return shapes;
}

double MeshDeflection(const OrvexCollisionConfig& config, const OrvexSceneStats& stats)
{
  return std::max(1e-5, stats.sceneDiagonal * config.relativeMeshDeflection);
}

// The deflection is an angle, too. Asked for less than the values below (by a scene in metres, or
// one without statistics), the mesher takes minutes and all the memory that there is for one torus.
MeshFineness FinenessFor(double deflection)
{
  constexpr double kLeastDeflection = 3e-4, kLeastAngle = 0.05;
  return {std::max(kLeastDeflection, deflection), true, std::max(kLeastAngle, deflection)};
}

void MakeTrees(PartCache<OrvexCollisionEngine::TriBVH>& cache, const std::vector<int>& parts,
               const std::function<bool()>& isOver, OrvexCollisionTrace* trace)
{
  const std::vector<int> missing = cache.Missing(parts);
  std::vector<TopoDS_Shape> shapes;
  for (const int part : missing)
    shapes.push_back(cache.ShapeOf(part));
  const int meshed = MeshDistinctShapes(shapes, FinenessFor(cache.Deflection()), isOver);
  // A part that was not meshed must not pass for one that cannot be.
  if (isOver())
    return;
  ForEachInParallel(static_cast<int>(missing.size()), [&](int i) {
    const auto at = static_cast<std::size_t>(i);
    cache.Set(missing[at], OrvexCollisionEngine::TriBVH::Of(shapes[at]));
  });
  if (trace == nullptr)
    return;
  trace->meshedShapes += meshed;
  trace->meshedParts += static_cast<int>(missing.size());
  for (const int part : missing)
    if (const auto tree = cache.At(part)) {
      trace->triangles += tree->triangles.size();
      trace->treeBytes += tree->Bytes();
    }
}

} // namespace Orvex
