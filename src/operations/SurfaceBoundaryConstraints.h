// Levels for single boundaries of a fill and of a surface network.
#pragma once

struct FillHoleEdgeConstraint
{
  // Number of the edge in the wire, from 1.
  int index = 1;
  // 0 position, 1 tangent, 2 curvature.
  int continuity = 1;
  // Kept for callers; no operation reads it.
  double weight = 1.0;
};

struct SurfaceNetworkBoundaryConstraint
{
  // Number of the wire in the network, from 1.
  int index = 1;
  // 0 position, 1 tangent, 2 curvature.
  int continuity = 1;
  // Kept for callers; no operation reads it.
  double weight = 1.0;
};
