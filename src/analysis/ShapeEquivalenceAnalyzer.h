// Whether two shapes are the same model for practical purposes, by validity, volume, area, box and
// counts; for judging a rebuilt shape against the one it was rebuilt from.
//
// Caveat: no faces are matched. A mirrored part passes if its box does.
#pragma once

#include "analysis/ShapeEquivalence.h"
#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

class ORVEX_API ShapeEquivalenceAnalyzer
{
public:
  // A null shape counts as invalid, with metrics of 0. Reads the shapes only; safe on any thread
  // while nobody changes them.
  static ShapeEquivalenceReport Compare(const TopoDS_Shape& source, const TopoDS_Shape& candidate,
                                        const ShapeEquivalenceOptions& options);
};
