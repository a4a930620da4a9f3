#include "collision/internal/TriangleMath.h"

namespace Orvex {

namespace {

double Clamped(double value)
{
  return std::clamp(value, 0.0, 1.0);
}

struct SegmentParameters
{
  double first, second;
};

// Of the closest points of two segments with directions d1, d2 and r from the second start to the
// first.
SegmentParameters ClosestOnSegments(const gp_XYZ& d1, const gp_XYZ& d2, const gp_XYZ& r)
{
  constexpr double kPoint = 1e-18;
  const double a = d1.Dot(d1), e = d2.Dot(d2), f = d2.Dot(r), c = d1.Dot(r);
  if (a <= kPoint && e <= kPoint)
    return {0, 0};
  if (a <= kPoint)
    return {0, Clamped(f / e)};
  if (e <= kPoint)
    return {Clamped(-c / a), 0};
  const double b = d1.Dot(d2), denominator = a * e - b * b;
  const double s = denominator != 0 ? Clamped((b * f - c * e) / denominator) : 0;
  const double t = (b * s + f) / e;
  if (t < 0)
    return {Clamped(-c / a), 0};
  if (t > 1)
    return {Clamped((b - c) / a), 1};
  return {s, t};
}

gp_XYZ ClosestOnTriangle(const gp_XYZ& p, const TriangleCorners& triangle)
{
  const auto& [a, b, c] = triangle;
  const gp_XYZ ab = b - a, ac = c - a, ap = p - a, bp = p - b, cp = p - c;
  const double d1 = ab.Dot(ap), d2 = ac.Dot(ap);
  if (d1 <= 0 && d2 <= 0)
    return a;
  const double d3 = ab.Dot(bp), d4 = ac.Dot(bp);
  if (d3 >= 0 && d4 <= d3)
    return b;
  const double vc = d1 * d4 - d3 * d2;
  if (vc <= 0 && d1 >= 0 && d3 <= 0)
    return d1 == d3 ? a : a + ab * (d1 / (d1 - d3));
  const double d5 = ab.Dot(cp), d6 = ac.Dot(cp);
  if (d6 >= 0 && d5 <= d6)
    return c;
  const double vb = d5 * d2 - d1 * d6;
  if (vb <= 0 && d2 >= 0 && d6 <= 0)
    return a + ac * (d2 / (d2 - d6));
  const double va = d3 * d6 - d5 * d4;
  if (va <= 0 && d4 - d3 >= 0 && d5 - d6 >= 0)
    return b + (c - b) * ((d4 - d3) / ((d4 - d3) + (d5 - d6)));
  const double sum = va + vb + vc;
  return a + ab * (vb / sum) + ac * (vc / sum);
}

bool SegmentHits(const gp_XYZ& a, const gp_XYZ& b, const TriangleCorners& triangle,
                 double tolerance)
{
  constexpr double kParallel = 1e-12;
  const gp_XYZ direction = b - a;
  const gp_XYZ edge1 = triangle[1] - triangle[0], edge2 = triangle[2] - triangle[0];
  const gp_XYZ h = direction.Crossed(edge2);
  const double determinant = edge1.Dot(h);
  if (std::abs(determinant) < kParallel)
    return false;
  const gp_XYZ s = a - triangle[0];
  const double u = s.Dot(h) / determinant;
  if (u < -tolerance || u > 1 + tolerance)
    return false;
  const gp_XYZ q = s.Crossed(edge1);
  const double v = direction.Dot(q) / determinant;
  if (v < -tolerance || u + v > 1 + tolerance)
    return false;
  const double along = edge2.Dot(q) / determinant;
  return along >= -tolerance && along <= 1 + tolerance;
}

bool ProjectionIsInside(const gp_XYZ& point, const TriangleCorners& triangle, double tolerance)
{
  constexpr double kDegenerate = 1e-15;
  const gp_XYZ e1 = triangle[1] - triangle[0], e2 = triangle[2] - triangle[0];
  const gp_XYZ r = point - triangle[0];
  const double d11 = e1.Dot(e1), d12 = e1.Dot(e2), d22 = e2.Dot(e2);
  const double determinant = d11 * d22 - d12 * d12;
  if (std::abs(determinant) < kDegenerate)
    return false;
  const double r1 = r.Dot(e1), r2 = r.Dot(e2);
  const double v = (d22 * r1 - d12 * r2) / determinant;
  const double w = (d11 * r2 - d12 * r1) / determinant;
  return v >= -tolerance && w >= -tolerance && 1 - v - w >= -tolerance;
}

} // namespace

BoxLimits BoxOf(const TriangleCorners& triangle)
{
  BoxLimits box;
  for (const gp_XYZ& corner : triangle)
    box.Add(corner);
  return box;
}

double SquaredSegmentDistance(const gp_XYZ& p1, const gp_XYZ& q1, const gp_XYZ& p2,
                              const gp_XYZ& q2)
{
  const gp_XYZ d1 = q1 - p1, d2 = q2 - p2, r = p1 - p2;
  const SegmentParameters at = ClosestOnSegments(d1, d2, r);
  return (r + d1 * at.first - d2 * at.second).SquareModulus();
}

double SquaredPointTriangleDistance(const gp_XYZ& point, const TriangleCorners& triangle)
{
  return (point - ClosestOnTriangle(point, triangle)).SquareModulus();
}

double SquaredTriangleDistance(const TriangleCorners& p, const TriangleCorners& q)
{
  double least = BoxLimits::kNone;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j)
      least = std::min(least, SquaredSegmentDistance(p[i], p[(i + 1) % 3], q[j], q[(j + 1) % 3]));
    least = std::min(
      {least, SquaredPointTriangleDistance(p[i], q), SquaredPointTriangleDistance(q[i], p)});
  }
  return least;
}

bool TrianglesMeet(const TriangleCorners& p, const TriangleCorners& q, double tolerance)
{
  if (!MayOverlap(BoxOf(p), BoxOf(q), tolerance))
    return false;
  for (std::size_t i = 0; i < 3; ++i)
    if (SegmentHits(p[i], p[(i + 1) % 3], q, tolerance) ||
        SegmentHits(q[i], q[(i + 1) % 3], p, tolerance))
      return true;
  return ProjectionIsInside(p[0], q, tolerance) || ProjectionIsInside(q[0], p, tolerance);
}

} // namespace Orvex
