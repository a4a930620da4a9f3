// Persistent ids of shapes: registering new shapes, finding ids that are cached, and finding ids
// after the document was saved and reopened, at 100, 10,000 and 100,000 shapes. The floor of
// registering is the kernel's own work: a label, its shape and its text.

#include "document/OrvexShapeMapper.h"
#include "document/ShapeDocMgr.h"

#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BinXCAFDrivers.hxx>
#include <TDF_TagSource.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TNaming_Builder.hxx>
#include <TopoDS_Vertex.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
  return std::chrono::duration<double>(Clock::now() - start).count();
}

Handle(XCAFApp_Application) Application()
{
  const auto app = XCAFApp_Application::GetApplication();
  BinXCAFDrivers::DefineFormat(app);
  return app;
}

class FreshDocument
{
public:
  FreshDocument()
  {
    Application()->NewDocument("BinXCAF", document);
    MakeCurrent();
  }
  ~FreshDocument()
  {
    Close();
  }
  FreshDocument(const FreshDocument&) = delete;
  FreshDocument& operator=(const FreshDocument&) = delete;

  void SaveAndReopen()
  {
    const auto path = std::filesystem::temp_directory_path() / "orvex-bench-identity.xbf";
    Application()->SaveAs(document, path.c_str());
    Close();
    Application()->Open(path.c_str(), document);
    MakeCurrent();
    std::filesystem::remove(path);
  }

  TDF_Label Root() const
  {
    return document->Main().FindChild(1);
  }

private:
  void MakeCurrent()
  {
    ShapeDocMgr::GetInstance()->SetDoc(document);
  }
  void Close()
  {
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    Application()->Close(document);
  }

  Handle(TDocStd_Document) document;
};

std::vector<TopoDS_Shape> Vertices(long count)
{
  std::vector<TopoDS_Shape> shapes;
  for (long i = 0; i < count; ++i)
    shapes.push_back(BRepBuilderAPI_MakeVertex(gp_Pnt(static_cast<double>(i), 0, 0)).Vertex());
  return shapes;
}

// Times work(document, shapes) on a new document; reports the time per shape and the growth.
template <typename Prepare, typename Work>
void Measure(benchmark::State& state, Prepare&& prepare, Work&& work)
{
  double total = 0;
  for ([[maybe_unused]] auto iteration : state) {
    FreshDocument document;
    auto shapes = Vertices(state.range(0));
    prepare(document, shapes);
    const auto start = Clock::now();
    work(document, shapes);
    const double seconds = SecondsSince(start);
    state.SetIterationTime(seconds);
    total += seconds;
  }
  state.SetComplexityN(state.range(0));
  state.counters["us_per_shape"] =
    total * 1e6 / static_cast<double>(state.iterations()) / static_cast<double>(state.range(0));
}

void Register(FreshDocument&, const std::vector<TopoDS_Shape>& shapes)
{
  for (const TopoDS_Shape& shape : shapes)
    benchmark::DoNotOptimize(OrvexShapeMapper::GetInstance()->RegisterShape(shape));
}

void FindIds(FreshDocument&, const std::vector<TopoDS_Shape>& shapes)
{
  for (const TopoDS_Shape& shape : shapes)
    benchmark::DoNotOptimize(OrvexShapeMapper::GetInstance()->FindID(shape));
}

// The shapes that a reopened document holds, in the place of those that were registered.
void RegisterAndReopen(FreshDocument& document, std::vector<TopoDS_Shape>& shapes)
{
  auto* mapper = OrvexShapeMapper::GetInstance();
  std::vector<TCollection_AsciiString> ids;
  for (const TopoDS_Shape& shape : shapes)
    ids.push_back(mapper->RegisterShape(shape));
  document.SaveAndReopen();
  for (std::size_t i = 0; i < ids.size(); ++i)
    shapes[i] = mapper->FindShape(ids[i]);
  // A change of document and back empties the caches.
  const auto doc = ShapeDocMgr::GetInstance()->GetDoc();
  {
    const FreshDocument other;
    mapper->FindID(shapes.front());
  }
  ShapeDocMgr::GetInstance()->SetDoc(doc);
}

const auto kNothing = [](FreshDocument&, const std::vector<TopoDS_Shape>&) {};

void BM_KernelLabels(benchmark::State& state)
{
  Measure(state, kNothing, [](FreshDocument& document, const std::vector<TopoDS_Shape>& shapes) {
    for (const TopoDS_Shape& shape : shapes) {
      const TDF_Label label = TDF_TagSource::NewChild(document.Root());
      TNaming_Builder(label).Generated(shape);
      TDataStd_AsciiString::Set(label, "01234567-89ab-4def-8123-456789abcdef");
    }
  });
}

void BM_RegisterShape(benchmark::State& state)
{
  Measure(state, kNothing, &Register);
}

void BM_FindIdCached(benchmark::State& state)
{
  Measure(state, &Register, &FindIds);
}

void BM_FindIdAfterReopening(benchmark::State& state)
{
  Measure(state, &RegisterAndReopen, &FindIds);
}

template <typename Benchmark>
void Sizes(Benchmark* benchmark)
{
  benchmark->Arg(100)->Arg(10000)->Arg(100000)->UseManualTime()->Iterations(1);
  benchmark->Unit(benchmark::kMillisecond)->Complexity();
}

BENCHMARK(BM_KernelLabels)->Apply(Sizes);
BENCHMARK(BM_RegisterShape)->Apply(Sizes);
BENCHMARK(BM_FindIdCached)->Apply(Sizes);
BENCHMARK(BM_FindIdAfterReopening)->Apply(Sizes);

} // namespace

BENCHMARK_MAIN();
