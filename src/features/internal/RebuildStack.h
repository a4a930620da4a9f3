// The features whose rebuild functions are running on this thread, by id.
#pragma once

#include <optional>

namespace Orvex {

class RebuildScope
{
public:
  explicit RebuildScope(int featureId);
  ~RebuildScope();
  RebuildScope(const RebuildScope&) = delete;
  RebuildScope& operator=(const RebuildScope&) = delete;

  // The innermost.
  static std::optional<int> Current();
};

} // namespace Orvex
