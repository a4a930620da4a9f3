// Creating boxes in a document, against the kernel's own part of the work: the same shape, label
// and attributes written with bare kernel calls. Prints the time per box, the ratio to the kernel's
// own, and the complexity that fits the growth over 1,000, 10,000 and 50,000 boxes.

#include "creators/BoxShapeParaCreator.h"
#include "document/ShapeDocMgr.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TDataStd_BooleanList.hxx>
#include <TDataStd_Integer.hxx>
#include <TDataStd_Name.hxx>
#include <TDataStd_Real.hxx>
#include <TDataXtd_Position.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

namespace {

using Clock = std::chrono::steady_clock;

// Seconds per box of the bare kernel, by number of boxes, for the ratio.
std::map<long, double> kernelSecondsPerBox;

class FreshDocument
{
public:
  FreshDocument()
  {
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    ShapeDocMgr::GetInstance()->SetDoc(document);
    tool = XCAFDoc_DocumentTool::ShapeTool(document->Main());
  }

  ~FreshDocument()
  {
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    XCAFApp_Application::GetApplication()->Close(document);
  }

  FreshDocument(const FreshDocument&) = delete;
  FreshDocument& operator=(const FreshDocument&) = delete;

  Handle(XCAFDoc_ShapeTool) tool;

private:
  Handle(TDocStd_Document) document;
};

TDF_Label NamedChild(const TDF_Label& label, int tag, const char* name)
{
  const TDF_Label child = label.FindChild(tag);
  TDataStd_AsciiString::Set(child, name);
  return child;
}

void KernelBox(const Handle(XCAFDoc_ShapeTool) & tool, int number)
{
  const TopoDS_Shape shape = BRepPrimAPI_MakeBox(gp_Ax2(), 1.0, 2.0, 3.0).Shape();
  const TDF_Label label = tool->NewShape();
  tool->SetShape(label, shape);
  TDataStd_AsciiString::Set(label, (TCollection_AsciiString("Box_") + number));
  TDataStd_Integer::Set(NamedChild(label, 1, "Type"), 10);
  TDataStd_BooleanList::Set(NamedChild(label, 2, "Visibility"))->Append(true);
  TDataStd_Real::Set(NamedChild(label, 3, "Transparent"), 1.0);
  TDataXtd_Position::Set(NamedChild(label, 4, "Color"), gp_Pnt(0.7, 0.2, 0.8));
  TDataStd_Name::Set(NamedChild(label, 5, "Material"), "Not Assigned");
  TDataStd_BooleanList::Set(NamedChild(label, 6, "Enabled"))->Append(true);
  TDataStd_Real::Set(NamedChild(label, 7, "Mesh Size"), 0.0);
  TDataStd_Name::Set(NamedChild(label, 8, "Display Mode"), "surface");
  TDataStd_BooleanList::Set(label.FindChild(8))->Append(false);
  TDataXtd_Position::Set(NamedChild(label, 9, "Base Point"), gp_Pnt());
  TDataXtd_Position::Set(NamedChild(label, 10, "Normal"), gp_Pnt(0, 0, 1));
  TDataStd_Real::Set(NamedChild(label, 11, "Length"), 1.0);
  TDataStd_Real::Set(NamedChild(label, 12, "Width"), 2.0);
  TDataStd_Real::Set(NamedChild(label, 13, "Height"), 3.0);
}

// Makes state.range(0) boxes in a new document; the document's own time is not counted.
template <typename MakeBox>
double SecondsPerBox(benchmark::State& state, MakeBox&& makeBox)
{
  const int count = static_cast<int>(state.range(0));
  double total = 0;
  for ([[maybe_unused]] auto iteration : state) {
    const FreshDocument document;
    const auto start = Clock::now();
    for (int i = 0; i < count; ++i)
      makeBox(document.tool, i);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(seconds);
    total += seconds;
  }
  state.SetComplexityN(count);
  const double perBox = total / static_cast<double>(state.iterations()) / count;
  state.counters["us_per_box"] = perBox * 1e6;
  return perBox;
}

void BM_KernelOnly(benchmark::State& state)
{
  kernelSecondsPerBox[state.range(0)] = SecondsPerBox(state, &KernelBox);
}

void BM_CreateBox(benchmark::State& state)
{
  const double perBox = SecondsPerBox(state, [](const Handle(XCAFDoc_ShapeTool)&, int) {
    BoxShapeParaCreator().CreateBox(gp_Pnt(), gp_Dir(), 1.0, 2.0, 3.0);
  });
  const double kernel = kernelSecondsPerBox[state.range(0)];
  state.counters["ratio_to_kernel"] = perBox / kernel;
  state.counters["kernel_share_percent"] = 100.0 * kernel / perBox;
}

template <typename Benchmark>
void Sizes(Benchmark* benchmark)
{
  benchmark->Arg(1000)->Arg(10000)->Arg(50000)->UseManualTime()->Unit(benchmark::kMillisecond);
  benchmark->Iterations(3)->Complexity(benchmark::oN);
}

BENCHMARK(BM_KernelOnly)->Apply(Sizes);
BENCHMARK(BM_CreateBox)->Apply(Sizes);

} // namespace

BENCHMARK_MAIN();
