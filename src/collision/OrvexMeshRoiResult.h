// What OrvexMeshRoiBoolean found, and how it went.
#pragma once

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>

#include <cstddef>
#include <string>

struct OrvexMeshRoiResult
{
  // The common solid; null if there is none.
  TopoDS_Shape shape;
  // In cubic and square model units; 0 until measured.
  double volume = 0;
  double area = 0;
  // The whole shapes were taken, not the pieces.
  bool usedFallback = false;
  // The shapes have no common solid: an outcome, not an error.
  bool noOverlap = false;
  // What went wrong; empty if nothing did.
  std::string message;
};

struct OrvexMeshRoiTrace
{
  // Of the meshes of what is left.
  std::size_t trianglesA = 0;
  std::size_t trianglesB = 0;
  // Where triangles of the two come near each other, as far as it is within the boxes of both
  // shapes; and what the shapes were clipped to. Void if there is no such place.
  Bnd_Box region;
  Bnd_Box clipRegion;
  // The common solid reached beyond the region, and was made again in the part of space that is
  // within the boxes of both shapes.
  bool wasWidened = false;
  // Seconds. The reduction leaves out holes and bosses far from the other shape.
  double reductionSeconds = 0;
  double meshSeconds = 0;
  double regionSeconds = 0;
  double clipSecondsA = 0;
  double clipSecondsB = 0;
  double commonSeconds = 0;
};
