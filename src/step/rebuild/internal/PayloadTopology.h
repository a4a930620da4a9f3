// Faces from their payloads, joined at the vertices and edges whose ids they share.
//
// The numbers of a payload's text have six digits, so that curves miss surfaces by some millionths
// of their size: edges and vertices get the tolerances that cover this.
#pragma once

#include "step/replay/ReplayPayloads.h"

#include <Geom_Surface.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>

#include <map>
#include <string>
#include <vector>

namespace Orvex {

class PayloadTopology
{
public:
  struct BuiltFace
  {
    ReplayId id = 0;
    // Null where the payload does not suffice.
    TopoDS_Face face;
    // Its loops but the outer one, as they are in the face taken forward.
    std::vector<TopoDS_Wire> innerLoops;
    // Why: empty for a face that was built.
    std::string failure;
  };

  // A face that occurs twice is built once.
  explicit PayloadTopology(const std::vector<ReplayFacePayload>& payloads);

  // In the order of the payloads.
  const std::vector<BuiltFace>& Faces() const
  {
    return faces;
  }

  // Null for an id that none of the faces has.
  TopoDS_Edge Edge(ReplayId id) const;

private:
  void MakeFace(const ReplayFacePayload& payload, BuiltFace& built);
  TopoDS_Wire LoopOf(const ReplayLoopPayload& loop, bool sameSense);
  TopoDS_Edge EdgeOf(const ReplayCoedgePayload& coedge);
  TopoDS_Vertex VertexOf(ReplayId id, bool hasPoint, const ReplayPoint& point);
  void Complete(const TopoDS_Face& face);
  void CoverEdges(const TopoDS_Face& face);

  std::map<ReplayId, TopoDS_Vertex> vertices;
  std::map<ReplayId, TopoDS_Edge> edges;
  std::vector<BuiltFace> faces;
};

} // namespace Orvex
