// The boxes of a part's faces.
#pragma once

#include "collision/OrvexCollisionEngine.h"
#include "kernel/internal/BoxLimits.h"

#include <TopoDS_Shape.hxx>

#include <memory>
#include <vector>

namespace Orvex {

struct FaceBoxes
{
  struct Entry
  {
    Bnd_Box box;
    int face; // its position among the faces of the part
  };

  // Faces without a box have no entry.
  std::vector<Entry> entries;

  // Empty for a null shape.
  static FaceBoxes Of(const TopoDS_Shape& shape);
};

// Some face of the one and some face of the other have boxes that overlap, each enlarged by the
// tolerance.
bool FacesMayOverlap(const FaceBoxes& a, const FaceBoxes& b, double tolerance);

} // namespace Orvex

// The same under two names: two caches that know nothing of each other.
struct OrvexCollisionEngine::FaceBVH : Orvex::FaceBoxes
{};
struct OrvexCollisionEngine::FaceOctree : Orvex::FaceBoxes
{};
