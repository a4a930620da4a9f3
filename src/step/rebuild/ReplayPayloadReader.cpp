#include "step/rebuild/ReplayPayloadReader.h"

#include "step/replay/StepGeometryPayloadStore.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace Orvex {

namespace {

[[noreturn]] void Refuse(const char* key, const char* expected)
{
  throw std::invalid_argument(std::string("\"").append(key).append("\" is no ").append(expected));
}

// An overload for each type of a field. They stand in a class so that each finds all others.
struct Reading
{
  static void Read(const QJsonValue& value, const char* key, double& number)
  {
    if (!value.isDouble())
      Refuse(key, "number");
    number = value.toDouble();
  }

  static void Read(const QJsonValue& value, const char* key, std::int32_t& number)
  {
    if (!value.isDouble())
      Refuse(key, "number");
    number = value.toInt();
  }

  static void Read(const QJsonValue& value, const char* key, ReplayId& id)
  {
    if (!value.isDouble() || value.toDouble() < 0)
      Refuse(key, "id");
    id = static_cast<ReplayId>(value.toInteger());
  }

  static void Read(const QJsonValue& value, const char* key, bool& flag)
  {
    if (!value.isBool())
      Refuse(key, "truth value");
    flag = value.toBool();
  }

  static void Read(const QJsonValue& value, const char* key, std::string& text)
  {
    if (!value.isString())
      Refuse(key, "text");
    text = value.toString().toStdString();
  }

  // The fields of an object; one that is missing leaves its variable as it is.
  class Fields
  {
  public:
    Fields(const QJsonValue& value, const char* key) : object(value.toObject())
    {
      if (!value.isObject())
        Refuse(key, "object");
    }

    template <typename Value>
    const Fields& operator()(const char* key, Value& value) const
    {
      if (const auto found = object.constFind(QLatin1String(key)); found != object.constEnd())
        Read(*found, key, value);
      return *this;
    }

  private:
    const QJsonObject object;
  };

  template <typename Item>
  static void Read(const QJsonValue& value, const char* key, std::vector<Item>& items)
  {
    if (!value.isArray())
      Refuse(key, "array");
    const QJsonArray array = value.toArray();
    items.reserve(static_cast<std::size_t>(array.size()));
    for (const QJsonValue item : array)
      Read(item, key, items.emplace_back());
  }

  static void Read(const QJsonValue& value, const char* key, ReplayPoint& point)
  {
    Fields(value, key)("x", point.x)("y", point.y)("z", point.z);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayUv& uv)
  {
    Fields(value, key)("u", uv.u)("v", uv.v);
  }

  template <typename Curve>
  static void ReadCurveFields(const Fields& fields, Curve& curve)
  {
    fields("kind", curve.kind)("degree", curve.degree)("firstParameter", curve.firstParameter)(
      "lastParameter", curve.lastParameter)("controlPoints", curve.controlPoints)(
      "knots", curve.knots)("multiplicities", curve.multiplicities)("weights", curve.weights)(
      "analyticParameters", curve.analyticParameters);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayCurvePayload& curve)
  {
    const Fields fields(value, key);
    fields("id", curve.id);
    ReadCurveFields(fields, curve);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayPcurvePayload& curve)
  {
    ReadCurveFields(Fields(value, key), curve);
  }

  static void Read(const QJsonValue& value, const char* key, ReplaySurfacePayload& surface)
  {
    const Fields fields(value, key);
    fields("id", surface.id)("kind", surface.kind)("degreeU", surface.degreeU)(
      "degreeV", surface.degreeV)("uMin", surface.uMin)("uMax", surface.uMax)("vMin", surface.vMin)(
      "vMax", surface.vMax)("poleRows", surface.poleRows)("poleCols", surface.poleCols);
    fields("controlPoints", surface.controlPoints)("uKnots", surface.uKnots)("vKnots",
                                                                             surface.vKnots)(
      "uMultiplicities", surface.uMultiplicities)("vMultiplicities", surface.vMultiplicities)(
      "weights", surface.weights)("analyticParameters", surface.analyticParameters)(
      "hasBasisCurve", surface.hasBasisCurve)("basisCurve", surface.basisCurve);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayCoedgePayload& coedge)
  {
    const Fields fields(value, key);
    fields("edgeId", coedge.edgeId)("startVertexId", coedge.startVertexId)(
      "endVertexId", coedge.endVertexId)("isDegenerated", coedge.isDegenerated)(
      "isSeam", coedge.isSeam)("hasStartVertexPoint", coedge.hasStartVertexPoint)(
      "hasEndVertexPoint", coedge.hasEndVertexPoint)("hasStartVertexUv", coedge.hasStartVertexUv)(
      "hasEndVertexUv", coedge.hasEndVertexUv);
    fields("startVertexPoint", coedge.startVertexPoint)("endVertexPoint", coedge.endVertexPoint)(
      "startVertexUv", coedge.startVertexUv)("endVertexUv", coedge.endVertexUv)(
      "orientation", coedge.orientation)("hasCurve3d", coedge.hasCurve3d)(
      "hasPcurve", coedge.hasPcurve)("hasSecondaryPcurve", coedge.hasSecondaryPcurve)(
      "curve3d", coedge.curve3d)("pcurve", coedge.pcurve)("secondaryPcurve",
                                                          coedge.secondaryPcurve);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayLoopPayload& loop)
  {
    Fields(value, key)("isOuter", loop.isOuter)("coedges", loop.coedges);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayFaceTrimPayload& trim)
  {
    Fields(value, key)("faceId", trim.faceId)("surfaceId", trim.surfaceId)(
      "sameSense", trim.sameSense)("uMin", trim.uMin)("uMax", trim.uMax)("vMin", trim.vMin)(
      "vMax", trim.vMax)("loops", trim.loops);
  }

  static void Read(const QJsonValue& value, const char* key, ReplayFacePayload& face)
  {
    Fields(value, key)("faceId", face.faceId)("surface", face.surface)("trim", face.trim);
  }
};

void AddFaces(const QJsonValue& value, std::vector<ReplayFacePayload>& faces)
{
  if (value.isArray()) {
    const QJsonArray array = value.toArray();
    for (const QJsonValue item : array)
      AddFaces(item, faces);
    return;
  }
  const QJsonObject object = value.toObject();
  if (object.contains("faceId"))
    Reading::Read(value, "face", faces.emplace_back());
  for (const char* key : {"shells", "faces"})
    if (object.contains(QLatin1String(key)))
      AddFaces(object.value(QLatin1String(key)), faces);
}

} // namespace

bool ReplayPayloadReader::ReadFaces(const std::string& json, std::vector<ReplayFacePayload>& faces,
                                    std::string& error)
{
  QJsonParseError problem;
  const QJsonDocument document = QJsonDocument::fromJson(
    QByteArray::fromRawData(json.data(), static_cast<qsizetype>(json.size())), &problem);
  if (problem.error != QJsonParseError::NoError) {
    error = problem.errorString().toStdString();
    return false;
  }
  std::vector<ReplayFacePayload> read;
  try {
    AddFaces(document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()),
             read);
  } catch (const std::invalid_argument& refusal) {
    error = refusal.what();
    return false;
  }
  std::move(read.begin(), read.end(), std::back_inserter(faces));
  return true;
}

bool ReplayPayloadReader::RestoreDigits(const TopoDS_Shape& exact,
                                        std::vector<ReplayFacePayload>& faces)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(exact);
  ReplaySolidPayload solid;
  if (!store.ExpandSolidPayload(1, solid))
    return false;
  std::vector<ReplayFacePayload> restored;
  for (ReplayShellPayload& shell : solid.shells)
    std::move(shell.faces.begin(), shell.faces.end(), std::back_inserter(restored));
  const auto isOfKind = [](const ReplayFacePayload& one, const ReplayFacePayload& other) {
    return one.surface.kind == other.surface.kind;
  };
  if (!std::equal(faces.begin(), faces.end(), restored.begin(), restored.end(), isOfKind))
    return false;
  for (std::size_t at = 0; at < faces.size(); ++at)
    restored[at].faceId = restored[at].surface.id = restored[at].trim.faceId =
      restored[at].trim.surfaceId = faces[at].faceId;
  faces = std::move(restored);
  return true;
}

} // namespace Orvex
