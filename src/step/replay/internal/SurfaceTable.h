// What recognition makes of each kind of surface.
#pragma once

#include "step/replay/ReplayKinds.h"

namespace Orvex {

// What a surface can be to a solid.
enum class SurfaceRole {
  Plane,    // closes it off
  Turned,   // carries a revolve
  Extruded, // carries a sweep
  Freeform, // carries a loft or a blend
  Other
};

struct SurfaceRow
{
  ReplaySurfaceKind kind;
  SurfaceRole role;
  // The candidate of one face.
  const char* faceCandidate;
  double faceConfidence;
  // The candidate of several faces that touch.
  const char* regionCandidate;
  double regionConfidence;
};

// clang-format off
inline constexpr SurfaceRow kSurfaceRows[] = {
  {kPlaneSurface,      SurfaceRole::Plane,    "analytic_plane_face",        1.0,  "planar_region_candidate",      0.9},
  {kCylinderSurface,   SurfaceRole::Turned,   "analytic_cylinder_face",     1.0,  "cylindrical_region_candidate", 0.9},
  {kConeSurface,       SurfaceRole::Turned,   "analytic_cone_face",         1.0,  "conical_region_candidate",     0.9},
  {kSphereSurface,     SurfaceRole::Turned,   "analytic_sphere_face",       1.0,  "spherical_region_candidate",   0.9},
  {kTorusSurface,      SurfaceRole::Turned,   "analytic_torus_face",        1.0,  "toroidal_region_candidate",    0.9},
  {kBezierSurface,     SurfaceRole::Freeform, "bezier_face_candidate",      0.6,  "bezier_region_candidate",      0.65},
  {kBSplineSurface,    SurfaceRole::Freeform, "freeform_face_candidate",    0.6,  "freeform_region_candidate",    0.65},
  {kRevolutionSurface, SurfaceRole::Turned,   "revolve_region_candidate",   0.85, "revolve_region_candidate",     0.82},
  {kExtrusionSurface,  SurfaceRole::Extruded, "extrusion_region_candidate", 0.85, "extrusion_region_candidate",   0.82},
  {kOffsetSurface,     SurfaceRole::Other,    "offset_region_candidate",    0.75, "offset_region_candidate",      0.75},
};
// clang-format on

// Null for other and unknown surfaces, which are candidates for nothing.
inline const SurfaceRow* RowOf(ReplaySurfaceKind kind)
{
  for (const SurfaceRow& row : kSurfaceRows)
    if (row.kind == kind)
      return &row;
  return nullptr;
}

inline SurfaceRole RoleOf(ReplaySurfaceKind kind)
{
  const SurfaceRow* row = RowOf(kind);
  return row != nullptr ? row->role : SurfaceRole::Other;
}

} // namespace Orvex
