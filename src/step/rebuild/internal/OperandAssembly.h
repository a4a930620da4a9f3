// Puts the operands of a body together again.
#pragma once

#include "step/rebuild/internal/OperandPartition.h"

#include <vector>

namespace Orvex {

struct OperandShape
{
  TopoDS_Shape shape;
  bool adds = true;
  int depth = 0;
};

// Depth by depth, first what adds, then what cuts. `fuzziness` is the distance up to which the
// kernel takes places for the same, 0 for its own tolerances alone.
// Returns: null where a boolean fails.
// Errors: the kernel's exceptions.
TopoDS_Shape PutTogether(const std::vector<OperandShape>& operands, double fuzziness);

} // namespace Orvex
