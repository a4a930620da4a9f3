// Why no blend can be made of an input: the first of these that holds.
#pragma once

enum class BlendSurfaceInputStatus : int {
  Valid = 0,
  MissingFirstEdge = 1,
  MissingSecondEdge = 2,
  SameEdge = 3,
  // The ends of the edge lie within 1e-7 of each other, as those of a closed edge, or it has no
  // curve.
  FirstEdgeDegenerate = 4,
  SecondEdgeDegenerate = 5,
  // A level above position is wanted and there is no face to measure it against.
  FirstSupportMissing = 6,
  SecondSupportMissing = 7,
  // The edge has no curve on its support. Any edge has one on a plane.
  FirstEdgeNotOnSupport = 8,
  SecondEdgeNotOnSupport = 9
};
