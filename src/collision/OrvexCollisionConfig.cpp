#include "collision/OrvexCollisionConfig.h"

namespace {

struct PresetRow
{
  int preset;
  int spaceIndexKind;
  int narrowPhaseMode;
  int exactMode;
  bool reservedFlagB;
  bool computeOverlapVolume;
  bool keepOverlapShape;
  bool serial;
  double timeLimitSeconds;
};

constexpr PresetRow kFast = {0, 1, 0, 0, false, false, false, false, 0.0};
constexpr PresetRow kBalanced = {1, 1, 5, 1, false, true, false, false, 0.0};
constexpr PresetRow kStrict = {2, 2, 5, 1, true, true, false, true, 240.0};
constexpr PresetRow kAccurate = {3, 2, 0, 1, true, true, true, false, 0.0};
constexpr PresetRow kVisualization = {3, 1, 0, 1, false, true, true, false, 0.0};

OrvexCollisionConfig ConfigOf(const PresetRow& row)
{
  OrvexCollisionConfig config;
  config.preset = row.preset;
  config.spaceIndexKind = row.spaceIndexKind;
  config.narrowPhaseMode = row.narrowPhaseMode;
  config.exactMode = row.exactMode;
  config.reservedFlagB = row.reservedFlagB;
  config.computeOverlapVolume = row.computeOverlapVolume;
  config.keepOverlapShape = row.keepOverlapShape;
  config.serial = row.serial;
  config.timeLimitSeconds = row.timeLimitSeconds;
  return config;
}

} // namespace

OrvexCollisionConfig OrvexCollisionConfig::createFastConfig()
{
  return ConfigOf(kFast);
}

OrvexCollisionConfig OrvexCollisionConfig::createBalancedConfig()
{
  return ConfigOf(kBalanced);
}

OrvexCollisionConfig OrvexCollisionConfig::createStrictConfig()
{
  return ConfigOf(kStrict);
}

OrvexCollisionConfig OrvexCollisionConfig::createAccurateConfig()
{
  return ConfigOf(kAccurate);
}

OrvexCollisionConfig OrvexCollisionConfig::createVisualizationConfig()
{
  return ConfigOf(kVisualization);
}
