#include "analysis/SurfaceQualityAnalyzer.h"

#include "analysis/internal/FaceSampling.h"
#include "analysis/internal/Thickness.h"
#include "operations/AdvancedSurfaceOp.h"

#include <BRepBndLib.hxx>
#include <Bnd_Box.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

using namespace Orvex;

namespace {

// Smallest, largest and sum of some values.
class Range
{
public:
  void Add(double value)
  {
    smallest = count == 0 ? value : std::min(smallest, value);
    largest = count == 0 ? value : std::max(largest, value);
    sum += value;
    ++count;
  }

  double smallest = 0;
  double largest = 0;
  double sum = 0;
  int count = 0;
};

using Zebra = std::function<double(const gp_Dir& normal)>;

SurfaceQualityReport MapOf(const TopoDS_Face& face, const GridSize& size, const Zebra& zebra)
{
  constexpr int kSecondDerivatives = 2;
  SurfaceQualityReport report;
  if (face.IsNull() || !size.IsEnough())
    return report;
  const FaceSampling sampling(face);
  // Not every place need be a sample.
  constexpr std::size_t kMostReserved = 1 << 20;
  if (!sampling.IsEmpty())
    report.samples.reserve(std::min(size.Count(), kMostReserved));
  double gaussianSum = 0, meanSum = 0;
  sampling.EachPlace(
    size, kSecondDerivatives, [&](const GridPlace& place, GeomLProp_SLProps& properties) {
      if (!properties.IsCurvatureDefined())
        return;
      const double gaussian = properties.GaussianCurvature(), mean = properties.MeanCurvature();
      const bool striped = zebra && properties.IsNormalDefined();
      report.samples.push_back(
        {place.u, place.v, gaussian, mean, striped ? zebra(properties.Normal()) : 0.0});
      report.maxGaussianCurvature = std::max(report.maxGaussianCurvature, std::abs(gaussian));
      report.maxMeanCurvature = std::max(report.maxMeanCurvature, std::abs(mean));
      gaussianSum += std::abs(gaussian);
      meanSum += std::abs(mean);
    });
  report.valid = !report.samples.empty();
  if (report.valid) {
    report.averageGaussianCurvature = gaussianSum / static_cast<double>(report.samples.size());
    report.averageMeanCurvature = meanSum / static_cast<double>(report.samples.size());
  }
  return report;
}

double DraftDot(const gp_Dir& normal, const gp_Dir& pull)
{
  return std::clamp(normal * pull, -1.0, 1.0);
}

double DraftDegrees(double dot)
{
  constexpr double kDegrees = 57.29577951308232;
  return std::asin(dot) * kDegrees;
}

// Calls visit(face number, place, properties) for each place of the shape that has a normal.
// Returns: how many faces there are.
template <typename Visit>
int EachNormal(const TopoDS_Shape& shape, const GridSize& size, Visit&& visit)
{
  return EachFace(shape, [&](const TopoDS_Face& face, int number) {
    FaceSampling(face).EachPlace(size, 1,
                                 [&](const GridPlace& place, GeomLProp_SLProps& properties) {
                                   if (properties.IsNormalDefined())
                                     visit(number, place, properties);
                                 });
  });
}

// Fills the reflection; false for one without length.
bool Reflect(const gp_Dir& normal, const gp_Dir& view, double tileSize,
             EnvironmentReflectionSample& sample)
{
  constexpr double kNoLength = 1e-12;
  const gp_Vec n(normal), d(view);
  gp_Vec reflected = n * (2 * (n * d)) - d;
  if (reflected.Magnitude() < kNoLength)
    return false;
  reflected.Normalize();
  sample.reflectionX = reflected.X();
  sample.reflectionY = reflected.Y();
  sample.reflectionZ = reflected.Z();
  const double longitude = std::atan2(reflected.Y(), reflected.X());
  const double polar = std::acos(std::clamp(reflected.Z(), -1.0, 1.0));
  const double tile =
    std::trunc(std::floor(longitude / tileSize)) + std::trunc(std::floor(polar / tileSize));
  sample.checkerValue = std::fmod(tile, 2.0) == 0 ? 1.0 : 0.0;
  return true;
}

// The smallest of many values, in ascending order, without keeping them all.
class SmallestHotspots
{
public:
  explicit SmallestHotspots(int mostKept) : most(static_cast<std::size_t>(std::max(mostKept, 0)))
  {}

  void Add(const MeasureHotspot& hotspot)
  {
    constexpr std::size_t kSlack = 1000;
    hotspots.push_back(hotspot);
    if (hotspots.size() > 2 * most + kSlack)
      Cut();
  }

  std::vector<MeasureHotspot> Take()
  {
    Cut();
    return std::move(hotspots);
  }

private:
  void Cut()
  {
    std::stable_sort(hotspots.begin(), hotspots.end(),
                     [](const auto& left, const auto& right) { return left.value < right.value; });
    hotspots.resize(std::min(hotspots.size(), most));
  }

  const std::size_t most;
  std::vector<MeasureHotspot> hotspots;
};

void SetRange(const Range& range, MeasureAnalysisReport& report)
{
  report.samples = range.count;
  if (range.count == 0)
    return;
  report.minValue = range.smallest;
  report.maxValue = range.largest;
  report.averageValue = range.sum / range.count;
}

AnalysisColoringGrid EmptyGrid(int number, const FaceSampling& sampling, const GridSize& size)
{
  AnalysisColoringGrid grid;
  grid.face = number;
  grid.uMin = sampling.uMin;
  grid.uMax = sampling.uMax;
  grid.vMin = sampling.vMin;
  grid.vMax = sampling.vMax;
  grid.nu = size.nu;
  grid.nv = size.nv;
  grid.values.assign(static_cast<std::size_t>(size.nu) * static_cast<std::size_t>(size.nv), 0.0);
  grid.minValue = std::numeric_limits<double>::max();
  grid.maxValue = std::numeric_limits<double>::lowest();
  return grid;
}

void Put(AnalysisColoringGrid& grid, const GridPlace& place, double value)
{
  const auto row = static_cast<std::size_t>(place.i) * static_cast<std::size_t>(grid.nv);
  grid.values[row + static_cast<std::size_t>(place.j)] = value;
  grid.minValue = std::min(grid.minValue, value);
  grid.maxValue = std::max(grid.maxValue, value);
}

bool HasValues(const AnalysisColoringGrid& grid)
{
  return grid.maxValue >= grid.minValue;
}

} // namespace

SurfaceQualityReport SurfaceQualityAnalyzer::AnalyzeCurvatureMap(const TopoDS_Face& face, int nu,
                                                                 int nv)
{
  return MapOf(face, {nu, nv}, {});
}

SurfaceQualityReport SurfaceQualityAnalyzer::AnalyzeZebraMap(const TopoDS_Face& face,
                                                             const gp_Dir& lightDirection, int nu,
                                                             int nv, double frequency)
{
  return MapOf(face, {nu, nv}, [&](const gp_Dir& normal) {
    return (std::sin((normal * lightDirection) * frequency) + 1) * 0.5;
  });
}

DraftAnalysisReport SurfaceQualityAnalyzer::AnalyzeDraft(const TopoDS_Shape& shape,
                                                         const gp_Dir& pullDirection,
                                                         double minAngleDegrees, int nu, int nv,
                                                         int maxHotspots)
{
  constexpr double kRounding = 1e-9;
  DraftAnalysisReport report;
  report.requiredAngleDegrees = std::max(minAngleDegrees, 0.0);
  if (shape.IsNull() || !GridSize{nu, nv}.IsEnough())
    return report;
  Range angles;
  EachNormal(shape, {nu, nv}, [&](int face, const GridPlace& place, GeomLProp_SLProps& properties) {
    const double dot = DraftDot(properties.Normal(), pullDirection);
    const double angle = DraftDegrees(dot);
    angles.Add(angle);
    if (!(angle + kRounding < report.requiredAngleDegrees))
      return;
    ++report.violations;
    if (static_cast<int>(report.hotspots.size()) < maxHotspots)
      report.hotspots.push_back({face, place.u, place.v, angle, dot});
  });
  report.samples = angles.count;
  report.minAngleDegrees = angles.smallest;
  report.maxAngleDegrees = angles.largest;
  report.valid = angles.count > 0;
  report.averageAngleDegrees = report.valid ? angles.sum / angles.count : 0.0;
  report.passes = report.valid && report.violations == 0;
  return report;
}

EnvironmentReflectionReport SurfaceQualityAnalyzer::AnalyzeEnvironmentReflection(
  const TopoDS_Shape& shape, const gp_Dir& viewDirection, int nu, int nv, double tileSize)
{
  constexpr double kNoTile = 1e-12;
  EnvironmentReflectionReport report;
  if (shape.IsNull() || !GridSize{nu, nv}.IsEnough() || !(tileSize > kNoTile))
    return report;
  report.faces =
    EachNormal(shape, {nu, nv}, [&](int, const GridPlace& place, GeomLProp_SLProps& properties) {
      EnvironmentReflectionSample sample;
      if (!Reflect(properties.Normal(), viewDirection, tileSize, sample))
        return;
      sample.u = place.u;
      sample.v = place.v;
      sample.point = properties.Value();
      report.values.push_back(sample);
    });
  report.samples = static_cast<int>(report.values.size());
  report.valid = report.samples > 0;
  return report;
}

MinRadiusAnalysisReport SurfaceQualityAnalyzer::AnalyzeMinRadius(const TopoDS_Shape& shape,
                                                                 int samplesPerAxis,
                                                                 int maxHotspots)
{
  constexpr int kSecondDerivatives = 2;
  constexpr double kFlat = 1e-12;
  MinRadiusAnalysisReport report;
  const GridSize size{samplesPerAxis, samplesPerAxis};
  if (shape.IsNull() || !size.IsEnough())
    return report;
  Range radii;
  SmallestHotspots tightest(maxHotspots);
  report.faces = EachFace(shape, [&](const TopoDS_Face& face, int number) {
    FaceSampling(face).EachPlace(
      size, kSecondDerivatives, [&](const GridPlace& place, GeomLProp_SLProps& properties) {
        if (!properties.IsCurvatureDefined())
          return;
        const double curvature =
          std::max(std::abs(properties.MinCurvature()), std::abs(properties.MaxCurvature()));
        if (curvature <= kFlat)
          return;
        radii.Add(1 / curvature);
        tightest.Add({number, place.u, place.v, properties.Value(), 1 / curvature});
      });
  });
  SetRange(radii, report);
  report.hotspots = tightest.Take();
  report.valid = radii.count > 0;
  return report;
}

ThicknessAnalysisReport SurfaceQualityAnalyzer::AnalyzeThickness(const TopoDS_Shape& shape,
                                                                 int samplesPerAxis,
                                                                 int maxHotspots)
{
  ThicknessAnalysisReport report;
  Bnd_Box box;
  if (!shape.IsNull())
    BRepBndLib::Add(shape, box, true);
  if (samplesPerAxis < 2 || box.IsVoid())
    return report;
  Range thicknesses;
  SmallestHotspots thinnest(maxHotspots);
  for (const FaceThickness& face : MeasureThickness(shape, samplesPerAxis)) {
    ++report.faces;
    for (const ThicknessValue& at : face.values) {
      thicknesses.Add(at.value);
      thinnest.Add({report.faces, at.place.u, at.place.v, at.point, at.value});
    }
  }
  SetRange(thicknesses, report);
  report.hotspots = thinnest.Take();
  report.valid = true;
  return report;
}

std::vector<SurfaceContinuityMetrics>
SurfaceQualityAnalyzer::EvaluateAdjacencyContinuity(const TopoDS_Shape& shape, double tolerance)
{
  std::vector<SurfaceContinuityMetrics> metrics;
  if (shape.IsNull())
    return metrics;
  TopTools_IndexedDataMapOfShapeListOfShape facesOfEdges;
  TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, facesOfEdges);
  for (int i = 1; i <= facesOfEdges.Extent(); ++i) {
    const TopTools_ListOfShape& faces = facesOfEdges(i);
    if (faces.Extent() < 2)
      continue;
    const TopoDS_Face& first = TopoDS::Face(faces.First());
    const TopoDS_Face& second = TopoDS::Face(*std::next(faces.cbegin()));
    metrics.push_back(AdvancedSurfaceOp::EvaluateFaceContinuity(first, second, tolerance));
  }
  return metrics;
}

std::vector<AnalysisColoringGrid>
SurfaceQualityAnalyzer::SampleDraftForColoring(const TopoDS_Shape& shape,
                                               const gp_Dir& pullDirection, int nu, int nv)
{
  std::vector<AnalysisColoringGrid> grids;
  const GridSize size{nu, nv};
  if (shape.IsNull() || !size.IsEnough())
    return grids;
  EachFace(shape, [&](const TopoDS_Face& face, int number) {
    const FaceSampling sampling(face);
    if (sampling.IsEmpty())
      return;
    AnalysisColoringGrid grid = EmptyGrid(number, sampling, size);
    sampling.EachPlace(size, 1, [&](const GridPlace& place, GeomLProp_SLProps& properties) {
      if (properties.IsNormalDefined())
        Put(grid, place, DraftDegrees(DraftDot(properties.Normal(), pullDirection)));
    });
    if (HasValues(grid))
      grids.push_back(std::move(grid));
  });
  return grids;
}

std::vector<AnalysisColoringGrid>
SurfaceQualityAnalyzer::SampleThicknessForColoring(const TopoDS_Shape& shape, int samplesPerAxis)
{
  std::vector<AnalysisColoringGrid> grids;
  const GridSize size{samplesPerAxis, samplesPerAxis};
  if (shape.IsNull() || !size.IsEnough())
    return grids;
  int number = 0;
  for (const FaceThickness& face : MeasureThickness(shape, samplesPerAxis)) {
    ++number;
    if (face.sampling.IsEmpty())
      continue;
    AnalysisColoringGrid grid = EmptyGrid(number, face.sampling, size);
    for (const ThicknessValue& at : face.values)
      Put(grid, at.place, at.value);
    if (HasValues(grid))
      grids.push_back(std::move(grid));
  }
  return grids;
}
