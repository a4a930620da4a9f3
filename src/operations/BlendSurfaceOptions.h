// What a blend surface lies between, and its shape.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>

struct BlendBoundaryConstraint
{
  TopoDS_Edge edge;
  // The face that the edge lies on; may be null.
  TopoDS_Face supportFace;
  // Wanted level against the support: 0 position, 1 tangent, 2 curvature. Others than 0 need one.
  int continuity = 0;
};

struct BlendSurfaceBuildOptions
{
  BlendBoundaryConstraint first;
  BlendBoundaryConstraint second;
  // Of the blend without constraints: 0 for the deepest, 2 for the flattest; 1 if it is not finite.
  double blendFactor = 1.0;
  // Kept for callers; no operation reads it.
  int flags = 1;
};

struct BlendSurfaceOptions
{
  // Wanted level on both sides, clamped to 0..2.
  int continuity = 0;
  double blendFactor = 1.0;
  TopoDS_Face firstSupport;
  TopoDS_Face secondSupport;
};
