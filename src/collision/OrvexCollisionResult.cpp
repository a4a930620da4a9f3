#include "collision/OrvexCollisionResult.h"

bool OrvexCollisionResult::hasCollision() const
{
  return state != Clear;
}

bool OrvexCollisionResult::hasIntersection() const
{
  return state == Intersect || state == Containment;
}

std::string OrvexCollisionResult::stateString() const
{
  return stateToString(state);
}

std::string OrvexCollisionResult::stateToString(State state)
{
  switch (state) {
  case Clear:
    return "Clear";
  case Contact:
    return "Contact";
  case Intersect:
    return "Intersect";
  case Containment:
    return "Containment";
  }
  return "Unknown";
}
