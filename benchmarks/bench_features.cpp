// What a change costs in a model of features: one parameter among many shapes, marking and sorting
// of a large dependency graph, the queries of a long history, and the memory of a rebuild that
// fails at its end.
//
// Floors: for a change, the kernel's own work for it (a command with the same number and a box put
// on the same label), and the same change in a model of ten shapes; for the graph, one pass over
// the same keys and edges in hash maps; for a query of the history, one pass over its items and
// inputs.

#include "Timing.h"
#include "creators/BoxShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "features/ParametricFeatureManager.h"
#include "support/FeatureModel.h"

#include <TDataStd_Real.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp.hxx>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <unordered_set>

namespace {

using Manager = ParametricFeatureManager;

// An empty document as the current one, and nothing left of earlier benchmarks.
class FreshModel
{
public:
  FreshModel()
  {
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    document->SetUndoLimit(1);
    ShapeDocMgr::GetInstance()->SetDoc(document);
    Manager::GetInstance().ClearRegisteredState();
  }

  ~FreshModel()
  {
    Manager::GetInstance().ClearRegisteredState();
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    XCAFApp_Application::GetApplication()->Close(document);
  }

  FreshModel(const FreshModel&) = delete;
  FreshModel& operator=(const FreshModel&) = delete;

  TDF_Label NewLabel()
  {
    return document->Main().FindChild(1000).NewChild();
  }

  Handle(TDocStd_Document) document;
};

double MicrosecondsOnce(const std::function<void()>& work)
{
  constexpr int kRepeats = 5;
  double best = 1e30;
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::micro> elapsed =
      std::chrono::steady_clock::now() - start;
    best = std::min(best, elapsed.count());
  }
  return best;
}

// One of N boxes that have nothing to do with each other gets another length.
struct ManyBoxes
{
  explicit ManyBoxes(std::int64_t count)
  {
    std::vector<TDF_Label> boxes;
    for (std::int64_t i = 0; i < count; ++i)
      boxes.push_back(BoxShapeParaCreator().CreateBox(gp::XOY(), 1, 2, 3));
    box = boxes[boxes.size() / 2];
    length = Orvex::ChildByName(box, "Length");
  }

  FreshModel model;
  TDF_Label box, length;
  double value = 1;
};

std::map<std::int64_t, double> kernelChange;

// The kernel walks over all siblings of a label that changed when it commits.
void KernelChangesOneOfManyBoxes(benchmark::State& state)
{
  ManyBoxes boxes(state.range(0));
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(boxes.model.document->Main());
  kernelChange[state.range(0)] = MicrosecondsPerIteration(state, [&] {
    boxes.model.document->NewCommand();
    TDataStd_Real::Set(boxes.length, boxes.value += 0.001);
    tool->SetShape(boxes.box, BRepPrimAPI_MakeBox(boxes.value, 2, 3).Shape());
    boxes.model.document->CommitCommand();
  });
}
BENCHMARK(KernelChangesOneOfManyBoxes)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000)->Iterations(2000);

void OneOfManyBoxes(benchmark::State& state)
{
  static double withTen = 0;
  ManyBoxes boxes(state.range(0));
  const double ours = MicrosecondsPerIteration(
    state, [&] { Manager::GetInstance().SetParamValue(boxes.length, boxes.value += 0.001); });
  if (state.range(0) == 10)
    withTen = ours;
  state.counters["ratio_to_kernel"] = ours / kernelChange[state.range(0)];
  state.counters["over_kernel_us"] = ours - kernelChange[state.range(0)];
  state.counters["ratio_to_ten"] = ours / withTen;
}
BENCHMARK(OneOfManyBoxes)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000)->Iterations(2000);

// The edges of feature i: a chain, all of the first, none, or the two halves of it as in a heap.
enum Form { kChain, kStar, kAlone, kTree };

std::vector<int> ConsumedBy(int feature, int form)
{
  if (feature == 0 || form == kAlone)
    return {};
  return {form == kChain ? feature - 1 : form == kStar ? 0 : (feature - 1) / 2};
}

double FloorOfGraph(const std::vector<std::string>& keys, int form)
{
  std::unordered_map<std::string, std::vector<std::string>> dependents;
  for (std::size_t i = 0; i < keys.size(); ++i)
    for (const int consumed : ConsumedBy(static_cast<int>(i), form))
      dependents[keys[static_cast<std::size_t>(consumed)]].push_back(keys[i]);
  return MicrosecondsOnce([&] {
    std::unordered_set<std::string> seen(keys.begin(), keys.end());
    std::size_t edges = 0;
    for (const std::string& key : keys)
      if (const auto found = dependents.find(key); found != dependents.end())
        for (const std::string& dependent : found->second)
          edges += seen.count(dependent);
    benchmark::DoNotOptimize(edges);
  });
}

// N features whose rebuild does nothing, all marked, sorted and called.
void EmptyRebuild(benchmark::State& state)
{
  FreshModel model;
  Manager& manager = Manager::GetInstance();
  const int form = static_cast<int>(state.range(1));
  std::vector<std::string> keys;
  for (int i = 0; i < state.range(0); ++i) {
    const TDF_Label label = model.NewLabel();
    Manager::FeatureInfo info;
    info.key = Manager::MakeLabelKey(label);
    for (const int consumed : ConsumedBy(i, form))
      info.featureDependencies.push_back(keys[static_cast<std::size_t>(consumed)]);
    info.rebuild = [] { return true; };
    manager.RegisterFeature(label, info);
    keys.push_back(info.key);
  }
  const double ours =
    MicrosecondsPerIteration(state, [&] { manager.RecomputeAllRegisteredFeatures(true); });
  if (manager.GetLastRebuiltFeatureKeys().size() != keys.size())
    state.SkipWithError("not all were rebuilt");
  state.counters["us_per_feature"] = ours / static_cast<double>(state.range(0));
  state.counters["ratio"] = ours / FloorOfGraph(keys, form);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(EmptyRebuild)
  ->ArgsProduct({{1000, 10000, 100000}, {kChain, kStar, kAlone, kTree}})
  ->Unit(benchmark::kMillisecond);

// A history in which each item consumes the one before and one of the first ones, hidden.
void FillHistory(FreshModel& model, int count)
{
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  std::vector<TDF_Label> labels;
  for (int i = 0; i < count; ++i) {
    labels.push_back(model.NewLabel());
    std::vector<TDF_Label> inputs;
    if (i > 0)
      inputs = {labels[static_cast<std::size_t>(i - 1)], labels[static_cast<std::size_t>(i / 2)]};
    history.AddFeature("Feature", "Feature", labels.back(), inputs);
  }
}

double FloorOfHistory()
{
  const std::vector<FeatureHistoryItem> items =
    FeatureHistoryManager::GetInstance().GetAllFeatures();
  return MicrosecondsOnce([&] {
    std::unordered_map<const void*, int> producers;
    int found = 0;
    for (const FeatureHistoryItem& item : items) {
      for (const TDF_Label& input : item.inputs)
        found += static_cast<int>(producers.count(input.Data().get() + input.Tag()));
      producers[item.label.Data().get() + item.label.Tag()] = 1;
    }
    benchmark::DoNotOptimize(found);
  });
}

using Query = void (*)(FeatureHistoryManager&, int count);

struct NamedQuery
{
  const char* name;
  Query ask;
};

const std::vector<NamedQuery> kQueries = {
  {"EffectiveSuppression",
   [](FeatureHistoryManager& history, int count) {
     benchmark::DoNotOptimize(history.IsFeatureEffectivelySuppressed(count));
   }},
  {"DependentsSuppressed",
   [](FeatureHistoryManager& history, int) {
     history.SuppressFeature(1);
     history.GetFeature(1)->suppressed = false;
   }},
  {"DeleteClosure",
   [](FeatureHistoryManager& history, int) {
     benchmark::DoNotOptimize(
       history.CollectDeleteClosureLabels({history.GetFeature(1)->label}).size());
   }},
  {"ReorderRefused",
   [](FeatureHistoryManager& history, int count) {
     benchmark::DoNotOptimize(history.ReorderFeature(1, count - 1));
   }},
  {"LookUpByLabel",
   [](FeatureHistoryManager& history, int count) {
     const TDF_Label label = history.GetFeature(count / 2)->label;
     benchmark::DoNotOptimize(history.GetFeatureByLabel(label));
   }},
};

void HistoryQuery(benchmark::State& state, const NamedQuery& query)
{
  FreshModel model;
  const int count = static_cast<int>(state.range(0));
  FillHistory(model, count);
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  const double ours = MicrosecondsPerIteration(state, [&] { query.ask(history, count); });
  state.counters["ns_per_item"] = 1000 * ours / count;
  state.counters["ratio"] = ours / FloorOfHistory();
}

// Building the history itself, with the look-up that each added item makes.
void BuildHistory(benchmark::State& state)
{
  FreshModel model;
  const int count = static_cast<int>(state.range(0));
  const double ours = MicrosecondsPerIteration(state, [&] {
    FeatureHistoryManager::GetInstance().RebuildFromLabels({});
    FillHistory(model, count);
  });
  state.counters["us_per_item"] = ours / count;
}
BENCHMARK(BuildHistory)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

double PeakMegabytes()
{
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

// A chain of cubes whose last rebuild fails, so that all are put back.
void FailedRebuild(benchmark::State& state)
{
  FreshModel model;
  OrvexTest::CubeFeatures cubes;
  int last = cubes.Add({}, 1);
  const int first = last;
  for (int i = 1; i < state.range(0); ++i)
    last = cubes.Add({cubes.LabelOf(last)}, 1);
  cubes.faultyId = last;
  cubes.fault = OrvexTest::Fault::False;
  const double before = PeakMegabytes();
  const double ours = MicrosecondsPerIteration(state, [&] {
    if (cubes.history.RebuildFeature(first, {{"size", 2}}))
      state.SkipWithError("did not fail");
  });
  cubes.fault = OrvexTest::Fault::None;
  const double sound = MicrosecondsOnce([&] {
    cubes.history.RebuildFeature(first, {{"size", 2}});
  });
  state.counters["peak_growth_MB"] = PeakMegabytes() - before;
  state.counters["ratio"] = ours / sound;
  FeatureHistoryManager::GetInstance().RebuildFromLabels({});
}

} // namespace

int main(int argc, char** argv)
{
  // First, before anything else has raised the peak of the process.
  benchmark::RegisterBenchmark("FailedRebuild", &FailedRebuild)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
  for (const NamedQuery& query : kQueries)
    benchmark::RegisterBenchmark((std::string("HistoryQuery/") + query.name).c_str(), &HistoryQuery,
                                 query)
      ->Arg(100)
      ->Arg(1000)
      ->Arg(10000);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
