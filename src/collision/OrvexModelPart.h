// One part of a scene, with the measures that collision checks need over and over.
#pragma once

#include "foundation/Export.h"

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Pnt.hxx>

#include <string>

struct ORVEX_API OrvexModelPart
{
  std::string name;
  // For callers; the library leaves it empty.
  std::string label;
  // Placed. Parts may share what is below their location.
  TopoDS_Shape shape;
  // Around the shape, with the kernel's gap. Void: the part takes part in no collision.
  Bnd_Box box;
  // In cubic and square model units; the volume of an inside-out solid is negative.
  double volume = 0;
  double surfaceArea = 0;
  gp_Pnt centroid;

  bool isValid() const;

  // The part with its box, measures and centroid; with nothing but the name for a null shape.
  // Errors: Standard_Failure passes.
  static OrvexModelPart fromShape(const TopoDS_Shape& shape, const std::string& name);
};
