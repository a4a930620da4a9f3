#include "step/replay/ReplayKinds.h"

#include <cstddef>

namespace Orvex {

namespace {

// By value.
constexpr const char* kCurveTexts[] = {
  "unknown_curve", "line",         "circle",         "ellipse",      "hyperbola",
  "parabola",      "bezier_curve", "b_spline_curve", "offset_curve", "other_curve"};

constexpr const char* kSurfaceTexts[] = {"unknown_surface",
                                         "plane",
                                         "cylinder_surface",
                                         "cone_surface",
                                         "sphere",
                                         "torus_surface",
                                         "bezier_surface",
                                         "b_spline_surface",
                                         "surface_of_revolution",
                                         "surface_of_linear_extrusion",
                                         "offset_surface",
                                         "other_surface"};

template <std::size_t Count>
const char* TextAt(const char* const (&texts)[Count], int value)
{
  const auto index = static_cast<std::size_t>(value);
  return texts[index < Count ? index : 0];
}

} // namespace

const char* ToString(ReplayCurveKind kind)
{
  return TextAt(kCurveTexts, kind);
}

const char* ToString(ReplaySurfaceKind kind)
{
  return TextAt(kSurfaceTexts, kind);
}

} // namespace Orvex
