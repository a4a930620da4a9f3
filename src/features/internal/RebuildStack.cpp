#include "features/internal/RebuildStack.h"

#include <vector>

namespace Orvex {

namespace {

thread_local std::vector<int> rebuildStack;

} // namespace

RebuildScope::RebuildScope(int featureId)
{
  rebuildStack.push_back(featureId);
}

RebuildScope::~RebuildScope()
{
  rebuildStack.pop_back();
}

std::optional<int> RebuildScope::Current()
{
  return rebuildStack.empty() ? std::nullopt : std::optional<int>(rebuildStack.back());
}

} // namespace Orvex
