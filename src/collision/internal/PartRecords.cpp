#include "collision/internal/PartRecords.h"

#include "collision/internal/ParallelLoop.h"

namespace Orvex {

std::vector<OrvexModelPart> PartsOf(const std::vector<TopoDS_Shape>& shapes)
{
  std::vector<OrvexModelPart> parts(shapes.size());
  ForEachInParallel(static_cast<int>(shapes.size()), [&](int i) {
    const auto at = static_cast<std::size_t>(i);
    parts[at] =
      OrvexModelPart::fromShape(shapes[at], std::string("Part_").append(std::to_string(i)));
  });
  return parts;
}

} // namespace Orvex
