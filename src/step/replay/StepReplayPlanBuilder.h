// Plans that rebuild one face, one shell or one solid of a read model.
//
// Every face is built by three steps (its surface, its trim loops, the trimmed face), the faces of
// a shell are sewn, and a solid is then rebuilt as what its features say it is: a primitive, a
// sweep, a loft, a revolve, a boolean, a trimmed freeform body, or just its shells.
//
// Guarantees: pure functions of the records, safe on any number of threads. Steps are numbered from
// 1 without a gap, and depend on earlier steps only. Ids are copied, not checked: a face that the
// summary lacks still gets its steps, a shell of a solid that it lacks gets none.
//
// Cost: linear in the plan and in the candidates. Whoever plans many solids may pass to each the
// candidates that name it in `solidIds`: the others do not change its plan, and neither do, for a
// shell, those that do not name it in `shellIds`.
#pragma once

#include "step/replay/ReplayFeatureCandidate.h"
#include "step/replay/ReplayPlan.h"

namespace Orvex {

class ORVEX_API StepReplayPlanBuilder
{
public:
  // An id that the summary does not hold gives a plan without steps; scope, strategies and hints
  // are filled all the same.
  ReplayPlan BuildFacePlan(const ReplayIRSummary& summary,
                           const std::vector<ReplayFeatureCandidate>& candidates,
                           ReplayId faceId) const;
  ReplayPlan BuildShellPlan(const ReplayIRSummary& summary,
                            const std::vector<ReplayFeatureCandidate>& candidates,
                            ReplayId shellId) const;
  ReplayPlan BuildSolidPlan(const ReplayIRSummary& summary,
                            const std::vector<ReplayFeatureCandidate>& candidates,
                            ReplayId solidId) const;
};

} // namespace Orvex
