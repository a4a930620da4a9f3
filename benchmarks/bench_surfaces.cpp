// Lofts, networks and fills against the bare kernel calls of the attempt that won: the same options
// on the same sections. The two run by turns. Prints the medians in microseconds of processor time
// and their ratio. Where an attempt failed before the winner, the ratio is what that costs.

#include "Timing.h"
#include "operations/AdvancedSurfaceOp.h"
#include "support/SurfaceInputs.h"

#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepOffsetAPI_MakeFilling.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>

#include <benchmark/benchmark.h>

#include <functional>
#include <stdexcept>

namespace {

using namespace OrvexTest;
using Op = AdvancedSurfaceOp;
using Shapes = std::vector<TopoDS_Shape>;
using Work = std::function<TopoDS_Shape()>;

double MicrosecondsFor(const Work& work)
{
  return 1e6 * ProcessSecondsFor([&] {
           if (work().IsNull())
             throw std::runtime_error("nothing was built");
         });
}

double Median(std::vector<double> values)
{
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Compare(benchmark::State& state, const Work& ours, const Work& kernel)
{
  std::vector<double> ourTimes, kernelTimes;
  for ([[maybe_unused]] auto iteration : state) {
    kernelTimes.push_back(MicrosecondsFor(kernel));
    ourTimes.push_back(MicrosecondsFor(ours));
    state.SetIterationTime(ourTimes.back() * 1e-6);
  }
  state.counters["us"] = Median(ourTimes);
  state.counters["kernel_us"] = Median(kernelTimes);
  state.counters["ratio"] = Median(ourTimes) / Median(kernelTimes);
}

Shapes Barrel(std::int64_t sections)
{
  Shapes barrel;
  for (std::int64_t i = 0; i < sections; ++i)
    barrel.push_back(CircleWire(5 * static_cast<double>(i), 5 + static_cast<double>(i % 3)));
  return barrel;
}

TopoDS_Shape LoftByTheKernel(const Shapes& sections, const AdvancedLoftOptions& options)
{
  static constexpr GeomAbs_Shape kContinuities[] = {GeomAbs_C0, GeomAbs_C1, GeomAbs_C2};
  BRepOffsetAPI_ThruSections loft(options.solid, options.ruled, options.tolerance);
  loft.CheckCompatibility(options.checkCompatibility);
  loft.SetSmoothing(options.smoothing);
  loft.SetContinuity(kContinuities[options.continuity]);
  loft.SetMaxDegree(options.maxDegree);
  loft.SetParType(Approx_ChordLength);
  for (const TopoDS_Shape& section : sections)
    loft.AddWire(TopoDS::Wire(section));
  loft.Build();
  return loft.Shape();
}

void LoftOfSections(benchmark::State& state)
{
  const Shapes sections = Barrel(state.range(0));
  const AdvancedLoftOptions first =
    Op::SanitizeAdvancedLoftOptions(sections, {}, {}, nullptr, nullptr);
  OperationReport report;
  Op::BuildAdvancedLoft(sections, {}, {}, &report);
  if (report.attempts.size() != 1)
    return state.SkipWithError("the first attempt did not win");
  Compare(
    state, [&] { return Op::BuildAdvancedLoft(sections, {}, {}); },
    [&] { return LoftByTheKernel(sections, first); });
}
BENCHMARK(LoftOfSections)->Arg(3)->Arg(10)->Arg(18)->Arg(40)->Iterations(31)->UseManualTime();

// What the kernel can't smooth with this degree and continuity, and makes at the second attempt.
void LoftAfterAFailedAttempt(benchmark::State& state)
{
  const Shapes sections = Barrel(3);
  AdvancedLoftOptions options;
  options.maxDegree = 3;
  options.continuity = 2;
  AdvancedLoftOptions winner = options;
  winner.continuity = 1;
  OperationReport report;
  Op::BuildAdvancedLoft(sections, {}, options, &report);
  if (report.Winner() != &report.attempts[1])
    return state.SkipWithError("the second attempt did not win");
  Compare(
    state, [&] { return Op::BuildAdvancedLoft(sections, {}, options); },
    [&] { return LoftByTheKernel(sections, winner); });
}
BENCHMARK(LoftAfterAFailedAttempt)->Iterations(31)->UseManualTime();

TopoDS_Shape FillByTheKernel(const TopoDS_Shape& border)
{
  BRepOffsetAPI_MakeFilling filling(3, 15, 2, false, 1e-5, 1e-4, 0.01, 0.1, 8, 9);
  for (const TopoDS_Shape& edge : PartsOf(border, TopAbs_EDGE))
    filling.Add(TopoDS::Edge(edge), GeomAbs_C0, true);
  filling.Build();
  return filling.Shape();
}

TopoDS_Wire Crown(std::int64_t corners)
{
  std::vector<gp_Pnt> points;
  for (std::int64_t i = 0; i < corners; ++i) {
    const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(corners);
    points.emplace_back(5 * std::cos(angle), 5 * std::sin(angle), i % 2);
  }
  return PolygonWire(points, true);
}

// A level of 0, and one of 1 that fails for want of a face.
void Fill(benchmark::State& state)
{
  const TopoDS_Wire border = Crown(state.range(0));
  const auto level = static_cast<SurfaceContinuityLevel>(state.range(1));
  Compare(
    state, [&] { return Op::FillHole(border, level); }, [&] { return FillByTheKernel(border); });
}
BENCHMARK(Fill)->ArgsProduct({{4, 8, 16}, {0, 1}})->Iterations(15)->UseManualTime();

TopoDS_Shape NetworkByTheKernel(const Shapes& wires)
{
  AdvancedLoftOptions options;
  options.checkCompatibility = wires.size() > 3;
  BRepBuilderAPI_Sewing sewing(1e-6, true, true, true, false);
  sewing.Add(LoftByTheKernel(wires, options));
  sewing.Add(FillByTheKernel(wires.front()));
  sewing.Add(FillByTheKernel(wires.back()));
  sewing.Perform();
  return sewing.SewedShape();
}

void Network(benchmark::State& state)
{
  const Shapes shapes = Barrel(state.range(0));
  std::vector<TopoDS_Wire> wires;
  for (const TopoDS_Shape& shape : shapes)
    wires.push_back(TopoDS::Wire(shape));
  Compare(
    state, [&] { return Op::BuildSurfaceNetwork(wires, SurfaceContinuityLevel::Position); },
    [&] { return NetworkByTheKernel(shapes); });
}
BENCHMARK(Network)->Arg(3)->Arg(5)->Arg(7)->Iterations(15)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
