// Analyses of surfaces against the kernel's own work in the same round.
//
// Thickness on a plate with square rows of holes, against the plain loop: the kernel's classifier
// and its intersector over the whole shape, at each place. On a few faces only, since the plain
// loop grows with the square of the faces. Curvature and draft against bare evaluations of the
// surface. The model check against the kernel's own check and the measures that it takes.

#include "Timing.h"
#include "analysis/ModelCheckAnalyzer.h"
#include "analysis/SurfaceQualityAnalyzer.h"
#include "support/PlainThickness.h"
#include "support/Plate.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <benchmark/benchmark.h>

#include <functional>

namespace {

using Analyzer = SurfaceQualityAnalyzer;

double WallSecondsOf(const std::function<void()>& work)
{
  return WallSecondsFor(work);
}

using Clock = double (*)(const std::function<void()>& work);

// Of what runs on one thread.
double OneThreadSecondsOf(const std::function<void()>& work)
{
  return ThreadSecondsFor(work);
}

void Compare(benchmark::State& state, const std::function<void()>& floor,
             const std::function<void()>& ours, Clock secondsOf = OneThreadSecondsOf)
{
  double floorSeconds = 1e30, ourSeconds = 1e30;
  for ([[maybe_unused]] auto iteration : state) {
    floorSeconds = std::min(floorSeconds, secondsOf(floor));
    const double seconds = secondsOf(ours);
    ourSeconds = std::min(ourSeconds, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["floor_ms"] = 1e3 * floorSeconds;
  state.counters["ratio"] = ourSeconds / floorSeconds;
}

void Thickness(benchmark::State& state)
{
  const TopoDS_Shape plate = OrvexTest::PerforatedPlate(static_cast<int>(state.range(0)));
  const int samples = static_cast<int>(state.range(1));
  Compare(
    state,
    [&] { benchmark::DoNotOptimize(OrvexTest::PlainThickness(plate, samples).values.size()); },
    [&] { benchmark::DoNotOptimize(Analyzer::AnalyzeThickness(plate, samples, 10).samples); },
    WallSecondsOf);
  state.counters["faces"] = static_cast<double>(state.range(0) * state.range(0) + 6);
}
BENCHMARK(Thickness)
  ->ArgsProduct({{5, 10, 20}, {5}})
  ->Args({10, 10})
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond)
  ->Iterations(1);

void ThicknessAlone(benchmark::State& state)
{
  const TopoDS_Shape plate = OrvexTest::PerforatedPlate(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto iteration : state)
    benchmark::DoNotOptimize(Analyzer::AnalyzeThickness(plate, 10, 10).samples);
  state.counters["us_per_sample"] =
    benchmark::Counter(static_cast<double>((state.range(0) * state.range(0) + 6) * 100) * 1e-6,
                       benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ThicknessAlone)->Arg(5)->Arg(10)->Arg(20)->UseRealTime()->Unit(benchmark::kMillisecond);

TopoDS_Face Ring()
{
  return TopoDS::Face(TopExp_Explorer(BRepPrimAPI_MakeTorus(9, 2).Shape(), TopAbs_FACE).Current());
}

void EvaluateBare(const TopoDS_Face& face, int size, int order)
{
  GeomLProp_SLProps properties(BRep_Tool::Surface(face), order, 1e-6);
  for (int i = 0; i < size; ++i)
    for (int j = 0; j < size; ++j) {
      properties.SetParameters(6.28 * i / (size - 1), 6.28 * j / (size - 1));
      if (order == 2 && properties.IsCurvatureDefined())
        benchmark::DoNotOptimize(properties.GaussianCurvature() + properties.MeanCurvature());
      else if (properties.IsNormalDefined())
        benchmark::DoNotOptimize(properties.Normal().X());
    }
}

void Curvature(benchmark::State& state)
{
  const TopoDS_Face ring = Ring();
  const int size = static_cast<int>(state.range(0));
  Compare(
    state, [&] { EvaluateBare(ring, size, 2); },
    [&] { benchmark::DoNotOptimize(Analyzer::AnalyzeCurvatureMap(ring, size, size).valid); });
}
BENCHMARK(Curvature)->Arg(100)->Arg(1000)->UseManualTime()->Unit(benchmark::kMillisecond);

void Draft(benchmark::State& state)
{
  const TopoDS_Face ring = Ring();
  const int size = static_cast<int>(state.range(0));
  Compare(
    state, [&] { EvaluateBare(ring, size, 1); },
    [&] {
      benchmark::DoNotOptimize(Analyzer::AnalyzeDraft(ring, gp::DZ(), 1, size, size, 10).valid);
    });
}
BENCHMARK(Draft)->Arg(100)->Arg(1000)->UseManualTime()->Unit(benchmark::kMillisecond);

// As many separate boxes as give the number of faces.
TopoDS_Shape Boxes(int faces)
{
  TopoDS_Compound boxes;
  BRep_Builder().MakeCompound(boxes);
  for (int i = 0; i < faces / 6; ++i)
    BRep_Builder().Add(boxes, BRepPrimAPI_MakeBox(gp_Pnt(3 * i, 0, 0), 2, 2, 2).Shape());
  return boxes;
}

// The kernel's check and the measures that the model check takes, bare.
void CheckAndMeasure(const TopoDS_Shape& shape)
{
  const BRepCheck_Analyzer analyzer(shape, true);
  benchmark::DoNotOptimize(analyzer.IsValid());
  GProp_GProps properties;
  for (TopExp_Explorer solid(shape, TopAbs_SOLID); solid.More(); solid.Next())
    BRepGProp::VolumeProperties(solid.Current(), properties);
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    BRepGProp::SurfaceProperties(face.Current(), properties);
  for (TopExp_Explorer edge(shape, TopAbs_EDGE); edge.More(); edge.Next())
    benchmark::DoNotOptimize(
      GCPnts_AbscissaPoint::Length(BRepAdaptor_Curve(TopoDS::Edge(edge.Current())), 1e-7));
}

void ModelCheck(benchmark::State& state)
{
  const bool isPlate = state.range(0) != 0;
  const auto faces = static_cast<int>(state.range(1));
  const TopoDS_Shape shape =
    isPlate ? OrvexTest::PerforatedPlate(static_cast<int>(std::sqrt(faces))) : Boxes(faces);
  Compare(
    state, [&] { CheckAndMeasure(shape); },
    [&] { benchmark::DoNotOptimize(ModelCheckAnalyzer::Analyze({shape}, {})); });
}

BENCHMARK(ModelCheck)
  ->ArgNames({"plate", "faces"})
  ->ArgsProduct({{0, 1}, {1000, 10000}})
  ->Iterations(2)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
