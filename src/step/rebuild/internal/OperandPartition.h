// Takes a body apart where its faces have inner loops: what stands on a face or goes into it is an
// operand of its own, closed off by the piece of the face that the loop cuts out.
//
// The bodies of mechanical parts fall apart this way into a base, bosses, holes, pockets and what
// stands in these, each of which may be simple enough to be extruded or revolved. A hole that goes
// through is closed off at both ends.
#pragma once

#include "step/rebuild/internal/PayloadTopology.h"

#include <TopoDS_Solid.hxx>

namespace Orvex {

struct Operand
{
  // Of the body; the pieces that close it off have none.
  std::vector<ReplayId> faceIds;
  // Turned so that its volume is positive.
  TopoDS_Solid solid;
  // Material, not a hole.
  bool adds = true;
  // How many operands it stands on or in: 0 for a base.
  int depth = 0;
};

struct Partition
{
  // By depth, then in the order of the faces.
  std::vector<Operand> operands;
  // Why there are none.
  std::string failure;
};

Partition PartitionOf(const std::vector<PayloadTopology::BuiltFace>& faces);

// The body as one operand of depth 0.
Partition Undivided(const std::vector<PayloadTopology::BuiltFace>& faces);

} // namespace Orvex
