// What a model check found.
#pragma once

#include "analysis/ModelCheckIssue.h"

#include <cstdint>
#include <vector>

struct ModelCheckReport
{
  // The check ran to its end.
  bool success = false;
  // Shapes in the list that was checked, null ones included.
  std::int32_t shapeCount = 0;
  std::int32_t issueCount = 0;
  std::int32_t criticalCount = 0;
  std::int32_t warningCount = 0;
  // Of any other severity.
  std::int32_t infoCount = 0;
  // In the order of discovery.
  std::vector<ModelCheckIssue> issues;
};
