#include "features/internal/SubShapeReferences.h"

#include "features/internal/FeatureRelations.h"
#include "kernel/internal/BrepText.h"

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
#include <optional>
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

double Squared(const gp_XYZ& from, const gp_XYZ& to)
{
  return (from - to).SquareModulus();
}

double Penalty(int kind, int storedKind)
{
  return kind == storedKind ? 0.0 : kOtherKindPenalty;
}

int KindIn(const QVariantMap& reference, const QString& key)
{
  constexpr int kNoKind = -1;
  return reference.contains(key) ? reference.value(key).toInt() : kNoKind;
}

// Whatever the kernel throws means that there is nothing to measure.
template <typename Measures, typename Measure>
std::optional<Measures> Measured(Measure&& measure)
{
  try {
    return measure();
  } catch (...) {
    return std::nullopt;
  }
}

// The fingerprint of an edge.
struct EdgeMeasures
{
  int curveType;
  double length;
  gp_XYZ mid, start, end;

  static std::optional<EdgeMeasures> Of(const TopoDS_Shape& edge)
  {
    return Measured<EdgeMeasures>([&]() -> std::optional<EdgeMeasures> {
      if (edge.IsNull())
        return std::nullopt;
      TopoDS_Vertex from, to;
      TopExp::Vertices(TopoDS::Edge(edge), from, to, false);
      if (from.IsNull() || to.IsNull())
        return std::nullopt;
      const BRepAdaptor_Curve curve(TopoDS::Edge(edge));
      const double first = curve.FirstParameter(), last = curve.LastParameter();
      return EdgeMeasures{static_cast<int>(curve.GetType()),
                          GCPnts_AbscissaPoint::Length(curve, first, last, kLengthTolerance),
                          curve.Value((first + last) * 0.5).XYZ(), BRep_Tool::Pnt(from).XYZ(),
                          BRep_Tool::Pnt(to).XYZ()};
    });
  }

  static EdgeMeasures In(const QVariantMap& reference)
  {
    return {KindIn(reference, kCurveTypeKey), reference.value(kLengthKey).toDouble(),
            kMid.Read(reference), kStart.Read(reference), kEnd.Read(reference)};
  }

  void Write(QVariantMap& reference) const
  {
    reference[kCurveTypeKey] = curveType;
    reference[kLengthKey] = length;
    kMid.Write(mid, reference);
    kStart.Write(start, reference);
    kEnd.Write(end, reference);
  }

  // Whichever way the edge runs.
  double DistanceTo(const EdgeMeasures& stored) const
  {
    const double same = Squared(start, stored.start) + Squared(end, stored.end);
    const double swapped = Squared(start, stored.end) + Squared(end, stored.start);
    return Penalty(curveType, stored.curveType) + std::min(same, swapped) +
           Squared(mid, stored.mid) + std::abs(length - stored.length);
  }
};

// The fingerprint of a face; the normal is that of a plane, whatever the face's orientation.
struct FaceMeasures
{
  int surfaceType;
  double area;
  gp_XYZ center;
  std::optional<gp_XYZ> normal;

  static std::optional<FaceMeasures> Of(const TopoDS_Shape& face)
  {
    return Measured<FaceMeasures>([&]() -> std::optional<FaceMeasures> {
      if (face.IsNull())
        return std::nullopt;
      const BRepAdaptor_Surface surface(TopoDS::Face(face), true);
      GProp_GProps properties;
      BRepGProp::SurfaceProperties(face, properties, false, false);
      FaceMeasures measures{static_cast<int>(surface.GetType()), properties.Mass(),
                            properties.CentreOfMass().XYZ(), std::nullopt};
      if (surface.GetType() == GeomAbs_Plane)
        measures.normal = surface.Plane().Axis().Direction().XYZ();
      return measures;
    });
  }

  static FaceMeasures In(const QVariantMap& reference)
  {
    FaceMeasures stored{KindIn(reference, kSurfaceTypeKey), reference.value(kAreaKey).toDouble(),
                        kCenter.Read(reference), std::nullopt};
    if (reference.contains(kNormal.x))
      stored.normal = kNormal.Read(reference);
    return stored;
  }

  void Write(QVariantMap& reference) const
  {
    reference[kSurfaceTypeKey] = surfaceType;
    reference[kAreaKey] = area;
    kCenter.Write(center, reference);
    if (normal)
      kNormal.Write(*normal, reference);
  }

  double DistanceTo(const FaceMeasures& stored) const
  {
    return Penalty(surfaceType, stored.surfaceType) + std::abs(area - stored.area) +
           Squared(center, stored.center) +
           (normal && stored.normal ? Squared(*normal, *stored.normal) : 0.0);
  }
};

// One kind of sub-shape, with what sets it apart.
struct ReferenceKind
{
  TopAbs_ShapeEnum shapeType;
  QString indexKey, indicesKey, referencesKey;
  QStringList neededKeys;
  bool (*fingerprint)(const TopoDS_Shape&, QVariantMap&);
  int (*resolve)(const TopTools_IndexedMapOfShape&, const QVariantMap&);
};

const ReferenceKind kEdges = {TopAbs_EDGE,
                              QStringLiteral("edgeIndex"),
                              QStringLiteral("edgeIndices"),
                              QStringLiteral("edgeRefs"),
                              {kMid.x, kStart.x, kEnd.x},
                              &FingerprintEdge,
                              &ResolveEdgeRef};
const ReferenceKind kFaces = {TopAbs_FACE,
                              QStringLiteral("faceIndex"),
                              QStringLiteral("faceIndices"),
                              QStringLiteral("faceRefs"),
                              {kSurfaceTypeKey, kAreaKey},
                              &FingerprintFace,
                              &ResolveFaceRef};

// A text is a list of its characters to QVariant::toList.
QVariantList ListIn(const FeatureParameters& parameters, const QString& key)
{
  const QVariant value = parameters.value(key);
  const bool isText =
    value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray;
  return !isText && value.canConvert<QVariantList>() ? value.toList() : QVariantList();
}

// A whole number that an int holds, in whatever type; -1 for anything else.
int IndexOf(const QVariant& value)
{
  bool isNumber = false;
  const double number = value.toDouble(&isNumber);
  const bool isIndex = isNumber && number >= 0 && number <= std::numeric_limits<int>::max() &&
                       number == std::floor(number);
  return isIndex ? static_cast<int>(number) : -1;
}

int IndexIn(const QVariantMap& reference, const ReferenceKind& kind)
{
  return IndexOf(reference.value(kind.indexKey));
}

TopTools_IndexedMapOfShape SubShapesOf(const TopoDS_Shape& shape, const ReferenceKind& kind)
{
  TopTools_IndexedMapOfShape map;
  TopExp::MapShapes(shape, kind.shapeType, map);
  return map;
}

// The largest double for a candidate that cannot be measured.
template <typename Measures>
double ScoreOf(const TopoDS_Shape& candidate, const Measures& stored)
{
  const std::optional<Measures> measured = Measures::Of(candidate);
  return measured ? measured->DistanceTo(stored) : kWorstScore;
}

template <typename Measures>
int Resolve(const TopTools_IndexedMapOfShape& candidates, const QVariantMap& reference,
            const ReferenceKind& kind)
{
  int best = IndexIn(reference, kind);
  const bool canBeMatched =
    std::all_of(kind.neededKeys.begin(), kind.neededKeys.end(),
                [&](const QString& key) { return reference.contains(key); });
  if (!canBeMatched)
    return best;
  const Measures stored = Measures::In(reference);
  double bestScore = kWorstScore;
  for (int index = 0; index < candidates.Extent(); ++index) {
    const double score = ScoreOf(candidates(index + 1), stored);
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
  for (const QVariant& value : indices)
    if (const int index = IndexOf(value); index >= 0)
      selected.insert(index);
  if (!indices.isEmpty())
    return selected;
  for (const QVariant& reference : ListIn(parameters, kind.referencesKey))
    if (const int index = kind.resolve(map, reference.toMap()); index >= 0)
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

template <typename Measures>
bool Fingerprint(const TopoDS_Shape& shape, QVariantMap& reference)
{
  const std::optional<Measures> measured = Measures::Of(shape);
  if (measured)
    measured->Write(reference);
  return measured.has_value();
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
  return Fingerprint<EdgeMeasures>(edge, reference);
}

bool FingerprintFace(const TopoDS_Shape& face, QVariantMap& reference)
{
  return Fingerprint<FaceMeasures>(face, reference);
}

double ScoreEdge(const TopoDS_Shape& edge, const QVariantMap& reference)
{
  return ScoreOf(edge, EdgeMeasures::In(reference));
}

double ScoreFace(const TopoDS_Shape& face, const QVariantMap& reference)
{
  return ScoreOf(face, FaceMeasures::In(reference));
}

int ResolveEdgeRef(const TopTools_IndexedMapOfShape& edges, const QVariantMap& reference)
{
  return Resolve<EdgeMeasures>(edges, reference, kEdges);
}

int ResolveFaceRef(const TopTools_IndexedMapOfShape& faces, const QVariantMap& reference)
{
  return Resolve<FaceMeasures>(faces, reference, kFaces);
}

} // namespace Orvex
