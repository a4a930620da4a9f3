// Makes what caches of parts hold, for the parts that need it.
#pragma once

#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/FaceBoxes.h"
#include "collision/internal/PartCache.h"
#include "collision/internal/ShapeMeshing.h"
#include "collision/internal/TriBVH.h"

namespace Orvex {

std::vector<TopoDS_Shape> ShapesOf(const std::vector<OrvexModelPart>& parts);

double MeshDeflection(const OrvexCollisionConfig& config, const OrvexSceneStats& stats);

// What the kernel's mesher is asked for: no finer than it can do in seconds.
MeshFineness FinenessFor(double deflection);

// Meshes the parts that have no entry yet, and makes their trees, side by side. Once `isOver` is
// true, the rest is left for another time. The trace may be null.
void MakeTrees(PartCache<OrvexCollisionEngine::TriBVH>& cache, const std::vector<int>& parts,
               const std::function<bool()>& isOver, OrvexCollisionTrace* trace);

// Makes the boxes of faces for the parts that have no entry yet.
template <typename Entry>
void MakeFaceBoxes(PartCache<Entry>& cache, const std::vector<int>& parts)
{
  for (const int part : cache.Missing(parts))
    cache.Set(part, std::make_shared<const Entry>(Entry{FaceBoxes::Of(cache.ShapeOf(part))}));
}

} // namespace Orvex
