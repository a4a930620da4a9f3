// References to edges and faces: the share that is found again on a drilled and rounded block while
// its dimensions change over 200 steps, and what looking up one reference costs.
//
// Floor of the cost: the kernel measuring the same edges (curve, length, vertices) without anything
// around it.

#include "support/ReferenceWalk.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <TopoDS_Compound.hxx>

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

void ShareFoundAgain(benchmark::State& state)
{
  constexpr int kSteps = 200;
  OrvexTest::FoundShare share;
  for ([[maybe_unused]] auto iteration : state)
    share = OrvexTest::WalkOfReferences(kSteps, static_cast<double>(state.range(0)) / 100,
                                        OrvexTest::Seed());
  state.counters["edges"] = share.Edges();
  state.counters["faces"] = share.Faces();
}
BENCHMARK(ShareFoundAgain)
  ->ArgName("percent")
  ->Arg(1)
  ->Arg(5)
  ->Arg(20)
  ->Iterations(1)
  ->Unit(benchmark::kSecond);

TopTools_IndexedMapOfShape EdgesOfBoxes(std::int64_t boxes)
{
  TopoDS_Compound compound;
  BRep_Builder builder;
  builder.MakeCompound(compound);
  for (std::int64_t i = 0; i < boxes; ++i)
    builder.Add(compound,
                BRepPrimAPI_MakeBox(gp_Pnt(0, 0, 3.0 * static_cast<double>(i)), 1, 2, 2).Shape());
  return OrvexTest::SubShapes(compound, TopAbs_EDGE);
}

double SecondsToMeasure(const TopTools_IndexedMapOfShape& edges)
{
  const auto start = std::chrono::steady_clock::now();
  for (int i = 1; i <= edges.Extent(); ++i) {
    const BRepAdaptor_Curve curve(TopoDS::Edge(edges(i)));
    const double first = curve.FirstParameter(), last = curve.LastParameter();
    TopoDS_Vertex from, to;
    TopExp::Vertices(TopoDS::Edge(edges(i)), from, to, false);
    benchmark::DoNotOptimize(GCPnts_AbscissaPoint::Length(curve, first, last, 1e-7));
    benchmark::DoNotOptimize(curve.Value((first + last) * 0.5));
    benchmark::DoNotOptimize(BRep_Tool::Pnt(from).Distance(BRep_Tool::Pnt(to)));
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ResolveOneReference(benchmark::State& state)
{
  const TopTools_IndexedMapOfShape edges = EdgesOfBoxes(state.range(0));
  QVariantMap reference;
  Orvex::FingerprintEdge(edges(edges.Extent() / 2), reference);
  double ours = 0, floor = 0;
  for ([[maybe_unused]] auto iteration : state) {
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(Orvex::ResolveEdgeRef(edges, reference));
    ours += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.PauseTiming();
    floor += SecondsToMeasure(edges);
    state.ResumeTiming();
  }
  state.counters["us_per_edge"] =
    1e6 * ours / static_cast<double>(state.iterations()) / edges.Extent();
  state.counters["ratio"] = ours / floor;
}
BENCHMARK(ResolveOneReference)->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
