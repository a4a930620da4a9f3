// Kinds of the kernel's curves and surfaces in the vocabulary of replay.
#pragma once

#include "step/replay/ReplayKinds.h"

#include <GeomAbs_CurveType.hxx>
#include <GeomAbs_SurfaceType.hxx>

namespace Orvex {

ReplayCurveKind KindOf(GeomAbs_CurveType type);
ReplaySurfaceKind KindOf(GeomAbs_SurfaceType type);

// The text that the payload of a surface carries, which is not ToString for extrusions and offset
// surfaces.
const char* PayloadTextOf(GeomAbs_SurfaceType type);

} // namespace Orvex
