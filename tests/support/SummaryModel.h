// Summaries of models that were never read: faces by the kind of their surface, the edges that they
// share, shells and solids. Ids are positions, as in the summary of a read model.
#pragma once

#include "step/replay/ReplayIRSummary.h"

#include <numeric>
#include <utility>

namespace OrvexTest {

using Orvex::ReplayId;
using Ids = std::vector<ReplayId>;

struct FaceForm
{
  Orvex::ReplaySurfaceKind kind = Orvex::kPlaneSurface;
  Ids edges = {};
  int bounds = 1;
  // All in one loop.
  int pcurves = 0;
  int coedgesWithout = 0;
};

struct SummaryModel
{
  Orvex::ReplayIRSummary summary;

  ReplayId AddFace(const FaceForm& form)
  {
    const ReplayId id = summary.faces.size() + 1;
    summary.surfaces.emplace_back().id = id;
    summary.surfaces.back().kind = form.kind;
    Orvex::ReplayFaceRecord& face = summary.faces.emplace_back();
    face.id = face.surfaceId = id;
    face.boundCount = form.bounds;
    face.edgeCount = static_cast<std::int32_t>(form.edges.size());
    face.edgeIds = form.edges;
    face.loopIds = {AddLoop(id, form)};
    return id;
  }

  ReplayId AddShell(const Ids& faces, bool isClosed = true)
  {
    const ReplayId id = summary.shells.size() + 1;
    summary.shells.push_back({id, isClosed, faces});
    return id;
  }

  ReplayId AddSolid(const Ids& shells)
  {
    const ReplayId id = summary.solids.size() + 1;
    summary.solids.push_back({id, shells});
    return id;
  }

  // A solid of one shell with all faces.
  ReplayId Close()
  {
    Ids faces(summary.faces.size());
    std::iota(faces.begin(), faces.end(), ReplayId{1});
    return AddSolid({AddShell(faces)});
  }

private:
  ReplayId AddLoop(ReplayId face, const FaceForm& form)
  {
    Orvex::ReplayLoopRecord& loop = summary.loops.emplace_back();
    loop.id = summary.loops.size();
    loop.faceId = face;
    loop.isOuter = true;
    loop.coedgeCount = form.pcurves + form.coedgesWithout;
    for (int i = 0; i < loop.coedgeCount; ++i) {
      Orvex::ReplayCoedgeRecord& coedge = summary.coedges.emplace_back();
      coedge.id = summary.coedges.size();
      coedge.loopId = loop.id;
      coedge.hasPcurve = i < form.pcurves;
      loop.coedgeIds.push_back(coedge.id);
    }
    return loop.id;
  }
};

// The edges of a box's faces in the order -x, +x, -y, +y, -z, +z.
inline const std::vector<Ids> kBoxEdges = {{1, 2, 3, 4},   {5, 6, 7, 8},  {1, 9, 5, 10},
                                           {3, 11, 7, 12}, {2, 9, 6, 11}, {4, 10, 8, 12}};

inline SummaryModel Box()
{
  SummaryModel box;
  for (const Ids& edges : kBoxEdges)
    box.AddFace({.edges = edges});
  box.Close();
  return box;
}

// With a cylindrical hole from -z to +z; its seam stands twice in its face.
inline SummaryModel HoledBox()
{
  SummaryModel box;
  for (std::size_t i = 0; i < 4; ++i)
    box.AddFace({.edges = kBoxEdges[i]});
  box.AddFace({.edges = {2, 9, 6, 11, 13}, .bounds = 2});
  box.AddFace({.edges = {4, 10, 8, 12, 14}, .bounds = 2});
  box.AddFace({.kind = Orvex::kCylinderSurface, .edges = {13, 15, 14, 15}, .pcurves = 4});
  box.Close();
  return box;
}

inline SummaryModel Cylinder()
{
  SummaryModel cylinder;
  cylinder.AddFace({.kind = Orvex::kCylinderSurface, .edges = {1, 2, 3, 2}});
  cylinder.AddFace({.edges = {1}});
  cylinder.AddFace({.edges = {3}});
  cylinder.Close();
  return cylinder;
}

// Faces of one kind in a row, each with an edge in common with the next; no shell, no solid.
inline SummaryModel Strip(FaceForm form, ReplayId count)
{
  SummaryModel strip;
  for (ReplayId i = 1; i <= count; ++i) {
    form.edges = {2 * i - 1, 2 * i, 2 * i + 1};
    strip.AddFace(form);
  }
  return strip;
}

} // namespace OrvexTest
