// The range of a face in the parameters of its surface.
#pragma once

#include <BRepTools.hxx>
#include <TopoDS_Face.hxx>

namespace Orvex {

struct FaceBounds
{
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
};

// Cost: a pass over the face's curves on its surface.
inline FaceBounds BoundsOf(const TopoDS_Face& face)
{
  FaceBounds bounds;
  BRepTools::UVBounds(face, bounds.uMin, bounds.uMax, bounds.vMin, bounds.vMax);
  return bounds;
}

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

} // namespace Orvex
