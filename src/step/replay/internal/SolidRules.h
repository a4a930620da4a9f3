// What a solid could be, by the counts of its faces.
#pragma once

#include <cstdint>
#include <span>

namespace Orvex {

struct SolidCounts
{
  std::int64_t faces = 0;
  std::int64_t planes = 0;
  // Surfaces of extrusion.
  std::int64_t extruded = 0;
  // Cylinders, cones, spheres, tori and surfaces of revolution.
  std::int64_t turned = 0;
  // Bezier and B-spline surfaces, and all others.
  std::int64_t freeform = 0;
  std::int64_t analytic = 0;
  std::int64_t cylinders = 0;
  std::int64_t cones = 0;
  std::int64_t spheres = 0;
  std::int64_t tori = 0;
  // Distinct kinds of surfaces.
  std::int64_t kinds = 0;
  // Faces with more than one bound.
  std::int64_t multiBound = 0;
  // Coedges with a p-curve.
  std::int64_t pcurves = 0;
  std::int64_t shells = 0;
};

using SolidCondition = bool (*)(const SolidCounts&);

struct SolidRule
{
  const char* kind;
  SolidCondition holds;
  double confidence;
  // Where this holds, `lowered` takes the place of the confidence.
  SolidCondition isDoubtful = nullptr;
  double lowered = 0;

  double Confidence(const SolidCounts& counts) const
  {
    return isDoubtful != nullptr && isDoubtful(counts) ? lowered : confidence;
  }
};

// In the order in which their candidates come; each holds by itself.
extern const std::span<const SolidRule> kSolidRules;

} // namespace Orvex
