#include "step/replay/StepGeometryPayloadStore.h"

#include "kernel/internal/BrepText.h"
#include "step/replay/internal/CurveReading.h"
#include "step/replay/internal/KernelGuard.h"
#include "step/replay/internal/PayloadJson.h"
#include "step/replay/internal/ReplayIdIndex.h"
#include "step/replay/internal/SurfaceReading.h"
#include "step/replay/internal/TrimReading.h"

#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <utility>

namespace Orvex {

namespace {

constexpr const char* kFailed = "{}";

const TopoDS_Shape* ShapeIn(const std::shared_ptr<const ReplayIdIndex>& index,
                            TopTools_IndexedMapOfShape ReplayIdIndex::*map, ReplayId id)
{
  return index == nullptr ? nullptr : ReplayIdIndex::ShapeIn((*index).*map, id);
}

// The record of an id in the cache.
// Returns: one that was there, one that describe(shape, record) filled, or null.
template <typename Cache, typename Describe>
const typename Cache::mapped_type* Find(Cache& cache, const TopoDS_Shape* shape, ReplayId id,
                                        Describe&& describe)
{
  if (const auto found = cache.find(id); found != cache.end())
    return &found->second;
  if (shape == nullptr)
    return nullptr;
  typename Cache::mapped_type record;
  const bool described = SucceedsInKernel([&] {
    describe(*shape, record);
    return true;
  });
  return described ? &cache.emplace(id, std::move(record)).first->second : nullptr;
}

// The bounds of a face, from another record of it if there is one.
template <typename Cache>
FaceBounds KnownBoundsOf(const Cache& cache, const TopoDS_Face& face, ReplayId id)
{
  const auto found = cache.find(id);
  return found == cache.end() ? BoundsOf(face) : BoundsIn(found->second);
}

template <typename Record, typename Payload>
bool CopyOut(const Record* record, Payload& payload, ReplayId Payload::*idField, ReplayId id)
{
  if (record != nullptr) {
    payload = *record;
    return true;
  }
  payload = {};
  payload.*idField = id;
  return false;
}

template <typename Record>
std::string JsonOf(const Record* record)
{
  if (record == nullptr)
    return kFailed;
  std::string text;
  JsonWriter json(text);
  WritePayload(json, *record);
  return text;
}

} // namespace

StepGeometryPayloadStore::StepGeometryPayloadStore() = default;
StepGeometryPayloadStore::~StepGeometryPayloadStore() = default;
StepGeometryPayloadStore::StepGeometryPayloadStore(const StepGeometryPayloadStore& other) = default;
StepGeometryPayloadStore&
StepGeometryPayloadStore::operator=(const StepGeometryPayloadStore& other) = default;
StepGeometryPayloadStore::StepGeometryPayloadStore(StepGeometryPayloadStore&& other) noexcept =
  default;
StepGeometryPayloadStore&
StepGeometryPayloadStore::operator=(StepGeometryPayloadStore&& other) noexcept = default;

void StepGeometryPayloadStore::BuildIndex(const std::vector<TopoDS_Shape>& shapes)
{
  *this = {};
  index = std::make_shared<const ReplayIdIndex>(shapes);
}

void StepGeometryPayloadStore::BuildIndex(const TopoDS_Shape& shape)
{
  BuildIndex(RootsOf(shape));
}

const ReplayCurvePayload* StepGeometryPayloadStore::CurveOf(ReplayId id) const
{
  const auto describe = [&](const TopoDS_Shape& edge, ReplayCurvePayload& curve) {
    curve.id = id;
    ReadCurve(TopoDS::Edge(edge), curve);
  };
  return Find(curveCache, ShapeIn(index, &ReplayIdIndex::edges, id), id, describe);
}

const ReplaySurfacePayload* StepGeometryPayloadStore::SurfaceOf(ReplayId id) const
{
  const auto describe = [&](const TopoDS_Shape& shape, ReplaySurfacePayload& surface) {
    const TopoDS_Face& face = TopoDS::Face(shape);
    surface.id = id;
    SetBounds(surface, KnownBoundsOf(trimCache, face, id));
    ReadSurface(face, surface);
  };
  return Find(surfaceCache, ShapeIn(index, &ReplayIdIndex::faces, id), id, describe);
}

const ReplayFaceTrimPayload* StepGeometryPayloadStore::TrimOf(ReplayId id) const
{
  const auto describe = [&](const TopoDS_Shape& shape, ReplayFaceTrimPayload& trim) {
    const TopoDS_Face& face = TopoDS::Face(shape);
    trim.faceId = id;
    trim.surfaceId = id;
    SetBounds(trim, KnownBoundsOf(surfaceCache, face, id));
    ReadTrim(face, *index, trim);
  };
  return Find(trimCache, ShapeIn(index, &ReplayIdIndex::faces, id), id, describe);
}

// Both, or a face without surface.
StepGeometryPayloadStore::Face StepGeometryPayloadStore::FaceOf(ReplayId id) const
{
  const ReplaySurfacePayload* surface = SurfaceOf(id);
  const ReplayFaceTrimPayload* trim = surface == nullptr ? nullptr : TrimOf(id);
  return trim == nullptr ? Face() : Face{surface, trim};
}

const StepGeometryPayloadStore::Shell* StepGeometryPayloadStore::ShellOf(ReplayId id) const
{
  const auto describe = [&](const TopoDS_Shape& shape, Shell& shell) {
    shell.isClosed = shape.Closed();
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
      if (const ReplayId face = ReplayIdIndex::IdIn(index->faces, faces.Current());
          FaceOf(face).surface != nullptr)
        shell.faceIds.push_back(face);
  };
  return Find(shellCache, ShapeIn(index, &ReplayIdIndex::shells, id), id, describe);
}

const StepGeometryPayloadStore::Solid* StepGeometryPayloadStore::SolidOf(ReplayId id) const
{
  const auto describe = [&](const TopoDS_Shape& shape, Solid& solid) {
    solid.exactBrep = BrepText(shape);
    for (TopExp_Explorer shells(shape, TopAbs_SHELL); shells.More(); shells.Next())
      if (const ReplayId shell = ReplayIdIndex::IdIn(index->shells, shells.Current());
          ShellOf(shell) != nullptr)
        solid.shellIds.push_back(shell);
  };
  return Find(solidCache, ShapeIn(index, &ReplayIdIndex::solids, id), id, describe);
}

bool StepGeometryPayloadStore::ExpandCurvePayload(ReplayId id, ReplayCurvePayload& payload) const
{
  return CopyOut(CurveOf(id), payload, &ReplayCurvePayload::id, id);
}

bool StepGeometryPayloadStore::ExpandSurfacePayload(ReplayId id,
                                                    ReplaySurfacePayload& payload) const
{
  return CopyOut(SurfaceOf(id), payload, &ReplaySurfacePayload::id, id);
}

bool StepGeometryPayloadStore::ExpandFaceTrimPayload(ReplayId id,
                                                     ReplayFaceTrimPayload& payload) const
{
  return CopyOut(TrimOf(id), payload, &ReplayFaceTrimPayload::faceId, id);
}

bool StepGeometryPayloadStore::ExpandFacePayload(ReplayId id, ReplayFacePayload& payload) const
{
  payload = {};
  payload.faceId = id;
  const Face face = FaceOf(id);
  if (face.surface == nullptr)
    return false;
  payload.surface = *face.surface;
  payload.trim = *face.trim;
  return true;
}

bool StepGeometryPayloadStore::ExpandShellPayload(ReplayId id, ReplayShellPayload& payload) const
{
  payload = {};
  payload.shellId = id;
  const Shell* shell = ShellOf(id);
  if (shell == nullptr)
    return false;
  payload.isClosed = shell->isClosed;
  payload.faces.resize(shell->faceIds.size());
  for (std::size_t i = 0; i < payload.faces.size(); ++i)
    ExpandFacePayload(shell->faceIds[i], payload.faces[i]);
  return true;
}

bool StepGeometryPayloadStore::ExpandSolidPayload(ReplayId id, ReplaySolidPayload& payload) const
{
  payload = {};
  payload.solidId = id;
  const Solid* solid = SolidOf(id);
  if (solid == nullptr)
    return false;
  payload.exactBrep = solid->exactBrep;
  payload.shells.resize(solid->shellIds.size());
  for (std::size_t i = 0; i < payload.shells.size(); ++i)
    ExpandShellPayload(solid->shellIds[i], payload.shells[i]);
  return true;
}

void StepGeometryPayloadStore::WriteShell(JsonWriter& json, ReplayId id, const Shell& shell) const
{
  json.BeginObject();
  json.Field("shellId", id);
  json.Field("isClosed", shell.isClosed);
  json.ArrayField("faces", shell.faceIds, [&](ReplayId faceId) {
    const Face face = FaceOf(faceId);
    WriteFacePayload(json, *face.surface, *face.trim);
  });
  json.EndObject();
}

void StepGeometryPayloadStore::WriteSolid(JsonWriter& json, ReplayId id, const Solid& solid) const
{
  json.BeginObject();
  json.Field("solidId", id);
  json.Field("exactBrep", solid.exactBrep);
  json.ArrayField("shells", solid.shellIds,
                  [&](ReplayId shellId) { WriteShell(json, shellId, *ShellOf(shellId)); });
  json.EndObject();
}

std::string StepGeometryPayloadStore::ExpandCurvePayloadJson(ReplayId id) const
{
  return JsonOf(CurveOf(id));
}

std::string StepGeometryPayloadStore::ExpandSurfacePayloadJson(ReplayId id) const
{
  return JsonOf(SurfaceOf(id));
}

std::string StepGeometryPayloadStore::ExpandFaceTrimPayloadJson(ReplayId id) const
{
  return JsonOf(TrimOf(id));
}

std::string StepGeometryPayloadStore::ExpandFacePayloadJson(ReplayId id) const
{
  const Face face = FaceOf(id);
  if (face.surface == nullptr)
    return kFailed;
  std::string text;
  JsonWriter json(text);
  WriteFacePayload(json, *face.surface, *face.trim);
  return text;
}

std::string StepGeometryPayloadStore::ExpandShellPayloadJson(ReplayId id) const
{
  const Shell* shell = ShellOf(id);
  if (shell == nullptr)
    return kFailed;
  std::string text;
  JsonWriter json(text);
  WriteShell(json, id, *shell);
  return text;
}

std::string StepGeometryPayloadStore::ExpandSolidPayloadJson(ReplayId id) const
{
  const Solid* solid = SolidOf(id);
  if (solid == nullptr)
    return kFailed;
  std::string text;
  JsonWriter json(text);
  WriteSolid(json, id, *solid);
  return text;
}

} // namespace Orvex
