#include "step/replay/internal/FaceRegions.h"

#include "step/replay/internal/SurfaceTable.h"

namespace Orvex {

namespace {

constexpr std::size_t kNone = IdIndex::kNone;

// The uses of edges by faces, face after face; uses of one edge are chained behind its first one.
class EdgeUses
{
public:
  explicit EdgeUses(const std::vector<FaceFacts>& faces)
  {
    std::vector<ReplayId> edges;
    begin.reserve(faces.size() + 1);
    for (std::size_t face = 0; face < faces.size(); ++face) {
      begin.push_back(edges.size());
      const std::vector<ReplayId>& own = faces[face].record->edgeIds;
      edges.insert(edges.end(), own.begin(), own.end());
      faceOf.resize(edges.size(), face);
    }
    begin.push_back(edges.size());
    Chain(edges);
  }

  // The uses of a face are those from Begin(face) up to, not including, Begin(face + 1).
  std::size_t Begin(std::size_t face) const
  {
    return begin[face];
  }
  std::size_t First(std::size_t use) const
  {
    return first[use];
  }
  std::size_t Next(std::size_t use) const
  {
    return next[use];
  }
  std::size_t Face(std::size_t use) const
  {
    return faceOf[use];
  }
  std::size_t Count() const
  {
    return faceOf.size();
  }

private:
  void Chain(const std::vector<ReplayId>& edges)
  {
    const IdIndex index(edges);
    first.resize(edges.size());
    next.assign(edges.size(), kNone);
    for (std::size_t use = 0; use < edges.size(); ++use) {
      first[use] = index.Position(edges[use]);
      if (first[use] != use)
        next[use] = std::exchange(next[first[use]], use);
    }
  }

  std::vector<std::size_t> begin, faceOf, first, next;
};

class Growth
{
public:
  explicit Growth(const std::vector<FaceFacts>& faces)
      : uses(faces), visited(faces.size(), false), walkedFor(uses.Count(), kNone)
  {
    rows.reserve(faces.size());
    for (const FaceFacts& face : faces)
      rows.push_back(face.surface != nullptr ? RowOf(face.surface->kind) : nullptr);
  }

  // Empty when the seed belongs to an earlier region or to none.
  std::vector<std::size_t> From(std::size_t seed)
  {
    if (visited[seed] || rows[seed] == nullptr)
      return {};
    visited[seed] = true;
    std::vector<std::size_t> region{seed};
    for (std::size_t i = 0; i < region.size(); ++i) {
      const std::size_t end = uses.Begin(region[i] + 1);
      for (std::size_t use = uses.Begin(region[i]); use < end; ++use)
        Join(region, uses.First(use));
    }
    return region;
  }

private:
  void Join(std::vector<std::size_t>& region, std::size_t firstUse)
  {
    const std::size_t seed = region.front();
    if (std::exchange(walkedFor[firstUse], seed) == seed)
      return;
    for (std::size_t use = firstUse; use != kNone; use = uses.Next(use)) {
      const std::size_t face = uses.Face(use);
      if (visited[face] || rows[face] != rows[seed])
        continue;
      visited[face] = true;
      region.push_back(face);
    }
  }

  EdgeUses uses;
  std::vector<const SurfaceRow*> rows;
  std::vector<bool> visited;
  // By the first use of an edge: the seed of the region that walked over it last.
  std::vector<std::size_t> walkedFor;
};

} // namespace

std::vector<std::vector<std::size_t>> FaceRegions(const std::vector<FaceFacts>& faces)
{
  Growth growth(faces);
  std::vector<std::vector<std::size_t>> regions;
  for (std::size_t seed = 0; seed < faces.size(); ++seed)
    if (std::vector<std::size_t> region = growth.From(seed); region.size() > 1)
      regions.push_back(std::move(region));
  return regions;
}

} // namespace Orvex
