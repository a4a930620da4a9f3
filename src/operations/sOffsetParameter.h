// How OrvexGeometryOp::OffsetObject offsets a shape.
#pragma once

// Has no defaults: the caller sets all six.
struct sOffsetParameter
{
  // Along the outward normals of the faces, in model units; negative is inward.
  double offset;
  // BRepOffset_Mode: BRepOffset_Skin, BRepOffset_Pipe or BRepOffset_RectoVerso. The kernel builds
  // the same for all three.
  int mode;
  // GeomAbs_JoinType: what comes between the offset faces on both sides of an edge. GeomAbs_Arc
  // rounds, GeomAbs_Intersection extends the faces; with GeomAbs_Tangent the kernel builds nothing.
  int join;
  // Within which the kernel takes points for the same, in model units.
  double tolerance;
  // Intersect all offset faces, also those of faces that are no neighbours.
  bool intersection;
  // Take out what crosses itself.
  bool selfIntersection;
};
