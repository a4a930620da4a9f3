// Turns the shapes of a read model into its flat summary: every entity with its ids and counts, in
// one pass over the model.
//
//   ReplayIRSummary summary = StepReplayIRBuilder().BuildSummary(shapes, "bolt.step");
//
// Null shapes are passed over. A curve, a surface or a p-curve that the kernel throws on gets the
// unknown kind, and the summary goes on.
//
// It has no state and may run on any thread while the shapes are not changed.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayIRSummary.h"

#include <TopoDS_Shape.hxx>

#include <string>
#include <vector>

namespace Orvex {

class ORVEX_API StepReplayIRBuilder
{
public:
  // Errors: the kernel's exceptions pass where they come from anything but the kind of one curve or
  // surface; a face without a surface, whose wires cannot be walked, is such a case.
  // Cost: linear in the edges of all faces.
  ReplayIRSummary BuildSummary(const std::vector<TopoDS_Shape>& shapes,
                               const std::string& sourceName) const;
  ReplayIRSummary BuildSummary(const TopoDS_Shape& shape, const std::string& sourceName) const;
};

} // namespace Orvex
