// The order in which the edges of a loop are told.
#pragma once

#include <BRepTools_WireExplorer.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>

namespace Orvex {

// Calls visit(edge, true) for each edge along the wire. A wire in which the kernel finds no way at
// all is told as it is stored, with visit(edge, false).
// Caveat: the way along a wire leaves out edges that are internal or external, and ends where the
// wire does not go on.
template <typename Visit>
void WalkWire(const TopoDS_Wire& wire, const TopoDS_Face& face, Visit&& visit)
{
  BRepTools_WireExplorer way(wire, face);
  if (way.More()) {
    for (; way.More(); way.Next())
      visit(way.Current(), true);
    return;
  }
  for (TopExp_Explorer edges(wire, TopAbs_EDGE); edges.More(); edges.Next())
    visit(TopoDS::Edge(edges.Current()), false);
}

} // namespace Orvex
