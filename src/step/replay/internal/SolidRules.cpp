#include "step/replay/internal/SolidRules.h"

#include <algorithm>

namespace Orvex {

namespace {

using Counts = SolidCounts;

// All faces but one are planes, and none has a hole.
bool ClosesWithPlanes(const Counts& n)
{
  return n.planes + 1 == n.faces && n.multiBound == 0;
}

bool IsOnlyFace(const Counts& n)
{
  return n.faces == 1 && n.multiBound == 0;
}

bool IsTurned(const Counts& n)
{
  return n.turned >= std::max<std::int64_t>(2, n.faces / 2);
}

// Freeform faces between planes.
bool IsLofted(const Counts& n)
{
  return n.freeform >= 2 && n.planes >= 2 && n.extruded == 0;
}

bool IsBlended(const Counts& n)
{
  return n.freeform >= std::max<std::int64_t>(3, n.faces / 2) && n.kinds >= 2;
}

bool IsMixed(const Counts& n)
{
  return n.kinds >= 3 && n.freeform >= 1 && n.analytic >= 1;
}

bool IsFused(const Counts& n)
{
  return n.multiBound == 0 && n.freeform == 0 && n.extruded == 0 && n.planes >= 4 &&
         n.cylinders >= 1 && n.faces >= 7;
}

bool HasFewPlanes(const Counts& n)
{
  return n.planes < 2;
}

bool HasPlanes(const Counts& n)
{
  return n.planes > 0;
}

bool HasOneShell(const Counts& n)
{
  return n.shells == 1;
}

// clang-format off
constexpr SolidRule kRows[] = {
  {"primitive_box_solid_candidate",      [](const Counts& n) { return n.planes == n.faces && n.faces == 6 && n.multiBound == 0 && n.shells == 1; }, 0.99},
  {"primitive_cylinder_solid_candidate", [](const Counts& n) { return n.cylinders == 1 && n.planes >= 2 && ClosesWithPlanes(n); },                  0.99},
  {"primitive_cone_solid_candidate",     [](const Counts& n) { return n.cones == 1 && n.planes >= 1 && ClosesWithPlanes(n); },                      0.99},
  {"primitive_sphere_solid_candidate",   [](const Counts& n) { return n.spheres == 1 && IsOnlyFace(n); },                                           0.99},
  {"primitive_torus_solid_candidate",    [](const Counts& n) { return n.tori == 1 && IsOnlyFace(n); },                                              0.99},
  {"sweep_like_solid_candidate",         [](const Counts& n) { return n.extruded > 0; },                                                            0.86, HasFewPlanes, 0.78},
  {"prismatic_sweep_solid_candidate",    [](const Counts& n) { return n.extruded > 0 && n.planes >= 2 && n.freeform == 0; },                        0.9},
  {"revolve_like_solid_candidate",       IsTurned,                                                                                                  0.84, HasPlanes, 0.78},
  {"revolved_body_solid_candidate",      [](const Counts& n) { return IsTurned(n) && n.freeform == 0; },                                            0.87},
  {"loft_like_solid_candidate",          IsLofted,                                                                                                  0.76},
  {"multi_section_loft_solid_candidate", IsLofted,                                                                                                  0.82},
  {"freeform_blend_solid_candidate",     [](const Counts& n) { return IsBlended(n) && !IsLofted(n); },                                              0.72},
  {"trimmed_freeform_solid_candidate",   [](const Counts& n) { return n.freeform >= 2 && n.pcurves >= std::max<std::int64_t>(8, 2 * n.faces); },    0.81},
  {"cut_sweep_solid_candidate",          [](const Counts& n) { return n.multiBound >= 1 && n.extruded > 0; },                                       0.8},
  {"trimmed_loft_solid_candidate",       [](const Counts& n) { return n.multiBound >= 1 && n.freeform >= 2; },                                      0.79},
  {"boolean_like_solid_candidate",       [](const Counts& n) { return n.shells > 1 || IsMixed(n); },                                                0.84, HasOneShell, 0.74},
  {"boolean_fuse_solid_candidate",       IsFused,                                                                                                   0.72},
  {"boolean_cut_solid_candidate",        [](const Counts& n) { return n.multiBound >= 2 && n.kinds >= 2; },                                         0.86, HasOneShell, 0.77},
};
// clang-format on

} // namespace

const std::span<const SolidRule> kSolidRules = kRows;

} // namespace Orvex
