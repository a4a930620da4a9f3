// Numbers every edge, face, shell and solid of a model, and expands one number at a time into the
// exact geometry behind it: curve, surface, trim loops, shell, or whole solid.
//
//   StepGeometryPayloadStore store;
//   store.BuildIndex(shapes);
//   std::string json = store.ExpandFacePayloadJson(1);
//
// Ids count from 1 in the order of the kernel's maps over the roots; a sub-shape that two roots
// share has one number, and StepReplayIRBuilder gives the same numbers. A curve has the id of its
// edge; a surface and a trim have the id of their face.
//
// Cost: expansion works on what is asked for and on nothing else, once: what was expanded is kept
// until the next BuildIndex, faces once whatever asked for them (also for the sake of a shell or a
// solid), and the kernel's text of a solid. Kept that is about two and a half times as much as the
// JSON text of the same entities; a copy of the store is dear. The JSON of a shell or a solid keeps
// nothing of its faces, nor the kernel's text: it is written face by face, and again with each
// call.
//
// Caveat: Expand operations are const and write these caches without a lock: one thread at a time.
// The shapes are read only, and must not be changed while the store is in use.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Shape.hxx>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvex {

class JsonWriter;
class ReplayIdIndex;

class ORVEX_API StepGeometryPayloadStore
{
public:
  StepGeometryPayloadStore();
  ~StepGeometryPayloadStore();
  StepGeometryPayloadStore(const StepGeometryPayloadStore& other);
  StepGeometryPayloadStore& operator=(const StepGeometryPayloadStore& other);
  // What was moved from has no entities until its next BuildIndex.
  StepGeometryPayloadStore(StepGeometryPayloadStore&& other) noexcept;
  StepGeometryPayloadStore& operator=(StepGeometryPayloadStore&& other) noexcept;

  // Forgets all earlier numbers and payloads. Null shapes are passed over.
  void BuildIndex(const std::vector<TopoDS_Shape>& shapes);
  void BuildIndex(const TopoDS_Shape& shape);

  // Returns: false for id 0, for an id that no entity has, and where the kernel throws; the payload
  // is then empty but for its id. Inside of larger payloads such failures cost no more than the
  // part itself: a shell leaves out the face, a solid the shell, a surface its basis curve, a
  // coedge its curve, p-curve or place on the surface.
  bool ExpandCurvePayload(ReplayId id, ReplayCurvePayload& payload) const;
  bool ExpandSurfacePayload(ReplayId id, ReplaySurfacePayload& payload) const;
  bool ExpandFaceTrimPayload(ReplayId id, ReplayFaceTrimPayload& payload) const;
  bool ExpandFacePayload(ReplayId id, ReplayFacePayload& payload) const;
  bool ExpandShellPayload(ReplayId id, ReplayShellPayload& payload) const;
  bool ExpandSolidPayload(ReplayId id, ReplaySolidPayload& payload) const;

  // One JSON object each, without white space, keys in the order of the records' fields, every key
  // present; written without a copy of the payload.
  // Returns: "{}" where the operation above fails.
  std::string ExpandCurvePayloadJson(ReplayId id) const;
  std::string ExpandSurfacePayloadJson(ReplayId id) const;
  std::string ExpandFaceTrimPayloadJson(ReplayId id) const;
  std::string ExpandFacePayloadJson(ReplayId id) const;
  std::string ExpandShellPayloadJson(ReplayId id) const;
  std::string ExpandSolidPayloadJson(ReplayId id) const;

private:
  template <typename Record>
  using Cache = std::unordered_map<ReplayId, Record>;

  // A payload less its faces, which have caches of their own; with those that cannot be described.
  struct Shell
  {
    bool isClosed = false;
    std::vector<ReplayId> faceIds;
  };
  struct Solid
  {
    std::string exactBrep;
    std::vector<ReplayId> shellIds;
  };
  struct Face
  {
    const ReplaySurfacePayload* surface = nullptr;
    const ReplayFaceTrimPayload* trim = nullptr;
  };

  const TopoDS_Shape* FaceShape(ReplayId id) const;
  bool DescribeSolid(ReplayId id, Solid& solid) const;

  // From the cache, or described into it; null when that fails.
  const ReplayCurvePayload* CurveOf(ReplayId id) const;
  const ReplaySurfacePayload* SurfaceOf(ReplayId id) const;
  const ReplayFaceTrimPayload* TrimOf(ReplayId id) const;
  Face FaceOf(ReplayId id) const;
  const Shell* ShellOf(ReplayId id) const;
  const Solid* SolidOf(ReplayId id) const;

  // Nothing for a face or shell that cannot be described.
  void WriteFace(JsonWriter& json, ReplayId id) const;
  void WriteShell(JsonWriter& json, ReplayId id) const;
  void WriteSolid(JsonWriter& json, ReplayId id, const Solid& solid) const;

  // Shared by copies: it does not change once it is made. Null after a move.
  std::shared_ptr<const ReplayIdIndex> index;
  mutable Cache<ReplayCurvePayload> curveCache;
  mutable Cache<ReplaySurfacePayload> surfaceCache;
  mutable Cache<ReplayFaceTrimPayload> trimCache;
  mutable Cache<Shell> shellCache;
  mutable Cache<Solid> solidCache;
};

} // namespace Orvex
