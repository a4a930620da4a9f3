// The edge over the whole of a bounded curve.
#pragma once

#include <Geom_Curve.hxx>
#include <ShapeBuild_Edge.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS_Edge.hxx>

namespace Orvex {

inline TopoDS_Edge EdgeOver(const Handle(Geom_Curve) & curve)
{
  TopoDS_Edge edge;
  ShapeBuild_Edge().MakeEdge(edge, curve, TopLoc_Location());
  return edge;
}

} // namespace Orvex
