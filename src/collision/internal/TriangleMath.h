// Segments and triangles: distances, and whether they meet.
//
// Source: C. Ericson, Real-Time Collision Detection (2005), chapter 5, for the closest points;
// T. Möller and B. Trumbore (1997) for the segment through a triangle.
#pragma once

#include "kernel/internal/BoxLimits.h"

#include <gp_XYZ.hxx>

#include <array>

namespace Orvex {

using TriangleCorners = std::array<gp_XYZ, 3>;

BoxLimits BoxOf(const TriangleCorners& triangle);

double SquaredSegmentDistance(const gp_XYZ& p1, const gp_XYZ& q1, const gp_XYZ& p2,
                              const gp_XYZ& q2);

double SquaredPointTriangleDistance(const gp_XYZ& point, const TriangleCorners& triangle);

// Over the edges of both, and the corners of each against the other.
// Caveat: exact for triangles that are apart; two that pierce each other with no edge and no corner
//   near the other's do not measure 0.
double SquaredTriangleDistance(const TriangleCorners& p, const TriangleCorners& q);

// The tolerance is added to the boxes in model units, and to barycentric coordinates as it is.
// Coplanar triangles meet only where a first corner of one lies in the other.
bool TrianglesMeet(const TriangleCorners& p, const TriangleCorners& q, double tolerance);

} // namespace Orvex
