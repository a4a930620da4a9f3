// What a chop gives: a shape without its overlap with another.
#pragma once

#include <TopoDS_Shape.hxx>

#include <string>

struct ChopResult
{
  // The second shape without the overlap; null on failure.
  TopoDS_Shape choppedShape;
  // The first shape, as it was given; null on failure.
  TopoDS_Shape keptShape;
  // Volume that the shapes have in common, in cubic model units. Also of a chop that failed after
  // measuring it; 0 before.
  double overlapVolume = 0;
  bool success = false;
  // Which shape was changed: 1, the second, on success; -1 otherwise.
  int modifiedIndex = -1;
  // The reason of a failure, for the user; empty on success.
  std::string message;
};
