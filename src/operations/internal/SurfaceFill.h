// Faces that a wire bounds.
#pragma once

#include "operations/SurfaceBoundaryConstraints.h"
#include "operations/SurfaceContinuityLevel.h"
#include "operations/internal/AttemptLadder.h"

#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>

#include <vector>

namespace Orvex {

// The face of AdvancedSurfaceOp::FillHole. What it tries is added to the report. Each description
// begins with `what`.
TopoDS_Face FilledHole(const std::string& what, const TopoDS_Wire& wire,
                       const std::vector<FillHoleEdgeConstraint>& constraints,
                       SurfaceContinuityLevel level, OperationReport& report);

} // namespace Orvex
