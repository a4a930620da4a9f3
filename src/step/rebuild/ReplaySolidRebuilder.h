// Rebuilds solids from the face payloads of a replay: as trimmed faces joined along their edges, as
// a primitive, or as a base with bosses and holes, each extruded, revolved or lofted where its form
// allows that.
//
//   std::vector<ReplayFacePayload> faces;
//   std::string error;
//   if (ReplayPayloadReader::ReadFaces(payloadJson, faces, error)) {
//     const ReplayRebuild rebuilt = ReplaySolidRebuilder(faces).FromFeatures();
//     if (rebuilt.shape.IsNull())
//       std::cerr << rebuilt.failure << '\n';
//   }
//
// Nothing is promised about how near a rebuild comes to the model that the payloads were taken
// from, whose text has six digits: compare the two with ShapeEquivalenceAnalyzer.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Shape.hxx>

#include <memory>
#include <string>
#include <vector>

namespace Orvex {

// A part of a rebuilt solid.
struct ReplayRebuiltOperand
{
  // Its faces in the model.
  std::vector<ReplayId> faceIds;
  // "base", "fuse" or "cut".
  std::string role;
  // "extrusion", "revolution", "loft", or "faces" when it was joined from its trimmed faces; of a
  // primitive "box", "cylinder", "cone", "sphere" or "torus".
  std::string form;
};

struct ReplayFaceFailure
{
  ReplayId faceId = 0;
  std::string reason;
};

struct ReplayRebuild
{
  // A solid; a compound where the body falls apart; null when nothing could be built.
  TopoDS_Shape shape;
  // In the order in which they were put together.
  std::vector<ReplayRebuiltOperand> operands;
  // Why there is no shape.
  std::string failure;
};

class PayloadTopology;

class ORVEX_API ReplaySolidRebuilder
{
public:
  // Of one solid, with all its shells. A face that occurs twice is taken once.
  explicit ReplaySolidRebuilder(const std::vector<ReplayFacePayload>& faces);
  ~ReplaySolidRebuilder();
  ReplaySolidRebuilder(const ReplaySolidRebuilder&) = delete;
  ReplaySolidRebuilder& operator=(const ReplaySolidRebuilder&) = delete;

  // Those that could not be built, in the order of the payloads.
  std::vector<ReplayFaceFailure> Failures() const;

  // The trimmed face; null for one that could not be built, or that there is none of.
  TopoDS_Shape Face(ReplayId id) const;

  // The faces as one shell, joined where they share edges; where that leaves the shell open they
  // are sewn by their places as well. Null without any face.
  TopoDS_Shape Shell(const std::vector<ReplayId>& ids) const;

  // All faces, joined and filled. An open shell fails.
  ReplayRebuild FromFaces() const;

  // The body taken apart at the inner loops of its faces, its parts extruded, revolved or lofted
  // where that gives an equivalent part, joined from their faces where not, and put together by
  // fuses and cuts. Fails where the body has one part without a form: there is nothing then that
  // joining its faces would not do.
  ReplayRebuild FromFeatures() const;

  // By the numbers of its analytic face or, for a box, by three edges of a corner.
  // kind: "primitive_box", "primitive_cylinder", "primitive_cone", "primitive_sphere" or
  //   "primitive_torus"; any other fails.
  ReplayRebuild FromPrimitive(const std::string& kind) const;

private:
  const std::vector<ReplayFacePayload> payloads;
  const std::unique_ptr<const PayloadTopology> topology;
};

} // namespace Orvex
