#include "step/replay/ReplayIRSummary.h"

#include "step/replay/internal/JsonWriter.h"

namespace Orvex {

namespace {

void WriteFields(JsonWriter& json, const ReplayVertexRecord& vertex)
{
  json.Field("id", vertex.id);
  json.Field("x", vertex.x);
  json.Field("y", vertex.y);
  json.Field("z", vertex.z);
}

void WriteFields(JsonWriter& json, const ReplayCurveRecord& curve)
{
  json.Field("id", curve.id);
  json.Field("kind", ToString(curve.kind));
  json.Field("degree", curve.degree);
  json.Field("poleCount", curve.poleCount);
  json.Field("knotCount", curve.knotCount);
  json.Field("startVertexId", curve.startVertexId);
  json.Field("endVertexId", curve.endVertexId);
}

void WriteFields(JsonWriter& json, const ReplaySurfaceRecord& surface)
{
  json.Field("id", surface.id);
  json.Field("kind", ToString(surface.kind));
  json.Field("degreeU", surface.degreeU);
  json.Field("degreeV", surface.degreeV);
  json.Field("poleRows", surface.poleRows);
  json.Field("poleCols", surface.poleCols);
  json.Field("uKnotCount", surface.uKnotCount);
  json.Field("vKnotCount", surface.vKnotCount);
}

void WriteFields(JsonWriter& json, const ReplayFaceRecord& face)
{
  json.Field("id", face.id);
  json.Field("surfaceId", face.surfaceId);
  json.Field("boundCount", face.boundCount);
  json.Field("edgeCount", face.edgeCount);
  json.Field("sameSense", face.sameSense);
  json.Field("loopIds", face.loopIds);
  json.Field("edgeIds", face.edgeIds);
}

void WriteFields(JsonWriter& json, const ReplayLoopRecord& loop)
{
  json.Field("id", loop.id);
  json.Field("faceId", loop.faceId);
  json.Field("isOuter", loop.isOuter);
  json.Field("coedgeCount", loop.coedgeCount);
  json.Field("coedgeIds", loop.coedgeIds);
}

void WriteFields(JsonWriter& json, const ReplayCoedgeRecord& coedge)
{
  json.Field("id", coedge.id);
  json.Field("loopId", coedge.loopId);
  json.Field("edgeId", coedge.edgeId);
  json.Field("orientation", coedge.orientation);
  json.Field("hasCurve3d", coedge.hasCurve3d);
  json.Field("hasPcurve", coedge.hasPcurve);
  json.Field("pcurveKind", ToString(coedge.pcurveKind));
  json.Field("pcurveDegree", coedge.pcurveDegree);
  json.Field("pcurvePoleCount", coedge.pcurvePoleCount);
  json.Field("pcurveKnotCount", coedge.pcurveKnotCount);
  json.Field("startVertexId", coedge.startVertexId);
  json.Field("endVertexId", coedge.endVertexId);
}

void WriteFields(JsonWriter& json, const ReplayShellRecord& shell)
{
  json.Field("id", shell.id);
  json.Field("isClosed", shell.isClosed);
  json.Field("faceIds", shell.faceIds);
}

void WriteFields(JsonWriter& json, const ReplaySolidRecord& solid)
{
  json.Field("id", solid.id);
  json.Field("shellIds", solid.shellIds);
}

template <typename Record>
void WriteRecords(JsonWriter& json, std::string_view key, const std::vector<Record>& records)
{
  json.ArrayField(key, records, [&json](const Record& record) {
    json.BeginObject();
    WriteFields(json, record);
    json.EndObject();
  });
}

void WriteHistogram(JsonWriter& json, std::string_view key,
                    const std::map<std::string, std::int32_t>& histogram)
{
  json.Key(key);
  json.BeginObject();
  for (const auto& [kind, count] : histogram)
    json.Field(kind, count);
  json.EndObject();
}

} // namespace

std::string ToJson(const ReplayIRSummary& summary)
{
  std::string text;
  JsonWriter json(text);
  json.BeginObject();
  json.Field("sourceName", summary.sourceName);
  WriteRecords(json, "vertices", summary.vertices);
  WriteRecords(json, "curves", summary.curves);
  WriteRecords(json, "surfaces", summary.surfaces);
  WriteRecords(json, "faces", summary.faces);
  WriteRecords(json, "loops", summary.loops);
  WriteRecords(json, "coedges", summary.coedges);
  WriteRecords(json, "shells", summary.shells);
  WriteRecords(json, "solids", summary.solids);
  WriteHistogram(json, "curveHistogram", summary.curveHistogram);
  WriteHistogram(json, "surfaceHistogram", summary.surfaceHistogram);
  json.EndObject();
  return text;
}

} // namespace Orvex
