// Sections that the kernel's loft can bear.
#pragma once

#include "operations/AdvancedLoftOptions.h"

#include <TopoDS_Wire.hxx>

#include <vector>

namespace Orvex {

// Looks for sections and options on which the kernel crashes or never comes to an end. Where
// sections are made compatible: those smaller than its tolerance, those with an edge that is passed
// twice, as the border of a cylinder has it, and among sections with different numbers of edges the
// loops that cross themselves or lie in no plane. Otherwise: sections with different numbers of
// edges that are not ruled; the kernel never makes a loft of them. Smoothing without continuity,
// unless ruled: the kernel reduces nearly straight pieces to degree 1 then, and reads their second
// derivatives from outside its memory. Errors: AttemptFailure if there is one.
void CheckSections(const std::vector<TopoDS_Wire>& sections, const AdvancedLoftOptions& options);

} // namespace Orvex
