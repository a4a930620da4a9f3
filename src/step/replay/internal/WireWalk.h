// The order in which the edges of a loop are told.
#pragma once

#include "step/replay/internal/FaceBounds.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>

namespace Orvex {

// Walks along the wires of one face.
class WireWalk
{
public:
  explicit WireWalk(const TopoDS_Face& walked) : face(walked), bounds(NeededBounds(walked))
  {}

  // Calls visit(edge, true) for each edge along the wire. A wire in which the kernel finds no way
  // at all is told as it is stored, with visit(edge, false).
  // Caveat: the way along a wire leaves out edges that are internal or external, and ends where the
  // wire does not go on.
  template <typename Visit>
  void Along(const TopoDS_Wire& wire, Visit&& visit) const
  {
    BRepTools_WireExplorer way;
    way.Init(wire, face, bounds.uMin, bounds.uMax, bounds.vMin, bounds.vMax);
    if (way.More()) {
      for (; way.More(); way.Next())
        visit(way.Current(), true);
      return;
    }
    for (TopExp_Explorer edges(wire, TopAbs_EDGE); edges.More(); edges.Next())
      visit(TopoDS::Edge(edges.Current()), false);
  }

private:
  // On these surfaces the kernel's explorer takes its tolerance from the bounds of the face; left
  // to itself it would compute them for each wire.
  static FaceBounds NeededBounds(const TopoDS_Face& face)
  {
    const GeomAbs_SurfaceType type = BRepAdaptor_Surface(face, false).GetType();
    const bool needed =
      type == GeomAbs_Cone || type == GeomAbs_BSplineSurface || type == GeomAbs_BezierSurface;
    return needed ? BoundsOf(face) : FaceBounds();
  }

  const TopoDS_Face face;
  const FaceBounds bounds;
};

} // namespace Orvex
