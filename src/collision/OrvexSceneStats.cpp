#include "collision/OrvexSceneStats.h"

#include "collision/OrvexModelPart.h"

#include <algorithm>
#include <cmath>

namespace {

double DiagonalOf(const Bnd_Box& box)
{
  return box.IsVoid() ? 0 : box.CornerMin().Distance(box.CornerMax());
}

} // namespace

OrvexSceneStats OrvexSceneStats::fromParts(const std::vector<OrvexModelPart>& parts)
{
  OrvexSceneStats stats;
  stats.partCount = parts.size();
  Bnd_Box box;
  std::vector<double> volumes;
  for (const OrvexModelPart& part : parts) {
    if (!part.isValid())
      continue;
    box.Add(part.box);
    volumes.push_back(std::abs(part.volume));
  }
  stats.sceneDiagonal = DiagonalOf(box);
  if (!volumes.empty()) {
    std::sort(volumes.begin(), volumes.end());
    stats.largestVolume = volumes.back();
    stats.medianVolume = volumes[volumes.size() / 2];
  }
  return stats;
}

void OrvexSceneStats::merge(const OrvexSceneStats& other)
{
  partCount += other.partCount;
  for (double OrvexSceneStats::*measure :
       {&OrvexSceneStats::sceneDiagonal, &OrvexSceneStats::largestVolume,
        &OrvexSceneStats::medianVolume, &OrvexSceneStats::measureA, &OrvexSceneStats::measureB,
        &OrvexSceneStats::measureC, &OrvexSceneStats::measureD})
    this->*measure = std::max(this->*measure, other.*measure);
  flag = flag || other.flag;
}
