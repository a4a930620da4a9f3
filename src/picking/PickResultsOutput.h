// What a pick on a shape's triangles came to.
#pragma once

#include "picking/PickResult.h"

struct PickResultsOutput : PickResult
{
  // The face of the triangle that was struck; the same as subShape.
  TopoDS_Shape face;
};
