// The general fuse of N solids against the bare kernel: the same builder with the same settings, on
// shapes of its own, since the kernel takes a mark from operands that it keeps as a whole. The two
// run by turns. Prints the medians, the ratio, the growth, and what the copies of the operands cost
// alone. The solids are the cells of a block, so that each has faces in common with up to six.

#include "Timing.h"
#include "kernel/internal/TopologyCopy.h"
#include "operations/OrvexGeometryOp.h"

#include <BOPAlgo_Builder.hxx>
#include <BRepPrimAPI_MakeBox.hxx>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

using List = NCollection_List<TopoDS_Shape>;

constexpr long kMost = 200;

// A block 5 cells wide and 5 deep, as high as need be.
List CellsOf(long count)
{
  List cells;
  for (long i = 0; i < count; ++i) {
    const gp_Pnt corner(10.0 * (i % 5), 10.0 * (i / 5 % 5), 10.0 * (i / 25));
    cells.Append(BRepPrimAPI_MakeBox(corner, 10, 10, 10).Shape());
  }
  return cells;
}

TopoDS_Shape FusedByTheKernel(const List& cells)
{
  BOPAlgo_Builder builder;
  for (const TopoDS_Shape& cell : cells)
    builder.AddArgument(cell);
  builder.SetRunParallel(true);
  builder.SetFuzzyValue(1e-5);
  builder.SetNonDestructive(true);
  builder.SetGlue(BOPAlgo_GlueShift);
  builder.SetCheckInverted(false);
  builder.SetUseOBB(true);
  builder.Perform();
  return builder.Shape();
}

double Median(std::vector<double> values)
{
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void RequireParts(const TopoDS_Shape& result, long count)
{
  if (result.IsNull() || result.NbChildren() != count)
    throw std::runtime_error("the fuse is not what it should be");
}

void CopyAll(const List& cells)
{
  Orvex::TopologyCopier copier;
  for (const TopoDS_Shape& cell : cells)
    benchmark::DoNotOptimize(copier.Copy(cell));
}

void BM_GeneralFuse(benchmark::State& state)
{
  List cells = CellsOf(state.range(0));
  const List kernelCells = CellsOf(state.range(0));
  std::vector<double> ours, kernels, copies;
  // Small blocks are repeated until they are as many cells as the largest.
  const long walks = std::max(1L, kMost / state.range(0));
  for ([[maybe_unused]] auto iteration : state) {
    for (long i = 0; i < walks; ++i) {
      TopoDS_Shape result;
      kernels.push_back(ProcessSecondsFor([&] { result = FusedByTheKernel(kernelCells); }));
      RequireParts(result, state.range(0));
      ours.push_back(
        ProcessSecondsFor([&] { result = OrvexGeometryOp::NonRegularBoolLCW(cells); }));
      RequireParts(result, state.range(0));
      copies.push_back(ProcessSecondsFor([&] { CopyAll(cells); }));
    }
    state.SetIterationTime(Median(ours));
  }
  state.SetComplexityN(state.range(0));
  state.counters["ms"] = Median(ours) * 1e3;
  state.counters["kernel_ms"] = Median(kernels) * 1e3;
  state.counters["copies_ms"] = Median(copies) * 1e3;
  state.counters["ratio"] = Median(ours) / Median(kernels);
}

BENCHMARK(BM_GeneralFuse)
  ->Arg(10)
  ->Arg(50)
  ->Arg(kMost)
  ->Iterations(10)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond)
  ->Complexity(benchmark::oNSquared);

} // namespace

BENCHMARK_MAIN();
