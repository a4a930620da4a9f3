// A read model as one flat record: every vertex, curve, surface, face, loop, coedge, shell and
// solid with its ids and counts, without geometry. Recognition and plans decide on this record
// alone.
//
// Ids count from 1; 0 means none. Those of vertices, curves (edges), surfaces (faces), faces,
// shells and solids are the numbers of StepGeometryPayloadStore for the same root shapes; a curve
// has the id of its edge, a surface that of its face. Loops and coedges are numbered through the
// faces.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayId.h"
#include "step/replay/ReplayKinds.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Orvex {

struct ReplayVertexRecord
{
  ReplayId id = 0;
  // Model units.
  double x = 0;
  double y = 0;
  double z = 0;
};

struct ReplayCurveRecord
{
  ReplayId id = 0;
  ReplayCurveKind kind = kUnknownCurve;
  // -1 for what has none; counts 0. Of knots, the distinct ones.
  std::int32_t degree = -1;
  std::int32_t poleCount = 0;
  std::int32_t knotCount = 0;
  // Without regard to orientation; 0 for none.
  ReplayId startVertexId = 0;
  ReplayId endVertexId = 0;
};

struct ReplaySurfaceRecord
{
  ReplayId id = 0;
  ReplaySurfaceKind kind = kUnknownSurface;
  std::int32_t degreeU = -1;
  std::int32_t degreeV = -1;
  std::int32_t poleRows = 0;
  std::int32_t poleCols = 0;
  std::int32_t uKnotCount = 0;
  std::int32_t vKnotCount = 0;
};

struct ReplayFaceRecord
{
  ReplayId id = 0;
  ReplayId surfaceId = 0;
  std::int32_t boundCount = 0;
  // A seam edge counts twice.
  std::int32_t edgeCount = 0;
  // The face is not reversed.
  bool sameSense = true;
  std::vector<ReplayId> loopIds;
  std::vector<ReplayId> edgeIds;
};

struct ReplayLoopRecord
{
  ReplayId id = 0;
  ReplayId faceId = 0;
  bool isOuter = false;
  std::int32_t coedgeCount = 0;
  std::vector<ReplayId> coedgeIds;
};

// An edge as one loop uses it.
struct ReplayCoedgeRecord
{
  ReplayId id = 0;
  ReplayId loopId = 0;
  ReplayId edgeId = 0;
  // The edge is not reversed in its loop.
  bool orientation = true;
  bool hasCurve3d = false;
  bool hasPcurve = false;
  ReplayCurveKind pcurveKind = kUnknownCurve;
  std::int32_t pcurveDegree = -1;
  std::int32_t pcurvePoleCount = 0;
  std::int32_t pcurveKnotCount = 0;
  ReplayId startVertexId = 0;
  ReplayId endVertexId = 0;
};

struct ReplayShellRecord
{
  ReplayId id = 0;
  bool isClosed = false;
  std::vector<ReplayId> faceIds;
};

struct ReplaySolidRecord
{
  ReplayId id = 0;
  std::vector<ReplayId> shellIds;
};

struct ReplayIRSummary
{
  std::string sourceName;
  std::vector<ReplayVertexRecord> vertices;
  // One for each edge.
  std::vector<ReplayCurveRecord> curves;
  // One for each face.
  std::vector<ReplaySurfaceRecord> surfaces;
  std::vector<ReplayFaceRecord> faces;
  std::vector<ReplayLoopRecord> loops;
  std::vector<ReplayCoedgeRecord> coedges;
  std::vector<ReplayShellRecord> shells;
  std::vector<ReplaySolidRecord> solids;
  // Curves and surfaces by the text of their kind.
  std::map<std::string, std::int32_t> curveHistogram;
  std::map<std::string, std::int32_t> surfaceHistogram;
};

// One JSON object, keys in the order of the fields.
ORVEX_API std::string ToJson(const ReplayIRSummary& summary);

} // namespace Orvex
