#include "analyse/CompareRecord.h"

#include "analysis/ShapeEquivalenceAnalyzer.h"
#include "frame/Text.h"
#include "model/PartList.h"

#include <QJsonArray>

namespace Orvex::Cli {

namespace {

QJsonObject MetricsJson(const std::string& path, bool valid, const ShapeEquivalenceMetrics& metrics)
{
  const ShapeTopologyCounts& counts = metrics.topology;
  return {{"file", TextFromBytes(path)},
          {"valid", valid},
          {"volume", metrics.volume},
          {"area", metrics.area},
          {"box", QJsonArray{metrics.xMin, metrics.yMin, metrics.zMin, metrics.xMax, metrics.yMax,
                             metrics.zMax}},
          {"solids", counts.solids},
          {"shells", counts.shells},
          {"faces", counts.faces},
          {"wires", counts.wires},
          {"edges", counts.edges},
          {"vertices", counts.vertices}};
}

QString Row(const QString& name, const QString& source, const QString& candidate,
            const QString& verdict)
{
  constexpr int kName = 10, kValue = 22;
  QString row = QStringLiteral("  %1%2  %3  %4")
                  .arg(name.leftJustified(kName), source.leftJustified(kValue),
                       candidate.leftJustified(kValue), verdict);
  while (row.endsWith(QLatin1Char(' ')))
    row.chop(1);
  return row + QLatin1Char('\n');
}

bool IsCompared(const QJsonObject& compared, const char* what)
{
  return compared["compared"].toArray().contains(QLatin1String(what));
}

QString Verdict(const QJsonObject& compared, const char* what, const char* failure,
                const char* measure)
{
  if (!IsCompared(compared, what))
    return QStringLiteral("not compared");
  const bool differs = compared["failures"].toArray().contains(QLatin1String(failure));
  return QStringLiteral("%1  %2").arg(differs ? QStringLiteral("differs") : QStringLiteral("same"),
                                      Number(compared[QLatin1String(measure)].toDouble()));
}

QString SizeOf(const QJsonObject& metrics)
{
  const QJsonArray box = metrics["box"].toArray();
  QStringList sizes;
  for (int axis = 0; axis < 3; ++axis)
    sizes.append(Decimal(box[axis + 3].toDouble() - box[axis].toDouble()));
  return sizes.join(QStringLiteral(" x "));
}

} // namespace

QJsonObject CompareModels(const std::string& source, const std::string& candidate,
                          const ShapeEquivalenceOptions& options, const ProgressSink& progress)
{
  const TopoDS_Shape first = ReadWhole(source, progress);
  const TopoDS_Shape second = ReadWhole(candidate, progress);
  progress({QStringLiteral("compare"), -1.0});
  const ShapeEquivalenceReport report = ShapeEquivalenceAnalyzer::Compare(first, second, options);
  QJsonArray failures;
  for (const std::string& failure : report.failures)
    failures.append(TextFromBytes(failure));
  QJsonArray compared;
  for (const auto& [what, isCompared] : {std::pair{"volume", options.checkVolume},
                                         {"area", options.checkArea},
                                         {"box", options.checkBoundingBox},
                                         {"topology", options.checkTopology}})
    if (isCompared)
      compared.append(QLatin1String(what));
  return {{"equivalent", report.equivalent},
          {"compared", compared},
          {"failures", failures},
          {"volumeError", report.volumeRelativeError},
          {"areaError", report.areaRelativeError},
          {"boxDeviation", report.bboxMaxDeviation},
          {"source", MetricsJson(source, report.sourceValid, report.source)},
          {"candidate", MetricsJson(candidate, report.candidateValid, report.candidate)}};
}

QString CompareText(const QJsonObject& compared)
{
  const QJsonObject source = compared["source"].toObject(),
                    candidate = compared["candidate"].toObject();
  const auto validity = [](const QJsonObject& metrics) {
    return metrics["valid"].toBool() ? QStringLiteral("valid") : QStringLiteral("not valid");
  };
  const auto number = [](const QJsonObject& metrics, const char* key) {
    return Number(metrics[QLatin1String(key)].toDouble());
  };
  QString text = compared["equivalent"].toBool() ? QStringLiteral("equivalent\n")
                                                 : QStringLiteral("different\n");
  text += Row({}, TerminalText(source["file"].toString()),
              TerminalText(candidate["file"].toString()), {});
  text += Row(QStringLiteral("topology"), validity(source), validity(candidate), {});
  text += Row(QStringLiteral("volume"), number(source, "volume"), number(candidate, "volume"),
              Verdict(compared, "volume", "volume_mismatch", "volumeError"));
  text += Row(QStringLiteral("area"), number(source, "area"), number(candidate, "area"),
              Verdict(compared, "area", "area_mismatch", "areaError"));
  text += Row(QStringLiteral("box"), SizeOf(source), SizeOf(candidate),
              Verdict(compared, "box", "bbox_mismatch", "boxDeviation"));
  for (const char* count : {"solids", "shells", "faces", "wires", "edges", "vertices"})
    text += Row(TextFromBytes(count), number(source, count), number(candidate, count),
                !IsCompared(compared, "topology") ? QStringLiteral("not compared")
                : source[QLatin1String(count)] == candidate[QLatin1String(count)]
                  ? QStringLiteral("same")
                  : QStringLiteral("differs"));
  return text;
}

} // namespace Orvex::Cli
