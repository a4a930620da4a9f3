// The common solid of two plates of K by K holes that overlap in one corner: through the region in
// which they meet, against the kernel's common of the whole plates. Prints both, the ratio, where
// the time went, and how far the volumes and areas are apart.

#include "Timing.h"
#include "collision/OrvexMeshRoiBoolean.h"
#include "support/CollisionScenes.h"
#include "support/Measures.h"

#include <BRepAlgoAPI_Common.hxx>
#include <BRepBuilderAPI_Copy.hxx>

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace {

using namespace OrvexTest;

constexpr double kFuzzy = 1e-7;

// The kernel writes on its operands: each run gets copies, made outside of the clock.
double KernelSeconds(const TopoDS_Shape& a, const TopoDS_Shape& b, TopoDS_Shape& common)
{
  TopTools_ListOfShape first, second;
  first.Append(BRepBuilderAPI_Copy(a, false).Shape());
  second.Append(BRepBuilderAPI_Copy(b, false).Shape());
  return WallSecondsFor([&] {
    BRepAlgoAPI_Common kernel;
    kernel.SetArguments(first);
    kernel.SetTools(second);
    kernel.SetFuzzyValue(kFuzzy);
    kernel.SetRunParallel(true);
    kernel.Build();
    common = kernel.Shape();
  });
}

void BM_RegionAgainstWholeCommon(benchmark::State& state)
{
  const int k = static_cast<int>(state.range(0));
  const double shift = 10.0 * k - 14;
  const TopoDS_Shape a = PerforatedPlate(k, {0, 0, 0}), b = PerforatedPlate(k, {shift, shift, 2.5});
  double ours = 0, kernel = 0;
  OrvexMeshRoiTrace trace;
  OrvexMeshRoiResult result;
  TopoDS_Shape whole;
  for ([[maybe_unused]] auto iteration : state) {
    // Shapes without a mesh, as they come.
    const TopoDS_Shape freshA = BRepBuilderAPI_Copy(a, false),
                       freshB = BRepBuilderAPI_Copy(b, false);
    trace = {};
    const double seconds = WallSecondsFor(
      [&] { result = OrvexMeshRoiBoolean::compute(freshA, freshB, {}, kFuzzy, trace); });
    ours += seconds;
    kernel += KernelSeconds(a, b, whole);
    state.SetIterationTime(seconds);
  }
  const double volumeError = std::abs(result.volume / VolumeOf(whole) - 1);
  const double areaError = std::abs(result.area / AreaOf(whole) - 1);
  if (!(volumeError < 1e-6 && areaError < 1e-6))
    throw std::runtime_error("the region's common is not that of the whole plates");
  state.counters["kernel_ms"] = kernel / static_cast<double>(state.iterations()) * 1e3;
  state.counters["ratio"] = ours / kernel;
  state.counters["mesh_ms"] = trace.meshSeconds * 1e3;
  state.counters["region_ms"] = trace.regionSeconds * 1e3;
  state.counters["clip_a_ms"] = trace.clipSecondsA * 1e3;
  state.counters["clip_b_ms"] = trace.clipSecondsB * 1e3;
  state.counters["common_ms"] = trace.commonSeconds * 1e3;
  state.counters["reduce_ms"] = trace.reductionSeconds * 1e3;
  state.counters["volume_error"] = volumeError;
}

BENCHMARK(BM_RegionAgainstWholeCommon)
  ->Arg(5)
  ->Arg(10)
  ->Arg(20)
  ->Arg(30)
  ->Iterations(5)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
