// Modelling features that could have produced a read model, inferred from counts alone.
//
// Four kinds of candidates, in this order: for each face the kind of its surface; for each region
// of adjacent faces of one kind the region; for each shell its class; for each solid what it could
// be (a box, a sweep, a revolve, a loft, a boolean, ...), as a rule several with different
// confidence. Within a kind they follow the order of the summary.
//
// Guarantees: a pure function of the summary, safe on any number of threads. An id that a record
// names and the summary does not hold counts as absent.
//
// Caveat: no geometry is looked at. A block with one rounded edge passes for a cylinder, and any
// six planes in one shell pass for a box: whoever rebuilds from a candidate must compare the
// result.
//
// Cost: linear in the records, with a logarithm where ids are not the positions of their records.
#pragma once

#include "step/replay/ReplayFeatureCandidate.h"

namespace Orvex {

class ORVEX_API StepFeatureRecognizer
{
public:
  std::vector<ReplayFeatureCandidate>
  RecognizeSummaryCandidates(const ReplayIRSummary& summary) const;
};

} // namespace Orvex
