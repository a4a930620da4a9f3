// Guides of a loft, and the sections that they move.
#pragma once

#include "operations/AdvancedLoftOptions.h"

#include <TopoDS_Shape.hxx>
#include <TopoDS_Wire.hxx>

#include <vector>

namespace Orvex {

// Whether a guide is a curve.
bool IsValidGuide(const TopoDS_Shape& guide);

int CountValidGuides(const std::vector<TopoDS_Shape>& guides);

// The wire of a section moved to what the guides have at t, from 0 to 1; as it is if they have
// nothing there.
// Errors: AttemptFailure if it can't be moved; Standard_Failure passes.
TopoDS_Wire MovedByGuides(const TopoDS_Wire& wire, const std::vector<TopoDS_Shape>& guides,
                          double t, const AdvancedLoftOptions& options);

} // namespace Orvex
