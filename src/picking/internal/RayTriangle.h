// Whether a ray strikes a triangle, from either side.
#pragma once

#include <gp_XYZ.hxx>

#include <array>
#include <cmath>
#include <optional>

namespace Orvex {

using TriangleXYZ = std::array<gp_XYZ, 3>;

constexpr double kMinStruckArea = 1e-7;
constexpr double kMinStruckDeterminant = 1e-10;
// Barycentric: so far outside of its border a triangle is still struck.
constexpr double kStruckMargin = 1e-7;

// Two sides of a triangle and their products, which no ray changes.
struct TriangleSides
{
  explicit TriangleSides(const TriangleXYZ& corners)
      : e1(corners[1] - corners[0]), e2(corners[2] - corners[0]), normal(e1.Crossed(e2)),
        d00(e1.Dot(e1)), d01(e1.Dot(e2)), d11(e2.Dot(e2)), determinant(d00 * d11 - d01 * d01)
  {}

  // False for slivers and triangles that are too small, which no ray strikes.
  bool CanBeStruck() const
  {
    return !(normal.Modulus() * 0.5 < kMinStruckArea) &&
           !(std::abs(determinant) < kMinStruckDeterminant);
  }

  gp_XYZ e1, e2, normal;
  double d00, d01, d11, determinant;
};

// The point of the plane in barycentric terms of `sides`, `w` being the vector to it from the first
// corner.
inline bool IsInTriangle(const gp_XYZ& w, const TriangleSides& sides)
{
  const double d20 = w.Dot(sides.e1), d21 = w.Dot(sides.e2);
  const double s1 = (sides.d11 * d20 - sides.d01 * d21) / sides.determinant;
  const double s2 = (sides.d00 * d21 - sides.d01 * d20) / sides.determinant;
  return !(s1 < -kStruckMargin || s2 < -kStruckMargin || s1 + s2 > 1.0000001);
}

// Where the ray from `origin` along the unit vector `direction` strikes the triangle. A ray along
// the plane, or one that starts on the triangle, doesn't.
inline std::optional<gp_XYZ> RayTriangleIntersect(const gp_XYZ& origin, const gp_XYZ& direction,
                                                  const TriangleXYZ& corners)
{
  static constexpr double kMinSlope = 1e-7, kMinDistance = 1e-7;
  const TriangleSides sides(corners);
  if (!sides.CanBeStruck())
    return std::nullopt;
  const gp_XYZ m = sides.normal / sides.normal.Modulus();
  const double slope = direction.Dot(m);
  if (std::abs(slope) < kMinSlope)
    return std::nullopt;
  const double t = -(origin.Dot(m) - corners[0].Dot(m)) / slope;
  if (t < kMinDistance)
    return std::nullopt;
  const gp_XYZ point = origin + direction * t;
  if (!IsInTriangle(point - corners[0], sides))
    return std::nullopt;
  return point;
}

} // namespace Orvex
