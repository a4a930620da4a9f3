// The common solid of two shapes from the region in which they meet.
//
// Coarse meshes tell the region in which the shapes come near each other; both are clipped to it,
// and the boolean runs on the two pieces. Where the common solid reaches beyond that region, it is
// made again in a larger one. That pays for shapes of some hundred faces that meet in a small part
// of their extent; for simple ones the plain common is as fast.
//
// Guarantees: nothing is thrown; the shapes stay as they are, but for meshes put on their faces.
//
// Caveats:
// - A shape inside the other one, away from its surface, counts as no overlap.
// - Two calls at a time must share no shapes.
#pragma once

#include "collision/OrvexMeshRoiBooleanConfig.h"
#include "collision/OrvexMeshRoiResult.h"
#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

class ORVEX_API OrvexMeshRoiBoolean
{
public:
  // Arguments: `fuzzyTolerance` in model units, at least 1e-7.
  // Returns: a shape; or none, with noOverlap or a message that tells what failed.
  static OrvexMeshRoiResult compute(const TopoDS_Shape& a, const TopoDS_Shape& b,
                                    const OrvexMeshRoiBooleanConfig& config, double fuzzyTolerance);

  // The same, and tells how it went.
  static OrvexMeshRoiResult compute(const TopoDS_Shape& a, const TopoDS_Shape& b,
                                    const OrvexMeshRoiBooleanConfig& config, double fuzzyTolerance,
                                    OrvexMeshRoiTrace& trace);
};
