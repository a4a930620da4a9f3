// What recognition, and the plan of one solid with its contract and requests as JSON, cost for each
// face of a model, in processor time.
//
// Floors: for recognition, one walk over the same records (faces with their loops, coedges and
// edges); for the documents, appending the same number of bytes to a text that grows, in pieces of
// the length of a key with its ids.

#include "step/replay/ReplayCommandContract.h"
#include "step/replay/ReplayCommandRequests.h"
#include "step/replay/StepFeatureRecognizer.h"
#include "step/replay/StepReplayPlanBuilder.h"
#include "support/SummaryModel.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <functional>

namespace {

using namespace Orvex;

double NanosecondsSince(std::clock_t start)
{
  return 1e9 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double NanosecondsPerIteration(benchmark::State& state, const std::function<void()>& work)
{
  const std::clock_t start = std::clock();
  for ([[maybe_unused]] auto iteration : state)
    work();
  return NanosecondsSince(start) / static_cast<double>(state.iterations());
}

// The mean over so many calls that the clock is fine enough.
double NanosecondsOnce(const std::function<void()>& work)
{
  constexpr double kEnough = 1e8;
  const std::clock_t start = std::clock();
  for (int calls = 1;; ++calls) {
    work();
    if (const double elapsed = NanosecondsSince(start); elapsed > kEnough)
      return elapsed / calls;
  }
}

// A closed grid of square faces, each with four edges that it shares with its neighbours, in bands
// of planes, cylinders and B-splines.
OrvexTest::SummaryModel Grid(std::int64_t faceCount)
{
  constexpr ReplayId kWidth = 100;
  constexpr ReplayId kBand = 7;
  constexpr ReplaySurfaceKind kKinds[] = {kPlaneSurface, kCylinderSurface, kBSplineSurface};
  const auto count = static_cast<ReplayId>(faceCount);
  OrvexTest::SummaryModel grid;
  for (ReplayId face = 0; face < count; ++face) {
    const ReplayId right = face % kWidth == kWidth - 1 ? face + 1 - kWidth : face + 1;
    const ReplayId below = (face + kWidth) % count;
    grid.AddFace({.kind = kKinds[face / kWidth / kBand % 3],
                  .edges = {2 * face + 1, 2 * face + 2, 2 * right + 1, 2 * below + 2},
                  .pcurves = 4});
  }
  grid.Close();
  return grid;
}

double FloorOfRecognition(const ReplayIRSummary& summary)
{
  return NanosecondsOnce([&] {
    ReplayId sum = 0;
    for (const ReplayFaceRecord& face : summary.faces) {
      sum += summary.surfaces[face.surfaceId - 1].kind;
      for (const ReplayId edge : face.edgeIds)
        sum += edge;
      for (const ReplayId loop : face.loopIds)
        for (const ReplayId coedge : summary.loops[loop - 1].coedgeIds)
          sum += summary.coedges[coedge - 1].hasPcurve ? 1 : 0;
    }
    benchmark::DoNotOptimize(sum);
  });
}

void Recognition(benchmark::State& state)
{
  const OrvexTest::SummaryModel grid = Grid(state.range(0));
  std::size_t found = 0;
  const double ours = NanosecondsPerIteration(state, [&] {
    found = StepFeatureRecognizer().RecognizeSummaryCandidates(grid.summary).size();
  });
  if (found < static_cast<std::size_t>(state.range(0)))
    state.SkipWithError("faces are missing");
  state.counters["ns_per_face"] = ours / static_cast<double>(state.range(0));
  state.counters["ratio"] = ours / FloorOfRecognition(grid.summary);
}

double FloorOfText(std::size_t bytes)
{
  constexpr std::string_view kPiece = "\"faceIds\":[12],";
  return NanosecondsOnce([&] {
    std::string text;
    while (text.size() < bytes)
      text.append(kPiece);
    benchmark::DoNotOptimize(text.data());
  });
}

// The parts of the work, each on what the one before it made.
struct SolidDocuments
{
  explicit SolidDocuments(const ReplayIRSummary& summary)
      : candidates(StepFeatureRecognizer().RecognizeSummaryCandidates(summary)),
        plan(StepReplayPlanBuilder().BuildSolidPlan(summary, candidates, 1))
  {}

  std::size_t Bytes() const
  {
    return ToJson(plan).size() + ToJson(BuildCommandContract(plan)).size() +
           ToJson(BuildCommandRequests(plan)).size();
  }

  std::vector<ReplayFeatureCandidate> candidates;
  ReplayPlan plan;
};

void Report(benchmark::State& state, double ours, std::size_t bytes)
{
  const auto faces = static_cast<double>(state.range(0));
  state.counters["ns_per_face"] = ours / faces;
  state.counters["bytes_per_face"] = static_cast<double>(bytes) / faces;
  state.counters["ratio"] = ours / FloorOfText(bytes);
}

// Plan, contract and requests of the one solid, with their JSON.
void SolidPlanToJson(benchmark::State& state)
{
  const OrvexTest::SummaryModel grid = Grid(state.range(0));
  const SolidDocuments documents(grid.summary);
  const double ours = NanosecondsPerIteration(state, [&] {
    const ReplayPlan plan =
      StepReplayPlanBuilder().BuildSolidPlan(grid.summary, documents.candidates, 1);
    benchmark::DoNotOptimize(ToJson(plan));
    benchmark::DoNotOptimize(ToJson(BuildCommandContract(plan)));
    benchmark::DoNotOptimize(ToJson(BuildCommandRequests(plan)));
  });
  Report(state, ours, documents.Bytes());
}

void PlanAlone(benchmark::State& state)
{
  const OrvexTest::SummaryModel grid = Grid(state.range(0));
  const SolidDocuments documents(grid.summary);
  const double ours = NanosecondsPerIteration(state, [&] {
    benchmark::DoNotOptimize(
      StepReplayPlanBuilder().BuildSolidPlan(grid.summary, documents.candidates, 1));
  });
  Report(state, ours, ToJson(documents.plan).size());
}

void JsonOfPlanAlone(benchmark::State& state)
{
  const SolidDocuments documents(Grid(state.range(0)).summary);
  const double ours =
    NanosecondsPerIteration(state, [&] { benchmark::DoNotOptimize(ToJson(documents.plan)); });
  Report(state, ours, ToJson(documents.plan).size());
}

void RequestsAlone(benchmark::State& state)
{
  const SolidDocuments documents(Grid(state.range(0)).summary);
  const double ours = NanosecondsPerIteration(
    state, [&] { benchmark::DoNotOptimize(BuildCommandRequests(documents.plan)); });
  Report(state, ours, ToJson(BuildCommandRequests(documents.plan)).size());
}

} // namespace

int main(int argc, char** argv)
{
  const std::pair<const char*, void (*)(benchmark::State&)> all[] = {
    {"Recognition", Recognition},
    {"SolidPlanToJson", SolidPlanToJson},
    {"PlanAlone", PlanAlone},
    {"JsonOfPlanAlone", JsonOfPlanAlone},
    {"RequestsAlone", RequestsAlone}};
  for (const auto& [name, run] : all)
    benchmark::RegisterBenchmark(name, run)
      ->RangeMultiplier(10)
      ->Range(1000, 100000)
      ->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
