// Picking on triangles by the plainest means: every triangle and every leaf is looked at. What the
// library's trees give is compared with this.
#pragma once

#include "picking/OrvexKDTree.h"

#include <gp_Vec.hxx>

#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <vector>

namespace OrvexTest {

using PickTriangles = std::vector<OrvexTriangleData>;
using PickPlaces = std::vector<std::size_t>;

inline OrvexTriangleData PickTriangle(const gp_Pnt& a, const gp_Pnt& b, const gp_Pnt& c)
{
  OrvexTriangleData triangle{a, b, c, {}, {}};
  for (const gp_Pnt& corner : {a, b, c})
    triangle.box.Add(corner);
  return triangle;
}

inline std::array<double, 6> LimitsOf(const Bnd_Box& box)
{
  std::array<double, 6> limits{};
  box.Get(limits[0], limits[1], limits[2], limits[3], limits[4], limits[5]);
  return limits;
}

inline Bnd_Box BoxOf(const PickTriangles& triangles, const PickPlaces& places)
{
  Bnd_Box box;
  for (const std::size_t place : places)
    box.Add(triangles[place].box);
  return box;
}

// The leaves that the triangles at these places are sorted into.
inline void PlainLeaves(const PickTriangles& triangles, const PickPlaces& places, int depth,
                        std::vector<PickPlaces>& leaves)
{
  const std::array<double, 6> box = LimitsOf(BoxOf(triangles, places));
  const double dx = box[3] - box[0], dy = box[4] - box[1], dz = box[5] - box[2];
  const std::size_t axis = dy > dx && dy > dz ? 1 : (dz > dx && dz > dy ? 2 : 0);
  const double value = (box[axis] + box[axis + 3]) * 0.5;
  PickPlaces left, right;
  for (const std::size_t place : places) {
    const std::array<double, 6> own = LimitsOf(triangles[place].box);
    ((own[axis] + own[axis + 3]) * 0.5 <= value ? left : right).push_back(place);
  }
  if (places.size() < 33 || depth >= 20 || left.empty() || right.empty())
    return leaves.push_back(places);
  PlainLeaves(triangles, left, depth + 1, leaves);
  PlainLeaves(triangles, right, depth + 1, leaves);
}

inline std::vector<PickPlaces> PlainLeaves(const PickTriangles& triangles)
{
  PickPlaces all(triangles.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  std::vector<PickPlaces> leaves;
  if (!all.empty())
    PlainLeaves(triangles, all, 0, leaves);
  return leaves;
}

inline bool RayMeets(const Bnd_Box& box, const gp_Pnt& origin, const gp_Dir& direction)
{
  const std::array<double, 6> limits = LimitsOf(box);
  double from = -DBL_MAX, to = DBL_MAX;
  for (int i = 0; i < 3; ++i) {
    const double o = origin.Coord(i + 1), d = direction.Coord(i + 1);
    const double low = limits[static_cast<std::size_t>(i)];
    const double high = limits[static_cast<std::size_t>(i) + 3];
    if (std::abs(d) < 1e-10) {
      if (o < low || o > high)
        return false;
      continue;
    }
    const double t1 = (low - o) / d, t2 = (high - o) / d;
    from = std::max(from, d < 0 ? t2 : t1);
    to = std::min(to, d < 0 ? t1 : t2);
    if (from > to)
      return false;
  }
  return to >= 0;
}

inline std::optional<gp_Pnt> RayStrikes(const OrvexTriangleData& triangle, const gp_Pnt& origin,
                                        const gp_Dir& direction)
{
  const gp_Vec e1(triangle.A, triangle.B), e2(triangle.A, triangle.C);
  const gp_Vec n = e1.Crossed(e2);
  if (n.Magnitude() * 0.5 < 1e-7)
    return {};
  const gp_Vec m = n / n.Magnitude();
  const gp_Vec o(origin.XYZ()), d(direction), a(triangle.A.XYZ());
  const double slope = d.Dot(m);
  if (std::abs(slope) < 1e-7)
    return {};
  const double t = -(o.Dot(m) - a.Dot(m)) / slope;
  if (t < 1e-7)
    return {};
  const gp_Pnt point = origin.Translated(d * t);
  const gp_Vec w(triangle.A, point);
  const double d00 = e1.Dot(e1), d01 = e1.Dot(e2), d11 = e2.Dot(e2), d20 = w.Dot(e1),
               d21 = w.Dot(e2), det = d00 * d11 - d01 * d01;
  if (std::abs(det) < 1e-10)
    return {};
  const double s1 = (d11 * d20 - d01 * d21) / det, s2 = (d00 * d21 - d01 * d20) / det;
  if (s1 < -1e-7 || s2 < -1e-7 || s1 + s2 > 1.0000001)
    return {};
  return point;
}

struct PlainHit
{
  std::size_t place;
  gp_Pnt point;
  double distance;
};

// The leaves' boxes, and a pick that goes through all of their triangles.
class PlainPick
{
public:
  explicit PlainPick(const PickTriangles& pickedTriangles)
      : triangles(pickedTriangles), leaves(PlainLeaves(pickedTriangles))
  {
    for (const PickPlaces& leaf : leaves)
      boxes.push_back(BoxOf(triangles, leaf));
  }

  PickPlaces Candidates(const gp_Pnt& origin, const gp_Dir& direction) const
  {
    PickPlaces candidates;
    for (std::size_t i = 0; i < leaves.size(); ++i)
      if (RayMeets(boxes[i], origin, direction))
        candidates.insert(candidates.end(), leaves[i].begin(), leaves[i].end());
    return candidates;
  }

  std::optional<PlainHit> Nearest(const gp_Pnt& origin, const gp_Dir& direction) const
  {
    std::optional<PlainHit> best;
    for (const std::size_t place : Candidates(origin, direction))
      if (const auto point = RayStrikes(triangles[place], origin, direction))
        if (const double distance = origin.Distance(*point); !best || distance < best->distance)
          best = PlainHit{place, *point, distance};
    return best;
  }

private:
  const PickTriangles& triangles;
  std::vector<PickPlaces> leaves;
  std::vector<Bnd_Box> boxes;
};

} // namespace OrvexTest
