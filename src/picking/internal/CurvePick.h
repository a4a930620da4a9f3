// The place of an edge that is nearest to a line, by a scan of its curve and a golden-section
// search round the nearest sample.
#pragma once

#include <TopoDS_Edge.hxx>
#include <gp_Lin.hxx>
#include <gp_Pnt.hxx>

#include <optional>

namespace Orvex {

struct CurvePlace
{
  double parameter;
  gp_Pnt point;
  // From the line.
  double distance;
};

// From 128 to 4096 samples: a 2048th of the length, or half the tolerance if that is longer, lies
// between two.
int CountScanSteps(double length, double tolerance);

// Returns: none for an edge without a curve.
std::optional<CurvePlace> NearestPlace(const TopoDS_Edge& edge, const gp_Lin& ray,
                                       double tolerance);

} // namespace Orvex
