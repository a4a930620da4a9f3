// Wall thickness at the places of a grid.
#pragma once

#include "analysis/internal/FaceSampling.h"

#include <gp_Pnt.hxx>

#include <vector>

namespace Orvex {

struct ThicknessValue
{
  GridPlace place;
  gp_Pnt point;
  double value;
};

// The values of one face, in the order of the grid; places without one are left out.
struct FaceThickness
{
  FaceSampling sampling;
  std::vector<ThicknessValue> values;
};

// All faces in their order, measured on all cores. Empty for a shape whose box is void.
std::vector<FaceThickness> MeasureThickness(const TopoDS_Shape& shape, int samplesPerAxis);

} // namespace Orvex
