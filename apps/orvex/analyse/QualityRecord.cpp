#include "analyse/QualityRecord.h"

#include "analysis/SurfaceQualityAnalyzer.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "model/PartList.h"

#include <QJsonArray>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace Orvex::Cli {

namespace {

constexpr int kAll = std::numeric_limits<int>::max();

// Samples as rows of numbers, and which column the figures are about.
struct QualityTable
{
  std::vector<const char*> columns;
  std::vector<std::vector<double>> rows;
  std::size_t valueColumn = 0;
  // Beyond what can be told from the values.
  QJsonObject facts = {};
};

using Analyse = QualityTable (*)(const TopoDS_Shape& shape, const QualityRequest& request);

QualityTable MapTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  const bool zebra = request.kind == QualityKind::Zebra;
  QualityTable table{{"face", "u", "v", "gaussian", "mean", "zebra"}, {}, zebra ? 5U : 4U};
  int number = 0;
  for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
    ++number;
    const TopoDS_Face& face = TopoDS::Face(faces.Current());
    const SurfaceQualityReport report =
      zebra ? SurfaceQualityAnalyzer::AnalyzeZebraMap(face, request.direction, request.grid,
                                                      request.grid, request.frequency)
            : SurfaceQualityAnalyzer::AnalyzeCurvatureMap(face, request.grid, request.grid);
    for (const SurfaceQualitySample& at : report.samples)
      table.rows.push_back(
        {double(number), at.u, at.v, at.gaussianCurvature, at.meanCurvature, at.zebraValue});
  }
  return table;
}

// With a requirement that nothing fulfils, every sample is told.
QualityTable DraftTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  constexpr double kBeyondAll = 91;
  QualityTable table{{"face", "u", "v", "degrees"}, {}, 3};
  const auto all = SurfaceQualityAnalyzer::AnalyzeDraft(shape, request.direction, kBeyondAll,
                                                        request.grid, request.grid, kAll);
  int violations = 0;
  for (const DraftHotspot& at : all.hotspots) {
    table.rows.push_back({double(at.face), at.u, at.v, at.angleDegrees});
    violations += at.angleDegrees + 1e-9 < std::max(request.minAngleDegrees, 0.0);
  }
  table.facts = {{"required", request.minAngleDegrees},
                 {"violations", violations},
                 {"passes", all.valid && violations == 0}};
  return table;
}

QualityTable MeasureTable(const MeasureAnalysisReport& report)
{
  QualityTable table{{"face", "u", "v", "x", "y", "z", "value"}, {}, 6};
  for (const MeasureHotspot& at : report.hotspots)
    table.rows.push_back(
      {double(at.face), at.u, at.v, at.point.X(), at.point.Y(), at.point.Z(), at.value});
  return table;
}

QualityTable MinRadiusTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  return MeasureTable(SurfaceQualityAnalyzer::AnalyzeMinRadius(shape, request.grid, kAll));
}

QualityTable ThicknessTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  return MeasureTable(SurfaceQualityAnalyzer::AnalyzeThickness(shape, request.grid, kAll));
}

QualityTable ReflectionTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  QualityTable table{{"u", "v", "x", "y", "z", "checker", "rx", "ry", "rz"}, {}, 5};
  const auto report = SurfaceQualityAnalyzer::AnalyzeEnvironmentReflection(
    shape, request.direction, request.grid, request.grid, request.tileSize);
  for (const EnvironmentReflectionSample& at : report.values)
    table.rows.push_back({at.u, at.v, at.point.X(), at.point.Y(), at.point.Z(), at.checkerValue,
                          at.reflectionX, at.reflectionY, at.reflectionZ});
  return table;
}

QualityTable ContinuityTable(const TopoDS_Shape& shape, const QualityRequest& request)
{
  QualityTable table{{"pair", "level", "degrees", "curvatureDifference"}, {}, 2};
  int number = 0;
  std::array<int, 3> levels{};
  for (const SurfaceContinuityMetrics& pair :
       SurfaceQualityAnalyzer::EvaluateAdjacencyContinuity(shape, request.tolerance)) {
    ++number;
    if (!pair.valid)
      continue;
    ++levels[static_cast<std::size_t>(std::clamp(pair.level, 0, 2))];
    table.rows.push_back(
      {double(number), double(pair.level), pair.normalAngleDegrees, pair.curvatureDifference});
  }
  table.facts = {{"pairs", number}, {"G0", levels[0]}, {"G1", levels[1]}, {"G2", levels[2]}};
  return table;
}

struct QualityRow
{
  const char* word;
  const char* quantity;
  Analyse analyse;
  // When there is nothing to sample.
  const char* advice;
};

constexpr const char* kNoFace = "it takes faces of some size";

const QualityRow& RowOf(QualityKind kind)
{
  static const std::map<QualityKind, QualityRow> rows = {
    {QualityKind::Curvature, {"curvature", "mean curvature", MapTable, kNoFace}},
    {QualityKind::Zebra, {"zebra", "stripe", MapTable, kNoFace}},
    {QualityKind::Draft, {"draft", "draft angle in degrees", DraftTable, kNoFace}},
    {QualityKind::MinRadius, {"min-radius", "radius", MinRadiusTable, "flat faces have no radius"}},
    {QualityKind::Thickness,
     {"thickness", "thickness", ThicknessTable, "open shells have no thickness"}},
    {QualityKind::Reflection, {"reflection", "checker", ReflectionTable, kNoFace}},
    {QualityKind::Continuity,
     {"continuity", "angle in degrees", ContinuityTable, "it takes faces that share an edge"}},
  };
  return rows.at(kind);
}

QJsonObject FiguresJson(const std::vector<double>& values)
{
  double sum = 0;
  for (const double value : values)
    sum += value;
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  return {{"min", *least}, {"max", *most}, {"average", sum / static_cast<double>(values.size())}};
}

// How many values lie in each of equal parts of their range.
QJsonArray HistogramJson(const std::vector<double>& values)
{
  constexpr std::size_t kBins = 10;
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  const bool isOneValue = *most - *least <= 1e-9 * std::max(std::abs(*most), std::abs(*least));
  const std::size_t count = isOneValue ? 1 : kBins;
  const double width = (*most - *least) / static_cast<double>(count);
  std::vector<int> bins(count, 0);
  for (const double value : values)
    ++bins[isOneValue ? 0
                      : std::min(static_cast<std::size_t>((value - *least) / width), count - 1)];
  QJsonArray histogram;
  for (std::size_t i = 0; i < count; ++i)
    histogram.append(QJsonObject{{"from", *least + width * static_cast<double>(i)},
                                 {"to", *least + width * static_cast<double>(i + 1)},
                                 {"count", bins[i]}});
  return histogram;
}

std::vector<double> ValuesOf(const QualityTable& table)
{
  std::vector<double> values;
  for (const std::vector<double>& row : table.rows)
    if (std::isfinite(row[table.valueColumn]))
      values.push_back(row[table.valueColumn]);
  return values;
}

QJsonArray SamplesJson(const QualityTable& table)
{
  QJsonArray samples;
  for (const std::vector<double>& sample : table.rows) {
    QJsonArray numbers;
    for (const double number : sample)
      numbers.append(number);
    samples.append(numbers);
  }
  return samples;
}

QString BarText(const QJsonValue& bin, int most)
{
  constexpr int kWidth = 40;
  const int count = bin["count"].toInt();
  const int length = count == 0 ? 0 : std::max(1, count * kWidth / std::max(most, 1));
  return QStringLiteral("  %1 to %2  %3  %4\n")
    .arg(Decimal(bin["from"].toDouble(), 4), 12)
    .arg(Decimal(bin["to"].toDouble(), 4), 12)
    .arg(QString(length, QLatin1Char('#')).leftJustified(kWidth))
    .arg(count);
}

} // namespace

QJsonObject AnalyseQuality(const QualityRequest& request, const ProgressSink& progress)
{
  const TopoDS_Shape shape = ReadWhole(request.path, progress);
  progress({QStringLiteral("analyse"), -1.0});
  const QualityRow& row = RowOf(request.kind);
  const QualityTable table = row.analyse(shape, request);
  const std::vector<double> values = ValuesOf(table);
  if (values.empty())
    throw Failure{ExitCode::KernelFailure,
                  TextFromBytes(request.path),
                  {},
                  QStringLiteral("there is nothing to sample for %1").arg(row.word),
                  TextFromBytes(row.advice)};
  QJsonArray columns;
  for (const char* column : table.columns)
    columns.append(TextFromBytes(column));
  return {{"file", TextFromBytes(request.path)},
          {"analysis", TextFromBytes(row.word)},
          {"quantity", TextFromBytes(row.quantity)},
          {"figures", FiguresJson(values)},
          {"facts", table.facts},
          {"histogram", HistogramJson(values)},
          {"columns", columns},
          {"count", static_cast<qint64>(table.rows.size())},
          {"samples", request.withSamples ? SamplesJson(table) : QJsonArray()}};
}

QString QualityText(const QJsonObject& result)
{
  const QJsonObject figures = result["figures"].toObject(), facts = result["facts"].toObject();
  QString text = QStringLiteral("%1: %2 of %3 samples: %4 to %5, average %6\n")
                   .arg(TerminalText(result["file"].toString()), result["quantity"].toString())
                   .arg(result["count"].toInteger())
                   .arg(Number(figures["min"].toDouble()), Number(figures["max"].toDouble()),
                        Number(figures["average"].toDouble()));
  for (auto fact = facts.begin(); fact != facts.end(); ++fact)
    text += QStringLiteral("  %1: %2\n").arg(fact.key(), fact.value().toVariant().toString());
  int most = 0;
  for (const QJsonValue& bin : result["histogram"].toArray())
    most = std::max(most, bin["count"].toInt());
  for (const QJsonValue& bin : result["histogram"].toArray())
    text += BarText(bin, most);
  return text;
}

QString QualityCsv(const QJsonObject& result)
{
  const auto line = [](const QJsonArray& values) {
    QStringList cells;
    for (const QJsonValue& value : values)
      cells.append(value.isString() ? value.toString() : Number(value.toDouble()));
    return cells.join(QLatin1Char(',')) + QLatin1Char('\n');
  };
  QString csv = line(result["columns"].toArray());
  for (const QJsonValue& sample : result["samples"].toArray())
    csv += line(sample.toArray());
  return csv;
}

} // namespace Orvex::Cli
