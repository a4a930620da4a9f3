#include "collide/CollisionReport.h"

#include "collide/ReportParts.h"
#include "collision/OrvexCollisionEngine.h"
#include "frame/Failure.h"
#include "frame/Text.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <QRegularExpression>
#include <QStringList>

namespace Orvex::Cli {

namespace {

using Config = OrvexCollisionConfig;
using Results = std::vector<OrvexCollisionResult>;

struct PresetRow
{
  CollisionPreset preset;
  const char* word;
  Config (*config)();
};

constexpr PresetRow kPresets[] = {
  {CollisionPreset::Fast, "fast", &Config::createFastConfig},
  {CollisionPreset::Balanced, "balanced", &Config::createBalancedConfig},
  {CollisionPreset::Strict, "strict", &Config::createStrictConfig},
  {CollisionPreset::Accurate, "accurate", &Config::createAccurateConfig},
  {CollisionPreset::Visualization, "visualization", &Config::createVisualizationConfig},
};

const PresetRow& RowOf(CollisionPreset preset)
{
  return kPresets[static_cast<std::size_t>(preset)];
}

Config ConfigOf(const CollisionRequest& request)
{
  Config config = RowOf(request.preset).config();
  // The place of an overlap is that of its shape.
  config.computeOverlapVolume = config.keepOverlapShape = config.exactMode == 1;
  if (request.index) {
    config.spaceIndexKind =
      *request.index == CollisionIndex::Morton ? 1 : static_cast<int>(*request.index);
    config.useMortonIndex = *request.index == CollisionIndex::Morton;
  }
  if (request.timeLimitSeconds > 0)
    config.timeLimitSeconds = request.timeLimitSeconds;
  return config;
}

class NamePatterns
{
public:
  explicit NamePatterns(const std::vector<std::string>& given)
  {
    for (const std::string& pattern : given) {
      QString expression = QRegularExpression::escape(TextFromBytes(pattern));
      expression.replace(QStringLiteral("\\*"), QStringLiteral(".*"));
      expression.replace(QStringLiteral("\\?"), QStringLiteral("."));
      patterns.emplace_back(QRegularExpression::anchoredPattern(expression));
    }
  }

  bool Match(const NamedPart& part) const
  {
    for (const QRegularExpression& pattern : patterns)
      if (pattern.match(part.name).hasMatch() || pattern.match(part.path).hasMatch())
        return true;
    return false;
  }

private:
  std::vector<QRegularExpression> patterns;
};

std::vector<OrvexModelPart> ModelParts(const std::vector<NamedPart>& named,
                                       const ProgressSink& progress)
{
  std::vector<OrvexModelPart> parts;
  for (const NamedPart& part : named) {
    progress({QStringLiteral("measure"), double(parts.size()) / double(named.size())});
    parts.push_back(OrvexModelPart::fromShape(part.shape, part.name.toStdString()));
  }
  return parts;
}

// Touching parts have a common without a volume; without a common nobody knows.
const char* KindOf(const OrvexCollisionResult& result, bool isMeasured)
{
  if (!isMeasured)
    return "meeting";
  return result.overlapVolume > 0 ? "overlap" : "contact";
}

gp_Pnt CentreOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(shape, properties);
  return properties.CentreOfMass();
}

QJsonObject PairJson(const OrvexCollisionResult& result, const std::vector<NamedPart>& parts,
                     bool isMeasured)
{
  const QString kind = KindOf(result, isMeasured);
  const bool isOverlap = kind == QLatin1String("overlap");
  QJsonObject json{{"a", PartJson(parts[static_cast<std::size_t>(result.partA)])},
                   {"b", PartJson(parts[static_cast<std::size_t>(result.partB)])},
                   {"kind", kind},
                   {"inContact", result.inContact},
                   {"distance", result.distance},
                   {"volume", isMeasured ? QJsonValue(result.overlapVolume) : QJsonValue()}};
  if (isOverlap)
    json.insert("place", PointJson(CentreOf(result.overlapShape)));
  else
    json.insert("place", isMeasured ? QJsonValue(PointJson(result.pointOnA)) : QJsonValue());
  return json;
}

QJsonObject StagesJson(const OrvexCollisionTrace& trace, int proposed)
{
  const auto stage = [&trace](OrvexCollisionStage which) {
    return QJsonObject{{"cleared", trace.clearedBy(which)}, {"collided", trace.collidedAt(which)}};
  };
  return {{"proposed", proposed},
          {"box", stage(OrvexCollisionStage::Box)},
          {"mesh", stage(OrvexCollisionStage::Mesh)},
          {"exact", stage(OrvexCollisionStage::Exact)},
          {"boolean", stage(OrvexCollisionStage::Boolean)},
          {"meshedParts", trace.meshedParts},
          {"meshedShapes", trace.meshedShapes},
          {"triangles", qint64(trace.triangles)},
          {"treeBytes", qint64(trace.treeBytes)}};
}

// One run, and what of it counts.
class Report
{
public:
  Report(const CollisionRequest& request_, const ProgressSink& progress_)
      : request(request_), progress(progress_), config(ConfigOf(request)), ignored(request.ignored)
  {}

  QJsonObject Run(const std::string& overlapFile, const std::string& overlapName)
  {
    named = ReadParts(request.files, progress);
    const std::vector<OrvexModelPart> parts = ModelParts(named, progress);
    OrvexCollisionEngine engine(config, OrvexSceneStats::fromParts(parts));
    if (request.tolerance)
      engine.setFuzzyTolerance(*request.tolerance);
    trace.checkCleared = request.check || request.preset == CollisionPreset::Strict;
    progress({QStringLiteral("pairs"), -1.0});
    const Results results = engine.compute(
      parts,
      [this](int done, int all) {
        progress({QStringLiteral("pairs"), double(done) / double(all)});
      },
      &metrics, &trace);
    tolerance = std::max(1e-7, engine.fuzzyTolerance());
    for (const OrvexCollisionResult& result : results)
      Count(result);
    if (!overlapFile.empty())
      WriteShapes(overlaps, overlapFile, overlapName);
    return Json();
  }

private:
  void Count(const OrvexCollisionResult& result)
  {
    const bool isIgnored = ignored.Match(named[static_cast<std::size_t>(result.partA)]) ||
                           ignored.Match(named[static_cast<std::size_t>(result.partB)]);
    const bool isMeasured = config.exactMode == 1;
    const bool isSmall =
      request.minVolumeGiven && isMeasured && result.overlapVolume < request.minVolume;
    if (isIgnored || isSmall) {
      ++leftOut;
      return;
    }
    const QJsonObject pair = PairJson(result, named, isMeasured);
    ++kinds[pair.value("kind").toString()];
    pairs.append(pair);
    if (pair.value("kind") == "overlap")
      overlaps.push_back(result.overlapShape);
  }

  QJsonArray MissedJson() const
  {
    QJsonArray json;
    for (const OrvexMissedOverlap& missed : trace.missedOverlaps) {
      const NamedPart& a = named[static_cast<std::size_t>(missed.partA)];
      const NamedPart& b = named[static_cast<std::size_t>(missed.partB)];
      if (!ignored.Match(a) && !ignored.Match(b))
        json.append(
          QJsonObject{{"a", PartJson(a)}, {"b", PartJson(b)}, {"volume", missed.overlapVolume}});
    }
    return json;
  }

  QJsonObject Json() const
  {
    const auto count = [this](const char* kind) {
      const auto found = kinds.find(kind);
      return found == kinds.end() ? 0 : found->second;
    };
    QJsonObject json{{"files", FilesJson(request.files)},
                     {"preset", RowOf(request.preset).word},
                     {"tolerance", tolerance},
                     {"parts", metrics.partCount},
                     {"pairs", pairs},
                     {"overlaps", count("overlap")},
                     {"contacts", count("contact")},
                     {"meetings", count("meeting")},
                     {"leftOut", leftOut},
                     {"failedPairs", metrics.failedPairs},
                     {"timedOut", metrics.timedOut},
                     {"seconds", metrics.totalSeconds}};
    if (trace.checkCleared)
      json.insert("missed", MissedJson());
    if (request.explain)
      json.insert("stages", StagesJson(trace, metrics.candidatePairs));
    return json;
  }

  const CollisionRequest& request;
  const ProgressSink& progress;
  Config config;
  NamePatterns ignored;
  std::vector<NamedPart> named;
  OrvexCollisionTrace trace;
  OrvexCollisionMetrics metrics;
  double tolerance = 0;
  QJsonArray pairs;
  std::vector<TopoDS_Shape> overlaps;
  std::map<QString, int> kinds;
  int leftOut = 0;
};

QString PlaceText(const QJsonValue& place)
{
  if (!place.isArray())
    return {};
  return QStringLiteral("  at (%1, %2, %3)")
    .arg(Decimal(place[0].toDouble()), Decimal(place[1].toDouble()), Decimal(place[2].toDouble()));
}

QString NamesText(const QJsonValue& pair)
{
  return QStringLiteral("%1 — %2").arg(TerminalText(pair["a"]["path"].toString()),
                                       TerminalText(pair["b"]["path"].toString()));
}

QString PairText(const QJsonValue& pair)
{
  const QString kind = pair["kind"].toString();
  QString text = kind.leftJustified(9) + NamesText(pair);
  if (kind == QLatin1String("overlap"))
    text += QStringLiteral("  volume %1").arg(Number(pair["volume"].toDouble()));
  return text + PlaceText(pair["place"]) + QLatin1Char('\n');
}

QString SummaryText(const QJsonObject& report)
{
  QStringList counts;
  for (const auto& [key, word] :
       {std::pair{"overlaps", "overlap"}, {"contacts", "contact"}, {"meetings", "meeting"}})
    if (const int count = report.value(QLatin1String(key)).toInt(); count > 0)
      counts << Counted(count, word);
  QString text = QStringLiteral("%1: %2").arg(Counted(report.value("parts").toInt(), "part"),
                                              counts.isEmpty() ? QStringLiteral("no collisions")
                                                               : counts.join(", "));
  if (const int leftOut = report.value("leftOut").toInt(); leftOut > 0)
    text += QStringLiteral("; %1 left out").arg(leftOut);
  if (const int failed = report.value("failedPairs").toInt(); failed > 0)
    text += QStringLiteral("; %1 could not be tested").arg(Counted(failed, "pair"));
  if (report.value("timedOut").toBool())
    text += QStringLiteral("; the time limit ended it");
  return text + QStringLiteral(" (%1 s)\n").arg(Decimal(report.value("seconds").toDouble()));
}

QString StagesText(const QJsonObject& stages)
{
  QString text = QStringLiteral("%1 proposed\n").arg(Counted(stages["proposed"].toInt(), "pair"));
  for (const char* name : {"box", "mesh", "exact", "boolean"}) {
    const QJsonValue stage = stages[QLatin1String(name)];
    text += QStringLiteral("  %1 cleared %2, collided %3\n")
              .arg(QString(name).leftJustified(8))
              .arg(stage["cleared"].toInt())
              .arg(stage["collided"].toInt());
  }
  return text + QStringLiteral("  meshed   %1 (%2), %3\n")
                  .arg(Counted(stages["meshedParts"].toInt(), "part"),
                       Counted(stages["meshedShapes"].toInt(), "shape"),
                       Counted(stages["triangles"].toInt(), "triangle"));
}

QString CsvField(const QString& text)
{
  QString quoted = text;
  return QLatin1Char('"') + quoted.replace('"', QStringLiteral("\"\"")) + QLatin1Char('"');
}

QString CsvNumber(const QJsonValue& value)
{
  return value.isDouble() ? QString::number(value.toDouble(), 'g', 12) : QString();
}

} // namespace

QJsonObject Collide(const CollisionRequest& request, const std::string& overlapFile,
                    const std::string& overlapName, const ProgressSink& progress)
{
  return Report(request, progress).Run(overlapFile, overlapName);
}

QString CollisionText(const QJsonObject& report)
{
  QString text;
  for (const QJsonValue& pair : report.value("pairs").toArray())
    text += PairText(pair);
  for (const QJsonValue& pair : report.value("missed").toArray())
    text += QStringLiteral("missed   %1  volume %2\n")
              .arg(NamesText(pair), Number(pair["volume"].toDouble()));
  if (report.contains("stages"))
    text += StagesText(report.value("stages").toObject());
  return text + SummaryText(report);
}

QString CollisionCsv(const QJsonObject& report)
{
  QString text = QStringLiteral("kind,a,b,volume,distance,x,y,z\n");
  for (const QJsonValue& pair : report.value("pairs").toArray()) {
    QStringList fields{pair["kind"].toString(), CsvField(pair["a"]["path"].toString()),
                       CsvField(pair["b"]["path"].toString()), CsvNumber(pair["volume"]),
                       CsvNumber(pair["distance"])};
    for (int axis = 0; axis < 3; ++axis)
      fields << CsvNumber(pair["place"][axis]);
    text += fields.join(',') + QLatin1Char('\n');
  }
  return text;
}

} // namespace Orvex::Cli
