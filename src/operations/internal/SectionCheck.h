// Sections that the kernel's loft can bear.
#pragma once

#include <TopoDS_Wire.hxx>

#include <vector>

namespace Orvex {

// Looks for sections on which the kernel crashes or never comes to an end: smaller than its
// tolerance; with an edge that is passed twice, as the border of a cylinder has; with different
// numbers of edges that are not to be made compatible, or are to be and belong to loops that cross
// themselves or lie in no plane.
// Errors: AttemptFailure if there is one.
void CheckSections(const std::vector<TopoDS_Wire>& sections, bool madeCompatible);

} // namespace Orvex
