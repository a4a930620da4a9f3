// Where the vertices of a face lie in the parameters of its surface.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <NCollection_DataMap.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>

#include <optional>

namespace Orvex {

// Gives what BRep_Tool::Parameters gives. That one searches all edges of the face for each vertex,
// which takes minutes on a plate with thousands of holes; this goes through them once.
class VertexPlaces
{
public:
  explicit VertexPlaces(const TopoDS_Face& place);

  // Nothing where the kernel throws.
  std::optional<ReplayUv> Of(const TopoDS_Vertex& vertex) const;

private:
  void AddEndsOf(const TopoDS_Edge& edge);

  const TopoDS_Face& face;
  NCollection_DataMap<TopoDS_Shape, std::optional<ReplayUv>, TopTools_ShapeMapHasher> places;
};

} // namespace Orvex
