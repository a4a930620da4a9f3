// The coordinate systems in which shapes stand.
#pragma once

#include <gp_Ax2.hxx>

namespace Orvex {

// The global axes moved to a point and turned so that Z points along the direction. The X
// direction follows from the kernel's rule for turning the main direction.
inline gp_Ax2 AxesAt(const gp_Pnt& location, const gp_Dir& direction)
{
  gp_Ax2 axes;
  axes.SetLocation(location);
  axes.SetDirection(direction);
  return axes;
}

// The global axes moved to a point: the plane of circles and ellipses is parallel to XY.
inline gp_Ax2 HorizontalAxesAt(const gp_Pnt& location)
{
  gp_Ax2 axes;
  axes.SetLocation(location);
  axes.SetXDirection(gp_Dir(1, 0, 0));
  return axes;
}

} // namespace Orvex
