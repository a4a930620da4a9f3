// What the collision engine found out about one pair of parts.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <string>

struct ORVEX_API OrvexCollisionResult
{
  // The engine gives Clear and Intersect only. Parts that touch are Intersect with inContact and no
  // overlapVolume. Contact and Containment are for callers that classify further.
  enum State { Clear = 0, Contact = 1, Intersect = 2, Containment = 3 };

  // Positions in the list of parts; partA is the smaller.
  int partA = -1;
  int partB = -1;
  // Volume of what the parts have in common, in cubic model units. 0 also when nothing measured it.
  double overlapVolume = 0;
  // The least distance found, in model units; +infinity when no stage measured one. A distance
  // between meshes for pairs that no exact stage has seen.
  double distance = 0;
  State state = Clear;
  // The parts came within the contact tolerance.
  bool inContact = false;
  // What the parts have in common; null unless the configuration keeps it.
  TopoDS_Shape overlapShape;
  // Where the parts are nearest; the origin unless the exact distance was measured.
  gp_Pnt pointOnA;
  gp_Pnt pointOnB;

  bool hasCollision() const;

  // Intersect or Containment.
  bool hasIntersection() const;

  std::string stateString() const;

  // "Unknown" for a value that is no state.
  static std::string stateToString(State state);
};
