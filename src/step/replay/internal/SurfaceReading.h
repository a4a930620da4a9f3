// The surface of a face, from the kernel into its record.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Face.hxx>

namespace Orvex {

// The range of a face in the parameters of its surface. To find it costs a pass over the face's
// p-curves.
struct FaceBounds
{
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
};

FaceBounds BoundsOf(const TopoDS_Face& face);

// Surfaces and trims carry the bounds alike.
template <typename Record>
FaceBounds BoundsIn(const Record& record)
{
  return {record.uMin, record.uMax, record.vMin, record.vMax};
}

template <typename Record>
void SetBounds(Record& record, const FaceBounds& bounds)
{
  record.uMin = bounds.uMin;
  record.uMax = bounds.uMax;
  record.vMin = bounds.vMin;
  record.vMax = bounds.vMax;
}

// Fills all but the bounds.
// Requires: the payload has its id.
// Errors: the kernel's exceptions, but those of a basis curve, which is then left out.
void ReadSurface(const TopoDS_Face& face, ReplaySurfacePayload& payload);

} // namespace Orvex
