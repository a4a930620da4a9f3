#include "collision/OrvexSceneStats.h"

#include <algorithm>

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
