// The surface of a blend without constraints.
#pragma once

#include <Geom_BSplineSurface.hxx>
#include <TopoDS_Edge.hxx>

namespace Orvex {

// Runs from the curve of the first edge, at the start of V, to that of the second, in their own
// directions, and bulges between them against the normal by up to a sixtieth of their distance, of
// one below 1 as if it were 1. The factor says how far: the most at 0, the least at 2, and 1 stands
// for what is not finite. Errors: AttemptFailure if there is no such surface; Standard_Failure
// passes.
Handle(Geom_BSplineSurface)
  BlendBetween(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2, double blendFactor);

} // namespace Orvex
