#include "analysis/ShapeEquivalenceAnalyzer.h"

#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>

#include <algorithm>
#include <cmath>

namespace {

bool IsValid(const TopoDS_Shape& shape)
{
  return !shape.IsNull() && BRepCheck_Analyzer(shape, true).IsValid();
}

std::int32_t CountOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  std::int32_t count = 0;
  for (TopExp_Explorer parts(shape, type); parts.More(); parts.Next())
    ++count;
  return count;
}

ShapeTopologyCounts CountsOf(const TopoDS_Shape& shape)
{
  return {CountOf(shape, TopAbs_SOLID), CountOf(shape, TopAbs_SHELL),
          CountOf(shape, TopAbs_FACE),  CountOf(shape, TopAbs_WIRE),
          CountOf(shape, TopAbs_EDGE),  CountOf(shape, TopAbs_VERTEX)};
}

void SetBox(const TopoDS_Shape& shape, ShapeEquivalenceMetrics& metrics)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box, true);
  if (!box.IsVoid())
    box.Get(metrics.xMin, metrics.yMin, metrics.zMin, metrics.xMax, metrics.yMax, metrics.zMax);
}

ShapeEquivalenceMetrics MetricsOf(const TopoDS_Shape& shape)
{
  ShapeEquivalenceMetrics metrics;
  if (shape.IsNull())
    return metrics;
  GProp_GProps volume, surface;
  BRepGProp::VolumeProperties(shape, volume);
  BRepGProp::SurfaceProperties(shape, surface);
  metrics.volume = std::abs(volume.Mass());
  metrics.area = surface.Mass();
  SetBox(shape, metrics);
  metrics.topology = CountsOf(shape);
  return metrics;
}

double RelativeError(double a, double b, double floor)
{
  const double size = std::max({std::abs(a), std::abs(b), floor});
  return size > 0 ? std::abs(a - b) / size : 0.0;
}

constexpr double ShapeEquivalenceMetrics::*kBoxCoordinates[] = {
  &ShapeEquivalenceMetrics::xMin, &ShapeEquivalenceMetrics::yMin, &ShapeEquivalenceMetrics::zMin,
  &ShapeEquivalenceMetrics::xMax, &ShapeEquivalenceMetrics::yMax, &ShapeEquivalenceMetrics::zMax};

// The largest difference that still matches grows with the coordinates.
void CompareBoxes(const ShapeEquivalenceOptions& options, ShapeEquivalenceReport& report)
{
  double scale = 1.0;
  for (const auto coordinate : kBoxCoordinates) {
    const double source = report.source.*coordinate, candidate = report.candidate.*coordinate;
    report.bboxMaxDeviation = std::max(report.bboxMaxDeviation, std::abs(source - candidate));
    scale = std::max({scale, std::abs(source), std::abs(candidate)});
  }
  report.bboxMatch =
    scale * options.relativeTolerance + options.absoluteTolerance >= report.bboxMaxDeviation;
}

void CompareMetrics(const ShapeEquivalenceOptions& options, ShapeEquivalenceReport& report)
{
  const auto compare = [&](double ShapeEquivalenceMetrics::*metric, double& error, bool& match) {
    error =
      RelativeError(report.source.*metric, report.candidate.*metric, options.absoluteTolerance);
    match = options.relativeTolerance >= error;
  };
  if (options.checkVolume)
    compare(&ShapeEquivalenceMetrics::volume, report.volumeRelativeError, report.volumeMatch);
  if (options.checkArea)
    compare(&ShapeEquivalenceMetrics::area, report.areaRelativeError, report.areaMatch);
  if (options.checkBoundingBox)
    CompareBoxes(options, report);
  if (options.checkTopology)
    report.topologyMatch = report.source.topology == report.candidate.topology;
}

void Judge(ShapeEquivalenceReport& report)
{
  const struct
  {
    bool holds;
    const char* failure;
  } checks[] = {
    {report.sourceValid, "source_invalid"},  {report.candidateValid, "candidate_invalid"},
    {report.volumeMatch, "volume_mismatch"}, {report.areaMatch, "area_mismatch"},
    {report.bboxMatch, "bbox_mismatch"},     {report.topologyMatch, "topology_mismatch"}};
  for (const auto& check : checks)
    if (!check.holds)
      report.failures.emplace_back(check.failure);
  report.equivalent = report.failures.empty();
}

} // namespace

ShapeEquivalenceReport ShapeEquivalenceAnalyzer::Compare(const TopoDS_Shape& source,
                                                         const TopoDS_Shape& candidate,
                                                         const ShapeEquivalenceOptions& options)
{
  ShapeEquivalenceReport report;
  report.sourceValid = IsValid(source);
  report.candidateValid = IsValid(candidate);
  report.source = MetricsOf(source);
  report.candidate = MetricsOf(candidate);
  CompareMetrics(options, report);
  Judge(report);
  return report;
}
