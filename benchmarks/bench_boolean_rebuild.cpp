// Rebuilding a chain of N boxes and N-1 fuses, each of the last result with the next box, against
// the bare kernel: the same fuses with default options and the same SetShape. Each side has a
// document of its own, since the kernel's defaults write on their operands, and does its work in
// one command. The two run by turns. Prints the medians, the ratio, and the growth.

#include "Timing.h"
#include "creators/BoxShapeParaCreator.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "operations/OrvexGeometryOp.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

using Manager = ParametricFeatureManager;

constexpr long kLongest = 100;

struct Fuse
{
  TDF_Label first, second, result;
};

class Chain
{
public:
  explicit Chain(long boxes)
  {
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    document->SetUndoLimit(1);
    ShapeDocMgr::GetInstance()->SetDoc(document);
    TDF_Label last = Box(0);
    for (int i = 1; i < boxes; ++i) {
      const TDF_Label next = Box(i);
      std::vector<TopoDS_Shape> pair = {XCAFDoc_ShapeTool::GetShape(last),
                                        XCAFDoc_ShapeTool::GetShape(next)};
      fuses.push_back({last, next, OrvexGeometryOp::PerformUnite(pair, true)});
      last = fuses.back().result;
    }
  }

  ~Chain()
  {
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    XCAFApp_Application::GetApplication()->Close(document);
  }

  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;

  // Seconds for one walk along the chain inside one command.
  template <typename Rebuild>
  double SecondsFor(Rebuild&& rebuild) const
  {
    ShapeDocMgr::GetInstance()->SetDoc(document);
    const double start = SecondsOn(CLOCK_PROCESS_CPUTIME_ID);
    document->NewCommand();
    for (const Fuse& fuse : fuses)
      rebuild(fuse);
    document->CommitCommand();
    return SecondsOn(CLOCK_PROCESS_CPUTIME_ID) - start;
  }

  Handle(XCAFDoc_ShapeTool) Tool() const
  {
    return XCAFDoc_DocumentTool::ShapeTool(document->Main());
  }

private:
  // Off the line in Y and Z, so that no faces fall together.
  static TDF_Label Box(int i)
  {
    return BoxShapeParaCreator().CreateBox(gp_Pnt(7.0 * i, i % 3, i % 2), gp_Dir(), 10, 10, 10);
  }

  Handle(TDocStd_Document) document;
  std::vector<Fuse> fuses;
};

void RebuildRegistered(const Fuse& fuse)
{
  const auto* feature = Manager::GetInstance().FindFeature(Manager::MakeLabelKey(fuse.result));
  if (feature == nullptr || !feature->rebuild())
    throw std::runtime_error("a fuse was not rebuilt");
}

void RebuildByTheKernel(const Handle(XCAFDoc_ShapeTool) & tool, const Fuse& fuse)
{
  BRepAlgoAPI_Fuse kernel(XCAFDoc_ShapeTool::GetShape(fuse.first),
                          XCAFDoc_ShapeTool::GetShape(fuse.second));
  if (!kernel.IsDone())
    throw std::runtime_error("the kernel did not fuse");
  tool->SetShape(fuse.result, kernel.Shape());
}

double Median(std::vector<double> values)
{
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void BM_RebuildChainOfFuses(benchmark::State& state)
{
  const Chain ours(state.range(0)), kernels(state.range(0));
  const auto tool = kernels.Tool();
  // Short walks are repeated until they are as many fuses as the longest.
  const long walks = std::max(1L, kLongest / state.range(0));
  std::vector<double> ourSeconds, kernelSeconds;
  for ([[maybe_unused]] auto iteration : state) {
    for (long i = 0; i < walks; ++i) {
      kernelSeconds.push_back(
        kernels.SecondsFor([&](const Fuse& fuse) { RebuildByTheKernel(tool, fuse); }));
      ourSeconds.push_back(ours.SecondsFor(&RebuildRegistered));
    }
    state.SetIterationTime(Median(ourSeconds));
  }
  state.SetComplexityN(state.range(0));
  state.counters["kernel_ms"] = Median(kernelSeconds) * 1e3;
  state.counters["ms"] = Median(ourSeconds) * 1e3;
  state.counters["ratio"] = Median(ourSeconds) / Median(kernelSeconds);
}

BENCHMARK(BM_RebuildChainOfFuses)
  ->Arg(10)
  ->Arg(50)
  ->Arg(kLongest)
  ->Iterations(5)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond)
  ->Complexity(benchmark::oNSquared);

} // namespace

BENCHMARK_MAIN();
