// How two faces meet at the edge that they share.
#pragma once

struct SurfaceContinuityMetrics
{
  // Whether the faces share no edge, or the difference of curvatures at theirs is a finite number.
  bool valid = false;
  bool sharedEdgeFound = false;
  // Between the surfaces' own normals, whatever the orientation of the faces: about 180 for two
  // that meet smoothly with opposite normals.
  double normalAngleDegrees = 180.0;
  // Between the absolute maximum curvatures, per model unit.
  double curvatureDifference = 1e9;
  // 0 for a crease, 1 for a common tangent plane, 2 for a common curvature as well.
  int level = 0;
};
