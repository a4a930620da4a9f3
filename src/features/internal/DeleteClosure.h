// Which labels go when some are deleted: the consumers of what goes, and the operands that only
// dying features used and that are hidden.
#pragma once

#include "features/internal/FeatureRelations.h"

namespace Orvex {

// The seeds in their order, then what follows in order of discovery: in passes over the history,
// each with the consumers first and the operands after them.
// Cost: n log n in the items and inputs that are reached; the shape of an operand is looked up
// once.
std::vector<TDF_Label> CollectDeleteClosure(const FeatureItems& items,
                                            const std::vector<TDF_Label>& seeds);

} // namespace Orvex
