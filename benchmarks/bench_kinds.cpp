// Rebuilding each kind of shape from its label, against the bare kernel's part of the work: the
// same builder and the same SetShape on the same label. Prints microseconds of overhead and the
// ratio.

#include "Timing.h"
#include "creators/KindShapeParaCreator.h"
#include "document/ShapeDocMgr.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <TopoDS_Face.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Pln.hxx>

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace {

using Orvex::ParameterSet;
using Orvex::PointList;
using Orvex::ShapeKind;

std::map<std::string, double> kernelMicroseconds;

ParameterSet ValuesOf(const std::string& word)
{
  const gp_Pnt o(0, 0, 0), x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const gp_Dir up(0, 0, 1);
  const TopoDS_Shape face = BRepBuilderAPI_MakeFace(gp_Pln(), 1, 2, 0, 1).Face();
  const std::map<std::string, ParameterSet> values = {
    {"Line", {o, x}},
    {"Rectangle", {o, 1.0, 2.0}},
    {"Polygon", {o, x, 6}},
    {"Arc", {x, y, gp_Pnt(-1, 0, 0)}},
    {"Circle", {o, 1.0}},
    {"Ellipse", {o, 2.0, 1.0}},
    {"BSpline", {PointList{o, x, y, z}}},
    {"Bezier", {PointList{o, x, y, z}}},
    {"Box", {o, up, 1.0, 2.0, 3.0}},
    {"Cylinder", {o, up, 1.0, 2.0, 360.0}},
    {"Sphere", {o, 1.0, -90.0, 90.0, 360.0}},
    {"Cone", {o, 2.0, 1.0, 3.0, 360.0, up}},
    {"Torus", {o, 3.0, 1.0, -180.0, 180.0, 360.0}},
    {"Revolve", {o, gp_Dir(0, 1, 0), 1.0, face}},
    {"Extrude", {gp_Vec(0, 0, 1), 2.0, face}},
    {"ExtrudeLoop", {up, 2.0, face}},
  };
  return values.at(word);
}

// One shape of a kind in a document of its own.
struct Subject
{
  explicit Subject(const ShapeKind& kind) : creator(kind.make()), values(ValuesOf(kind.word))
  {
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    ShapeDocMgr::GetInstance()->SetDoc(document);
    label = creator->CreateWith(values);
  }

  ~Subject()
  {
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    XCAFApp_Application::GetApplication()->Close(document);
  }

  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;

  std::unique_ptr<KindShapeParaCreator> creator;
  ParameterSet values;
  Handle(TDocStd_Document) document;
  TDF_Label label;
};

void Kernel(benchmark::State& state, const ShapeKind* kind)
{
  const Subject subject(*kind);
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(subject.label);
  kernelMicroseconds[kind->word] = MicrosecondsPerIteration(
    state, [&] { tool->SetShape(subject.label, kind->build(subject.values)); });
}

void Rebuild(benchmark::State& state, const ShapeKind* kind)
{
  Subject subject(*kind);
  const double ours =
    MicrosecondsPerIteration(state, [&] { subject.creator->UpdateShape(subject.label); });
  const double kernel = kernelMicroseconds[kind->word];
  state.counters["overhead_us"] = ours - kernel;
  state.counters["ratio"] = ours / kernel;
}

} // namespace

int main(int argc, char** argv)
{
  for (const ShapeKind* kind : Orvex::ShapeKinds()) {
    const std::string word = kind->word;
    // The revolve's source grows with every rebuild, in the kernel too: a fixed count is fair.
    for (const auto& [name, work] :
         {std::pair("Kernel/" + word, &Kernel), std::pair("Rebuild/" + word, &Rebuild)})
      benchmark::RegisterBenchmark(name.c_str(), work, kind)
        ->Iterations(word == "Torus" ? 50 : 500)
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
