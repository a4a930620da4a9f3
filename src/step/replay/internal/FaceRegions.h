// Faces of one kind of surface that hang together by their edges.
#pragma once

#include "step/replay/internal/SummaryFacts.h"

namespace Orvex {

// Positions of faces, in the order in which each region grew from its first face; regions by their
// first face. Faces that stand alone give none, and neither do surfaces that are candidates for
// nothing.
//
// Cost: linear in the uses of edges, however many faces share one: a region walks over the faces of
// an edge once, and an edge touches no more regions than there are kinds.
std::vector<std::vector<std::size_t>> FaceRegions(const std::vector<FaceFacts>& faces);

} // namespace Orvex
