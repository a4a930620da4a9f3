#include "step/replay/StepGeometryPayloadStore.h"

#include "kernel/internal/BrepText.h"
#include "step/replay/internal/CurveReading.h"
#include "step/replay/internal/FaceBounds.h"
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

template <typename Cache>
const typename Cache::mapped_type* Cached(const Cache& cache, ReplayId id)
{
  const auto found = cache.find(id);
  return found == cache.end() ? nullptr : &found->second;
}

// The record of an id in the cache.
// Returns: one that was there, one that describe(record) filled, or null.
template <typename Cache, typename Describe>
const typename Cache::mapped_type* Find(Cache& cache, ReplayId id, Describe&& describe)
{
  if (const auto* cached = Cached(cache, id))
    return cached;
  typename Cache::mapped_type record;
  return describe(record) ? &cache.emplace(id, std::move(record)).first->second : nullptr;
}

// Fills the record of a shape by describe(shape).
// Returns: false for no shape, and where the kernel throws.
template <typename Describe>
bool DescribeIn(const TopoDS_Shape* shape, Describe&& describe)
{
  return shape != nullptr && SucceedsInKernel([&] {
           describe(*shape);
           return true;
         });
}

bool Describe(const TopoDS_Shape* shape, ReplayId id, ReplayCurvePayload& curve)
{
  return DescribeIn(shape, [&](const TopoDS_Shape& edge) {
    curve.id = id;
    ReadCurve(TopoDS::Edge(edge), curve);
  });
}

// The trim of the same face, if there is one, knows the bounds.
bool Describe(const TopoDS_Shape* shape, ReplayId id, const ReplayFaceTrimPayload* trim,
              ReplaySurfacePayload& surface)
{
  return DescribeIn(shape, [&](const TopoDS_Shape& found) {
    const TopoDS_Face& face = TopoDS::Face(found);
    surface.id = id;
    SetBounds(surface, trim == nullptr ? BoundsOf(face) : BoundsIn(*trim));
    ReadSurface(face, surface);
  });
}

bool Describe(const TopoDS_Shape* shape, ReplayId id, const ReplaySurfacePayload* surface,
              const ReplayIdIndex& index, ReplayFaceTrimPayload& trim)
{
  return DescribeIn(shape, [&](const TopoDS_Shape& found) {
    const TopoDS_Face& face = TopoDS::Face(found);
    trim.faceId = id;
    trim.surfaceId = id;
    SetBounds(trim, surface == nullptr ? BoundsOf(face) : BoundsIn(*surface));
    ReadTrim(face, index, trim);
  });
}

// In the order of the kernel's explorer.
std::vector<ReplayId> IdsIn(const TopoDS_Shape& shape, TopAbs_ShapeEnum type,
                            const TopTools_IndexedMapOfShape& map)
{
  std::vector<ReplayId> ids;
  for (TopExp_Explorer parts(shape, type); parts.More(); parts.Next())
    ids.push_back(ReplayIdIndex::IdIn(map, parts.Current()));
  return ids;
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

const TopoDS_Shape* StepGeometryPayloadStore::FaceShape(ReplayId id) const
{
  return ShapeIn(index, &ReplayIdIndex::faces, id);
}

const ReplayCurvePayload* StepGeometryPayloadStore::CurveOf(ReplayId id) const
{
  return Find(curveCache, id, [&](ReplayCurvePayload& curve) {
    return Describe(ShapeIn(index, &ReplayIdIndex::edges, id), id, curve);
  });
}

const ReplaySurfacePayload* StepGeometryPayloadStore::SurfaceOf(ReplayId id) const
{
  return Find(surfaceCache, id, [&](ReplaySurfacePayload& surface) {
    return Describe(FaceShape(id), id, Cached(trimCache, id), surface);
  });
}

const ReplayFaceTrimPayload* StepGeometryPayloadStore::TrimOf(ReplayId id) const
{
  return Find(trimCache, id, [&](ReplayFaceTrimPayload& trim) {
    return Describe(FaceShape(id), id, Cached(surfaceCache, id), *index, trim);
  });
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
  return Find(shellCache, id, [&](Shell& shell) {
    return DescribeIn(ShapeIn(index, &ReplayIdIndex::shells, id), [&](const TopoDS_Shape& shape) {
      shell.isClosed = shape.Closed();
      shell.faceIds = IdsIn(shape, TopAbs_FACE, index->faces);
    });
  });
}

bool StepGeometryPayloadStore::DescribeSolid(ReplayId id, Solid& solid) const
{
  return DescribeIn(ShapeIn(index, &ReplayIdIndex::solids, id), [&](const TopoDS_Shape& shape) {
    solid.exactBrep = BrepText(shape);
    solid.shellIds = IdsIn(shape, TopAbs_SHELL, index->shells);
  });
}

const StepGeometryPayloadStore::Solid* StepGeometryPayloadStore::SolidOf(ReplayId id) const
{
  return Find(solidCache, id, [&](Solid& solid) { return DescribeSolid(id, solid); });
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
  payload.faces.reserve(shell->faceIds.size());
  for (const ReplayId face : shell->faceIds)
    if (!ExpandFacePayload(face, payload.faces.emplace_back()))
      payload.faces.pop_back();
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
  payload.shells.reserve(solid->shellIds.size());
  for (const ReplayId shell : solid->shellIds)
    if (!ExpandShellPayload(shell, payload.shells.emplace_back()))
      payload.shells.pop_back();
  return true;
}

// What the caches do not have is described for this text and forgotten.
void StepGeometryPayloadStore::WriteFace(JsonWriter& json, ReplayId id) const
{
  ReplaySurfacePayload freshSurface;
  ReplayFaceTrimPayload freshTrim;
  const ReplaySurfacePayload* surface = Cached(surfaceCache, id);
  const ReplayFaceTrimPayload* trim = Cached(trimCache, id);
  if (surface == nullptr && Describe(FaceShape(id), id, trim, freshSurface))
    surface = &freshSurface;
  if (surface != nullptr && trim == nullptr &&
      Describe(FaceShape(id), id, surface, *index, freshTrim))
    trim = &freshTrim;
  if (surface != nullptr && trim != nullptr)
    WriteFacePayload(json, *surface, *trim);
}

void StepGeometryPayloadStore::WriteShell(JsonWriter& json, ReplayId id) const
{
  const Shell* shell = ShellOf(id);
  if (shell == nullptr)
    return;
  json.BeginObject();
  json.Field("shellId", id);
  json.Field("isClosed", shell->isClosed);
  json.ArrayField("faces", shell->faceIds, [&](ReplayId face) { WriteFace(json, face); });
  json.EndObject();
}

void StepGeometryPayloadStore::WriteSolid(JsonWriter& json, ReplayId id, const Solid& solid) const
{
  json.BeginObject();
  json.Field("solidId", id);
  json.Field("exactBrep", solid.exactBrep);
  json.ArrayField("shells", solid.shellIds, [&](ReplayId shell) { WriteShell(json, shell); });
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
  std::string text;
  JsonWriter json(text);
  WriteShell(json, id);
  return text.empty() ? kFailed : text;
}

// Without its cache: the text of a solid is as long as all else.
std::string StepGeometryPayloadStore::ExpandSolidPayloadJson(ReplayId id) const
{
  Solid fresh;
  const Solid* solid = Cached(solidCache, id);
  if (solid == nullptr && DescribeSolid(id, fresh))
    solid = &fresh;
  if (solid == nullptr)
    return kFailed;
  std::string text;
  JsonWriter json(text);
  WriteSolid(json, id, *solid);
  return text;
}

} // namespace Orvex
