// Numbers and geometry of replay: the summary of a model, and the JSON of all its solids.
//
// The model is a plate with square rows of holes: one face with all the loops, and one face for
// each hole. The floor of both is the kernel's own work in the same round: the walk along all wires
// with the p-curve of each edge, and for the JSON also the kernel's text of the solids. Figures are
// the best of all rounds. calls_ratio is against that floor and the other questions to the kernel
// that a payload answers. With ORVEX_TEST_DATA, the bundles and scripts of its files too.

#include "step/CStepFileReader.h"
#include "step/replay/StepGeometryPayloadStore.h"
#include "step/replay/StepReplayIRBuilder.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepTools.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Circ.hxx>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A plate with side² holes.
TopoDS_Shape Plate(std::int64_t side)
{
  const auto length = static_cast<double>(side);
  const TopoDS_Wire outline = BRepBuilderAPI_MakePolygon(
    gp_Pnt(0, 0, 0), gp_Pnt(length, 0, 0), gp_Pnt(length, length, 0), gp_Pnt(0, length, 0), true);
  BRepBuilderAPI_MakeFace face(outline, true);
  for (std::int64_t hole = 0; hole < side * side; ++hole) {
    const gp_Pnt centre(static_cast<double>(hole % side) + 0.5,
                        static_cast<double>(hole / side) + 0.5, 0);
    const gp_Circ circle(gp_Ax2(centre, gp::DZ().Reversed()), 0.3);
    face.Add(BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(circle)));
  }
  return BRepPrimAPI_MakePrism(face.Face(), gp_Vec(0, 0, 2)).Shape();
}

std::vector<TopoDS_Shape> SubShapesOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  TopTools_IndexedMapOfShape map;
  TopExp::MapShapes(shape, type, map);
  return {map.cbegin(), map.cend()};
}

void WalkWires(const TopoDS_Shape& shape)
{
  for (const TopoDS_Shape& face : SubShapesOf(shape, TopAbs_FACE))
    for (TopExp_Explorer wires(face, TopAbs_WIRE); wires.More(); wires.Next()) {
      BRepTools_WireExplorer way(TopoDS::Wire(wires.Current()), TopoDS::Face(face));
      for (; way.More(); way.Next()) {
        double first = 0;
        double last = 0;
        benchmark::DoNotOptimize(
          BRep_Tool::CurveOnSurface(way.Current(), TopoDS::Face(face), first, last));
      }
    }
}

void WriteSolids(const TopoDS_Shape& shape)
{
  for (const TopoDS_Shape& solid : SubShapesOf(shape, TopAbs_SOLID)) {
    std::ostringstream out;
    BRepTools::Write(solid, out, true, false, TopTools_FormatVersion_VERSION_3);
    benchmark::DoNotOptimize(out.tellp());
  }
}

// All solids from a fresh store: nothing is in its caches.
std::size_t WriteJson(const TopoDS_Shape& shape)
{
  Orvex::StepGeometryPayloadStore store;
  store.BuildIndex(shape);
  const std::size_t solids = SubShapesOf(shape, TopAbs_SOLID).size();
  std::size_t bytes = 0;
  for (std::size_t id = 1; id <= solids; ++id)
    bytes += store.ExpandSolidPayloadJson(id).size();
  return bytes;
}

// Processor time: steadier than the clock on a machine with other work.
double SecondsOf(const std::function<void()>& work)
{
  const auto start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Resident memory of this process now, in megabytes.
double ResidentMegabytes()
{
  std::ifstream statm("/proc/self/statm");
  double total = 0;
  double resident = 0;
  statm >> total >> resident;
  return resident * 4096 / 1e6;
}

void Compare(benchmark::State& state, std::size_t faces, const std::function<void()>& floor,
             const std::function<void()>& ours)
{
  double floorSeconds = 1e30;
  double ourSeconds = 1e30;
  ours();
  for ([[maybe_unused]] auto iteration : state) {
    floorSeconds = std::min(floorSeconds, SecondsOf(floor));
    const double seconds = SecondsOf(ours);
    ourSeconds = std::min(ourSeconds, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["faces"] = static_cast<double>(faces);
  state.counters["floor_ms"] = 1e3 * floorSeconds;
  state.counters["us_per_face"] = 1e6 * ourSeconds / static_cast<double>(faces);
  state.counters["ratio"] = ourSeconds / floorSeconds;
}

void Summary(benchmark::State& state, const TopoDS_Shape& shape)
{
  Compare(
    state, SubShapesOf(shape, TopAbs_FACE).size(), [&] { WalkWires(shape); },
    [&] {
      benchmark::DoNotOptimize(Orvex::StepReplayIRBuilder().BuildSummary(shape, "model").faces);
    });
}

void SummaryJson(benchmark::State& state, const TopoDS_Shape& shape)
{
  const auto summary = Orvex::StepReplayIRBuilder().BuildSummary(shape, "model");
  std::size_t bytes = 0;
  for ([[maybe_unused]] auto iteration : state)
    state.SetIterationTime(SecondsOf([&] { bytes = ToJson(summary).size(); }));
  state.counters["faces"] = static_cast<double>(summary.faces.size());
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["bytes_per_second"] =
    benchmark::Counter(static_cast<double>(bytes), benchmark::Counter::kIsIterationInvariantRate);
}

void KernelWork(const TopoDS_Shape& shape)
{
  WalkWires(shape);
  WriteSolids(shape);
}

// The other questions to the kernel that a payload answers: bounds and outer wire of each face,
// curve and ends of each edge of it.
void AskTheRest(const TopoDS_Shape& shape)
{
  for (const TopoDS_Shape& found : SubShapesOf(shape, TopAbs_FACE)) {
    const TopoDS_Face& face = TopoDS::Face(found);
    double u1 = 0, u2 = 0, v1 = 0, v2 = 0;
    BRepTools::UVBounds(face, u1, u2, v1, v2);
    benchmark::DoNotOptimize(BRepTools::OuterWire(face));
    benchmark::DoNotOptimize(BRepAdaptor_Surface(face, false).GetType());
    for (TopExp_Explorer edges(face, TopAbs_EDGE); edges.More(); edges.Next()) {
      const TopoDS_Edge& edge = TopoDS::Edge(edges.Current());
      gp_Pnt2d first, last;
      BRep_Tool::UVPoints(edge, face, first, last);
      benchmark::DoNotOptimize(BRepAdaptor_Curve(edge).GetType());
      benchmark::DoNotOptimize(BRep_Tool::IsClosed(edge, face));
    }
  }
}

// What was measured against all that the kernel is asked for.
double CallsRatio(const TopoDS_Shape& shape, benchmark::State& state)
{
  const double floor = state.counters["floor_ms"];
  double rest = 1e30;
  for (int round = 0; round < 3; ++round)
    rest = std::min(rest, 1e3 * SecondsOf([&] { AskTheRest(shape); }));
  return state.counters["ratio"] * floor / (floor + rest);
}

void SolidJson(benchmark::State& state, const TopoDS_Shape& shape)
{
  std::size_t bytes = 0;
  Compare(
    state, SubShapesOf(shape, TopAbs_FACE).size(), [&] { KernelWork(shape); },
    [&] { bytes = WriteJson(shape); });
  state.counters["calls_ratio"] = CallsRatio(shape, state);
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}

// What a store holds after it gave the JSON of all solids, and that JSON.
void Memory(benchmark::State& state, const TopoDS_Shape& shape)
{
  for ([[maybe_unused]] auto iteration : state) {
    malloc_trim(0);
    const double before = ResidentMegabytes();
    Orvex::StepGeometryPayloadStore store;
    store.BuildIndex(shape);
    const std::string text = store.ExpandSolidPayloadJson(1);
    const double megabytes = static_cast<double>(text.size()) / 1e6;
    state.counters["text_MB"] = megabytes;
    state.counters["all_in_texts"] = (ResidentMegabytes() - before) / megabytes;
    state.SetIterationTime(1);
  }
}

using Measure = void (*)(benchmark::State& state, const TopoDS_Shape& shape);

void Register(const std::string& name, const std::string& model, Measure measure,
              const std::function<TopoDS_Shape()>& make)
{
  benchmark::RegisterBenchmark(std::string(name).append("/").append(model).c_str(),
                               [measure, make](benchmark::State& state) { measure(state, make()); })
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
}

void RegisterPlates()
{
  for (const std::int64_t side : {10, 32, 100, 316}) {
    const std::string model = std::to_string(side * side).append(" holes");
    const auto make = [side] { return Plate(side); };
    Register("summary", model, Summary, make);
    Register("summary as JSON", model, SummaryJson, make);
    Register("solids as JSON", model, SolidJson, make);
  }
  benchmark::RegisterBenchmark("memory/10000 holes",
                               [](benchmark::State& state) { Memory(state, Plate(100)); })
    ->UseManualTime()
    ->Iterations(1);
}

// A file that was read once, with the shapes that its documents are about.
struct ReadFile
{
  CStepFileReader reader;
  TopoDS_Compound model;
};

ReadFile& FileRead(const std::string& path)
{
  static std::map<std::string, ReadFile> files;
  const auto [place, isNew] = files.try_emplace(path);
  ReadFile& file = place->second;
  if (!isNew)
    return file;
  file.reader.SetInputFileName(QString::fromStdString(path));
  if (!file.reader.ReadSynchronously() && !file.reader.TryReadStepsMapNew())
    std::abort();
  BRep_Builder().MakeCompound(file.model);
  for (const StepShapeData& item : file.reader.GetImportShapeDataList())
    BRep_Builder().Add(file.model, item.shape);
  benchmark::DoNotOptimize(file.reader.BuildReplayFeatureCandidates().size());
  return file;
}

// The documents of all solids, one after the other; summary and candidates are there already.
void SolidDocuments(benchmark::State& state, const std::string& path,
                    std::string (CStepFileReader::*document)(std::uint64_t) const)
{
  const ReadFile& file = FileRead(path);
  const std::size_t solids = SubShapesOf(file.model, TopAbs_SOLID).size();
  std::size_t bytes = 0;
  Compare(
    state, SubShapesOf(file.model, TopAbs_FACE).size(), [&] { KernelWork(file.model); },
    [&] {
      bytes = 0;
      for (std::size_t id = 1; id <= solids; ++id)
        bytes += (file.reader.*document)(id).size();
    });
  state.counters["calls_ratio"] = CallsRatio(file.model, state);
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["solids"] = static_cast<double>(solids);
}

constexpr const char* kFiles[] = {"nested-bracket-assembly-ap214.step", "freeform-foot-cover.step",
                                  "distribution-board-assembly.step",
                                  "robot-arm-follower-assembly.step"};

void RegisterFiles(const std::string& folder)
{
  for (const char* name : kFiles) {
    const std::string path = std::string(folder).append("/").append(name);
    const auto model = [path]() -> TopoDS_Shape { return FileRead(path).model; };
    Register("summary", name, Summary, model);
    const std::pair<const char*, std::string (CStepFileReader::*)(std::uint64_t) const>
      documents[] = {{"bundles", &CStepFileReader::BuildReplaySolidBundleJson},
                     {"scripts", &CStepFileReader::BuildReplaySolidPythonScript}};
    for (const auto& [word, document] : documents)
      benchmark::RegisterBenchmark(std::string(word).append("/").append(name).c_str(),
                                   [path, document = document](benchmark::State& state) {
                                     SolidDocuments(state, path, document);
                                   })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(5);
  }
}

} // namespace

int main(int argumentCount, char** arguments)
{
  benchmark::Initialize(&argumentCount, arguments);
  RegisterPlates();
  if (const char* folder = std::getenv("ORVEX_TEST_DATA"))
    RegisterFiles(folder);
  else
    std::puts("ORVEX_TEST_DATA does not name the folder of real STEP files: generated models only");
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}
