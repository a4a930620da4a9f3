#include "features/internal/SubShapeReferences.h"

#include "features/internal/BrepText.h"
#include "features/internal/FeatureRelations.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <QVariantList>
#include <TopExp.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace Orvex {

namespace {

constexpr double kWorstScore = std::numeric_limits<double>::max();
constexpr double kOtherKindPenalty = 1e9;
constexpr double kLengthTolerance = 1e-7;

// The three keys of a point or direction.
struct TripleKeys
{
  QString x, y, z;

  explicit TripleKeys(const char* stem)
      : x(QLatin1String(stem) + u'X'), y(QLatin1String(stem) + u'Y'), z(QLatin1String(stem) + u'Z')
  {}

  void Write(const gp_XYZ& value, QVariantMap& reference) const
  {
    reference[x] = value.X();
    reference[y] = value.Y();
    reference[z] = value.Z();
  }

  // What is missing is 0.
  gp_XYZ Read(const QVariantMap& reference) const
  {
    return {reference.value(x).toDouble(), reference.value(y).toDouble(),
            reference.value(z).toDouble()};
  }
};

const TripleKeys kMid("mid"), kStart("start"), kEnd("end"), kCenter("center"), kNormal("normal");
const QString kCurveTypeKey = QStringLiteral("curveType");
const QString kLengthKey = QStringLiteral("length");
const QString kSurfaceTypeKey = QStringLiteral("surfaceType");
const QString kAreaKey = QStringLiteral("area");
const QString kSpecsKey = QStringLiteral("edgeRadiusSpecs");

// One kind of sub-shape, with what sets it apart.
struct ReferenceKind
{
  TopAbs_ShapeEnum shapeType;
  QString indexKey, indicesKey, referencesKey;
  QStringList neededKeys;
  bool (*fingerprint)(const TopoDS_Shape&, QVariantMap&);
  double (*score)(const TopoDS_Shape&, const QVariantMap&);
};

const ReferenceKind kEdges = {TopAbs_EDGE,
                              QStringLiteral("edgeIndex"),
                              QStringLiteral("edgeIndices"),
                              QStringLiteral("edgeRefs"),
                              {kMid.x, kStart.x, kEnd.x},
                              &FingerprintEdge,
                              &ScoreEdge};
const ReferenceKind kFaces = {TopAbs_FACE,
                              QStringLiteral("faceIndex"),
                              QStringLiteral("faceIndices"),
                              QStringLiteral("faceRefs"),
                              {kSurfaceTypeKey, kAreaKey},
                              &FingerprintFace,
                              &ScoreFace};

// A text is a list of its characters to QVariant::toList.
QVariantList ListIn(const FeatureParameters& parameters, const QString& key)
{
  const QVariant value = parameters.value(key);
  const bool isText =
    value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray;
  return !isText && value.canConvert<QVariantList>() ? value.toList() : QVariantList();
}

int IndexIn(const QVariantMap& reference, const ReferenceKind& kind)
{
  bool isNumber = false;
  const int index = reference.value(kind.indexKey).toInt(&isNumber);
  return isNumber ? index : -1;
}

TopTools_IndexedMapOfShape SubShapesOf(const TopoDS_Shape& shape, const ReferenceKind& kind)
{
  TopTools_IndexedMapOfShape map;
  TopExp::MapShapes(shape, kind.shapeType, map);
  return map;
}

double PenaltyForKind(const QVariantMap& candidate, const QVariantMap& reference, const QString& key)
{
  constexpr int kNoneStored = -1, kNoneMeasured = -2;
  const int stored = reference.contains(key) ? reference.value(key).toInt() : kNoneStored;
  const int measured = candidate.contains(key) ? candidate.value(key).toInt() : kNoneMeasured;
  return stored == measured ? 0.0 : kOtherKindPenalty;
}

double Distance(const TripleKeys& one, const QVariantMap& left, const TripleKeys& other,
                const QVariantMap& right)
{
  return (one.Read(left) - other.Read(right)).SquareModulus();
}

double Difference(const QString& key, const QVariantMap& left, const QVariantMap& right)
{
  return std::abs(left.value(key).toDouble() - right.value(key).toDouble());
}

int Resolve(const TopTools_IndexedMapOfShape& candidates, const QVariantMap& reference,
            const ReferenceKind& kind)
{
  int best = IndexIn(reference, kind);
  const bool canBeMatched =
    std::all_of(kind.neededKeys.begin(), kind.neededKeys.end(),
                [&](const QString& key) { return reference.contains(key); });
  if (!canBeMatched)
    return best;
  double bestScore = kWorstScore;
  for (int index = 0; index < candidates.Extent(); ++index) {
    const double score = kind.score(candidates(index + 1), reference);
    if (score < bestScore) {
      bestScore = score;
      best = index;
    }
  }
  return best;
}

// The given indices; without any, what the references lead to. Each once, ascending.
std::set<int> SelectedIndices(const FeatureParameters& parameters,
                              const TopTools_IndexedMapOfShape& map, const ReferenceKind& kind)
{
  std::set<int> selected;
  const QVariantList indices = ListIn(parameters, kind.indicesKey);
  for (const QVariant& value : indices) {
    bool isNumber = false;
    if (const int index = value.toInt(&isNumber); isNumber && index >= 0)
      selected.insert(index);
  }
  if (!indices.isEmpty())
    return selected;
  for (const QVariant& reference : ListIn(parameters, kind.referencesKey))
    if (const int index = Resolve(map, reference.toMap(), kind); index >= 0)
      selected.insert(index);
  return selected;
}

FeatureParameters RefreshSelection(FeatureParameters parameters, const TopoDS_Shape& shape,
                                   const ReferenceKind& kind)
{
  const TopTools_IndexedMapOfShape map = SubShapesOf(shape, kind);
  QVariantList indices, references;
  for (const int index : SelectedIndices(parameters, map, kind)) {
    if (index >= map.Extent())
      continue;
    indices.append(index);
    QVariantMap reference{{kind.indexKey, index}};
    if (kind.fingerprint(map(index + 1), reference))
      references.append(reference);
  }
  parameters[kind.indicesKey] = indices;
  parameters[kind.referencesKey] = references;
  return parameters;
}

FeatureParameters RefreshEdgeSpecs(FeatureParameters parameters, const TopoDS_Shape& shape)
{
  const TopTools_IndexedMapOfShape edges = SubShapesOf(shape, kEdges);
  QVariantList specs;
  for (const QVariant& value : ListIn(parameters, kSpecsKey)) {
    QVariantMap spec = value.toMap();
    int index = IndexIn(spec, kEdges);
    if (index < 0)
      index = ResolveEdgeRef(edges, spec);
    if (index < 0 || index >= edges.Extent())
      continue;
    spec[kEdges.indexKey] = index;
    FingerprintEdge(edges(index + 1), spec);
    specs.append(spec);
  }
  parameters[kSpecsKey] = specs;
  return parameters;
}

// Runs a measurement that may throw anything, on a copy.
template <typename Measure>
bool Fingerprinted(QVariantMap& reference, Measure&& measure)
{
  QVariantMap measured = reference;
  try {
    if (!measure(measured))
      return false;
  } catch (...) {
    return false;
  }
  reference = std::move(measured);
  return true;
}

} // namespace

FeatureParameters RefreshReferences(const std::string& type, const FeatureParameters& parameters)
{
  const bool isFillet = type == "Fillet", isChamfer = type == "Chamfer";
  const bool isOnFaces = type == "Shell" || type == "Draft";
  if ((!isFillet && !isChamfer && !isOnFaces) || !parameters.contains(kSourceBrepKey))
    return parameters;
  const TopoDS_Shape shape = ParseSourceBrep(parameters.value(kSourceBrepKey));
  if (shape.IsNull())
    return parameters;
  return isFillet ? RefreshEdgeSpecs(parameters, shape)
                  : RefreshSelection(parameters, shape, isChamfer ? kEdges : kFaces);
}

TopoDS_Shape ParseSourceBrep(const QVariant& source)
{
  return ShapeOfBrepText(source.toString().toStdString());
}

bool FingerprintEdge(const TopoDS_Shape& edge, QVariantMap& reference)
{
  return Fingerprinted(reference, [&](QVariantMap& measured) {
    if (edge.IsNull())
      return false;
    TopoDS_Vertex start, end;
    TopExp::Vertices(TopoDS::Edge(edge), start, end, false);
    if (start.IsNull() || end.IsNull())
      return false;
    const BRepAdaptor_Curve curve(TopoDS::Edge(edge));
    const double first = curve.FirstParameter(), last = curve.LastParameter();
    measured[kCurveTypeKey] = static_cast<int>(curve.GetType());
    measured[kLengthKey] = GCPnts_AbscissaPoint::Length(curve, first, last, kLengthTolerance);
    kMid.Write(curve.Value((first + last) * 0.5).XYZ(), measured);
    kStart.Write(BRep_Tool::Pnt(start).XYZ(), measured);
    kEnd.Write(BRep_Tool::Pnt(end).XYZ(), measured);
    return true;
  });
}

bool FingerprintFace(const TopoDS_Shape& face, QVariantMap& reference)
{
  return Fingerprinted(reference, [&](QVariantMap& measured) {
    if (face.IsNull())
      return false;
    const BRepAdaptor_Surface surface(TopoDS::Face(face), true);
    GProp_GProps properties;
    BRepGProp::SurfaceProperties(face, properties, false, false);
    measured[kSurfaceTypeKey] = static_cast<int>(surface.GetType());
    measured[kAreaKey] = properties.Mass();
    kCenter.Write(properties.CentreOfMass().XYZ(), measured);
    if (surface.GetType() == GeomAbs_Plane)
      kNormal.Write(surface.Plane().Axis().Direction().XYZ(), measured);
    return true;
  });
}

double ScoreEdge(const TopoDS_Shape& edge, const QVariantMap& reference)
{
  QVariantMap candidate;
  if (!FingerprintEdge(edge, candidate))
    return kWorstScore;
  const double same = Distance(kStart, candidate, kStart, reference) +
                      Distance(kEnd, candidate, kEnd, reference);
  const double swapped = Distance(kStart, candidate, kEnd, reference) +
                         Distance(kEnd, candidate, kStart, reference);
  return PenaltyForKind(candidate, reference, kCurveTypeKey) + std::min(same, swapped) +
         Distance(kMid, candidate, kMid, reference) + Difference(kLengthKey, candidate, reference);
}

double ScoreFace(const TopoDS_Shape& face, const QVariantMap& reference)
{
  QVariantMap candidate;
  if (!FingerprintFace(face, candidate))
    return kWorstScore;
  const bool bothHaveNormals = candidate.contains(kNormal.x) && reference.contains(kNormal.x);
  return PenaltyForKind(candidate, reference, kSurfaceTypeKey) +
         Difference(kAreaKey, candidate, reference) +
         Distance(kCenter, candidate, kCenter, reference) +
         (bothHaveNormals ? Distance(kNormal, candidate, kNormal, reference) : 0.0);
}

int ResolveEdgeRef(const TopTools_IndexedMapOfShape& edges, const QVariantMap& reference)
{
  return Resolve(edges, reference, kEdges);
}

int ResolveFaceRef(const TopTools_IndexedMapOfShape& faces, const QVariantMap& reference)
{
  return Resolve(faces, reference, kFaces);
}

} // namespace Orvex
