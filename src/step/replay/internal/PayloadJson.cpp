#include "step/replay/internal/PayloadJson.h"

namespace Orvex {

namespace {

void Write(JsonWriter& json, const ReplayPoint& point);
void Write(JsonWriter& json, const ReplayUv& uv);
void Write(JsonWriter& json, const ReplayPcurvePayload& pcurve);
void Write(JsonWriter& json, const ReplayCoedgePayload& coedge);
void Write(JsonWriter& json, const ReplayLoopPayload& loop);

template <typename Record>
void WriteField(JsonWriter& json, std::string_view key, const Record& record)
{
  json.Key(key);
  Write(json, record);
}

template <typename Record>
void WriteArray(JsonWriter& json, std::string_view key, const std::vector<Record>& records)
{
  json.ArrayField(key, records, [&json](const Record& record) { Write(json, record); });
}

void Write(JsonWriter& json, const ReplayPoint& point)
{
  json.BeginObject();
  json.Field("x", point.x);
  json.Field("y", point.y);
  json.Field("z", point.z);
  json.EndObject();
}

void Write(JsonWriter& json, const ReplayUv& uv)
{
  json.BeginObject();
  json.Field("u", uv.u);
  json.Field("v", uv.v);
  json.EndObject();
}

// What curves in space and on surfaces have in common.
template <typename Curve>
void WriteCurveFields(JsonWriter& json, const Curve& curve)
{
  json.Field("kind", curve.kind);
  json.Field("degree", curve.degree);
  json.Field("firstParameter", curve.firstParameter);
  json.Field("lastParameter", curve.lastParameter);
  WriteArray(json, "controlPoints", curve.controlPoints);
  json.Field("knots", curve.knots);
  json.Field("multiplicities", curve.multiplicities);
  json.Field("weights", curve.weights);
  json.Field("analyticParameters", curve.analyticParameters);
}

void Write(JsonWriter& json, const ReplayPcurvePayload& pcurve)
{
  json.BeginObject();
  WriteCurveFields(json, pcurve);
  json.EndObject();
}

// Nearly every coedge ends with it.
const std::string& AbsentPcurve()
{
  static const std::string absent = [] {
    std::string text;
    JsonWriter json(text);
    Write(json, ReplayPcurvePayload());
    return text;
  }();
  return absent;
}

template <typename Record>
void WriteBounds(JsonWriter& json, const Record& record)
{
  json.Field("uMin", record.uMin);
  json.Field("uMax", record.uMax);
  json.Field("vMin", record.vMin);
  json.Field("vMax", record.vMax);
}

void WriteEnds(JsonWriter& json, const ReplayCoedgePayload& coedge)
{
  json.Field("hasStartVertexPoint", coedge.hasStartVertexPoint);
  json.Field("hasEndVertexPoint", coedge.hasEndVertexPoint);
  json.Field("hasStartVertexUv", coedge.hasStartVertexUv);
  json.Field("hasEndVertexUv", coedge.hasEndVertexUv);
  WriteField(json, "startVertexPoint", coedge.startVertexPoint);
  WriteField(json, "endVertexPoint", coedge.endVertexPoint);
  WriteField(json, "startVertexUv", coedge.startVertexUv);
  WriteField(json, "endVertexUv", coedge.endVertexUv);
}

void Write(JsonWriter& json, const ReplayCoedgePayload& coedge)
{
  json.BeginObject();
  json.Field("edgeId", coedge.edgeId);
  json.Field("startVertexId", coedge.startVertexId);
  json.Field("endVertexId", coedge.endVertexId);
  json.Field("isDegenerated", coedge.isDegenerated);
  json.Field("isSeam", coedge.isSeam);
  WriteEnds(json, coedge);
  json.Field("orientation", coedge.orientation);
  json.Field("hasCurve3d", coedge.hasCurve3d);
  json.Field("hasPcurve", coedge.hasPcurve);
  json.Field("hasSecondaryPcurve", coedge.hasSecondaryPcurve);
  json.Key("curve3d");
  WritePayload(json, coedge.curve3d);
  WriteField(json, "pcurve", coedge.pcurve);
  json.Key("secondaryPcurve");
  if (coedge.hasSecondaryPcurve)
    Write(json, coedge.secondaryPcurve);
  else
    json.Raw(AbsentPcurve());
  json.EndObject();
}

void Write(JsonWriter& json, const ReplayLoopPayload& loop)
{
  json.BeginObject();
  json.Field("isOuter", loop.isOuter);
  WriteArray(json, "coedges", loop.coedges);
  json.EndObject();
}

void WriteBasisCurve(JsonWriter& json, const ReplaySurfacePayload& surface)
{
  json.Field("hasBasisCurve", surface.hasBasisCurve);
  json.Key("basisCurve");
  if (surface.hasBasisCurve)
    WritePayload(json, surface.basisCurve);
  else
    json.Raw("{}");
}

} // namespace

void WritePayload(JsonWriter& json, const ReplayCurvePayload& curve)
{
  json.BeginObject();
  json.Field("id", curve.id);
  WriteCurveFields(json, curve);
  json.EndObject();
}

void WritePayload(JsonWriter& json, const ReplaySurfacePayload& surface)
{
  json.BeginObject();
  json.Field("id", surface.id);
  json.Field("kind", surface.kind);
  json.Field("degreeU", surface.degreeU);
  json.Field("degreeV", surface.degreeV);
  WriteBounds(json, surface);
  json.Field("poleRows", surface.poleRows);
  json.Field("poleCols", surface.poleCols);
  WriteArray(json, "controlPoints", surface.controlPoints);
  json.Field("uKnots", surface.uKnots);
  json.Field("vKnots", surface.vKnots);
  json.Field("uMultiplicities", surface.uMultiplicities);
  json.Field("vMultiplicities", surface.vMultiplicities);
  json.Field("weights", surface.weights);
  json.Field("analyticParameters", surface.analyticParameters);
  WriteBasisCurve(json, surface);
  json.EndObject();
}

void WritePayload(JsonWriter& json, const ReplayFaceTrimPayload& trim)
{
  json.BeginObject();
  json.Field("faceId", trim.faceId);
  json.Field("surfaceId", trim.surfaceId);
  json.Field("sameSense", trim.sameSense);
  WriteBounds(json, trim);
  WriteArray(json, "loops", trim.loops);
  json.EndObject();
}

void WriteFacePayload(JsonWriter& json, const ReplaySurfacePayload& surface,
                      const ReplayFaceTrimPayload& trim)
{
  json.BeginObject();
  json.Field("faceId", trim.faceId);
  json.Key("surface");
  WritePayload(json, surface);
  json.Key("trim");
  WritePayload(json, trim);
  json.EndObject();
}

} // namespace Orvex
