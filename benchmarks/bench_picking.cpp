// Picks on triangles of one solid, 100,000 seeded rays on one thread, against Embree's single rays
// where it is installed (same triangles, same rays) and the kernel's own ray cast on the exact
// faces. Memory is what the heap grew by, for Embree what it reports of itself.
//
// Picks of faces, edges and vertices among 10 to 10,000 shapes, against the same test on just the
// shapes that the line hits. Building and asking the tree of shapes.

#include "Timing.h"
#include "picking/OCCPickingSystem.h"
#include "picking/OrvexPickShapeData.h"
#include "picking/OrvexShapeOctree.h"
#include "support/Plate.h"
#include "support/Random.h"

#include <benchmark/benchmark.h>

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Builder.hxx>
#include <IntCurvesFace_ShapeIntersector.hxx>
#include <STEPControl_Reader.hxx>
#include <TopoDS_Compound.hxx>

#ifdef ORVEX_HAS_EMBREE
#include <embree3/rtcore.h>
#include <pmmintrin.h>
#endif

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <malloc.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace OrvexTest;

constexpr int kRays = 100000;

struct Ray
{
  gp_Pnt origin;
  gp_Dir direction;
};

std::size_t HeapBytes()
{
  const auto heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

// A plate of 10 by 10 with a hole in each unit square and a dimple at each of their inner corners.
TopoDS_Shape DimpledPlate()
{
  static constexpr int kCount = 10;
  TopoDS_Compound dimples;
  BRep_Builder builder;
  builder.MakeCompound(dimples);
  for (int i = 1; i < kCount; ++i)
    for (int k = 1; k < kCount; ++k)
      builder.Add(dimples, BRepPrimAPI_MakeSphere(gp_Pnt(i, k, 2.1), 0.18).Shape());
  return BRepAlgoAPI_Cut(PerforatedPlate(kCount), dimples).Shape();
}

struct Target
{
  TopoDS_Shape shape;
  std::unique_ptr<OrvexPickShapeData> data;
  std::vector<Ray> rays;
  double buildSeconds = 0;
  std::size_t bytes = 0;
};

// From all round the shape to anywhere in its box.
std::vector<Ray> RaysAt(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box);
  const gp_XYZ low = box.CornerMin().XYZ(), extent = box.CornerMax().XYZ() - low;
  Random random(Seed());
  const auto inBox = [&](double from, double to) {
    const double x = random.Real(from, to), y = random.Real(from, to), z = random.Real(from, to);
    return gp_Pnt(low + gp_XYZ(extent.X() * x, extent.Y() * y, extent.Z() * z));
  };
  std::vector<Ray> rays;
  while (rays.size() < kRays) {
    const gp_Pnt from = inBox(-2, 3), to = inBox(0, 1);
    if (from.Distance(to) > 1e-3 * extent.Modulus())
      rays.push_back({from, gp_Dir(gp_Vec(from, to))});
  }
  return rays;
}

Target TargetOf(const TopoDS_Shape& shape)
{
  Target target{shape, std::make_unique<OrvexPickShapeData>(shape), RaysAt(shape)};
  malloc_trim(0);
  const std::size_t before = HeapBytes();
  target.buildSeconds = ThreadSecondsFor([&] { target.data->Initialize(); });
  malloc_trim(0);
  target.bytes = HeapBytes() - before;
  return target;
}

// Deflections that give about 1e4, 1e5 and 1e6 triangles.
const Target& PlateTarget(int size)
{
  static const TopoDS_Shape plate = DimpledPlate();
  static std::map<int, Target> targets;
  if (const auto known = targets.find(size); known != targets.end())
    return known->second;
  const double deflection[] = {0.1, 7e-4, 6.5e-5};
  const TopoDS_Shape meshed = BRepBuilderAPI_Copy(plate, true, false).Shape();
  BRepMesh_IncrementalMesh(meshed, deflection[size], false, 1, true);
  return targets.emplace(size, TargetOf(meshed)).first->second;
}

#ifdef ORVEX_HAS_EMBREE
std::atomic<std::ptrdiff_t> embreeBytes = 0;

class EmbreeScene
{
public:
  explicit EmbreeScene(const std::vector<OrvexTriangleData>& triangles)
  {
    _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
    _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
    device = rtcNewDevice("threads=1");
    rtcSetDeviceMemoryMonitorFunction(
      device,
      [](void*, ssize_t bytes, bool) {
        embreeBytes += bytes;
        return true;
      },
      nullptr);
    scene = rtcNewScene(device);
    const RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* corner = static_cast<float*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0,
                                                               RTC_FORMAT_FLOAT3, 3 * sizeof(float),
                                                               3 * triangles.size()));
    auto* index = static_cast<unsigned*>(
      rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                              3 * sizeof(unsigned), triangles.size()));
    unsigned next = 0;
    for (const OrvexTriangleData& triangle : triangles)
      for (const gp_Pnt& point : {triangle.A, triangle.B, triangle.C}) {
        for (int axis = 1; axis <= 3; ++axis)
          *corner++ = static_cast<float>(point.Coord(axis));
        *index++ = next++;
      }
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene);
  }
  EmbreeScene(const EmbreeScene&) = delete;
  EmbreeScene& operator=(const EmbreeScene&) = delete;
  ~EmbreeScene()
  {
    rtcReleaseScene(scene);
    rtcReleaseDevice(device);
    _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_OFF);
    _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_OFF);
  }

  bool Hits(const Ray& ray) const
  {
    RTCRayHit query{};
    query.ray.org_x = static_cast<float>(ray.origin.X());
    query.ray.org_y = static_cast<float>(ray.origin.Y());
    query.ray.org_z = static_cast<float>(ray.origin.Z());
    query.ray.dir_x = static_cast<float>(ray.direction.X());
    query.ray.dir_y = static_cast<float>(ray.direction.Y());
    query.ray.dir_z = static_cast<float>(ray.direction.Z());
    query.ray.tfar = std::numeric_limits<float>::infinity();
    query.ray.mask = ~0U;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcIntersect1(scene, &context, &query);
    return query.hit.geomID != RTC_INVALID_GEOMETRY_ID;
  }

private:
  RTCDevice device;
  RTCScene scene;
};

void CompareWithEmbree(benchmark::State& state, const Target& target, double ourSeconds)
{
  const std::vector<OrvexTriangleData> triangles = target.data->GetKDTree()->Triangles();
  embreeBytes = 0;
  std::optional<EmbreeScene> scene;
  const double build = ThreadSecondsFor([&] { scene.emplace(triangles); });
  int hits = 0;
  const double seconds = ThreadSecondsFor([&] {
    for (const Ray& ray : target.rays)
      hits += scene->Hits(ray) ? 1 : 0;
  });
  const auto count = static_cast<double>(triangles.size());
  state.counters["embree_Mrays_s"] = kRays / seconds * 1e-6;
  state.counters["of_embree"] = seconds / ourSeconds;
  state.counters["embree_build_ms"] = build * 1e3;
  state.counters["embree_B_per_tri"] = static_cast<double>(embreeBytes) / count;
  state.counters["embree_hits"] = hits;
}
#else
void CompareWithEmbree(benchmark::State& state, const Target&, double)
{
  state.SetLabel("without Embree, which was not installed when this was built");
}
#endif

// A thousandth of the rays: the kernel needs that much longer.
double KernelSecondsPerRay(const Target& target)
{
  IntCurvesFace_ShapeIntersector intersector;
  intersector.Load(target.shape, 1e-7);
  static constexpr int kShare = 1000;
  const double seconds = ThreadSecondsFor([&] {
    for (int i = 0; i < kRays; i += kShare) {
      const Ray& ray = target.rays[static_cast<std::size_t>(i)];
      intersector.PerformNearest(gp_Lin(ray.origin, ray.direction), 0, 1e9);
    }
  });
  return seconds * kShare / kRays;
}

void PickOnTriangles(benchmark::State& state, const Target& target)
{
  const OrvexKDTree& tree = *target.data->GetKDTree();
  double seconds = 1e9;
  int hits = 0;
  for ([[maybe_unused]] auto iteration : state) {
    hits = 0;
    const double taken = ThreadSecondsFor([&] {
      for (const Ray& ray : target.rays)
        hits += tree.NearestHit(ray.origin, ray.direction) ? 1 : 0;
    });
    state.SetIterationTime(taken);
    seconds = std::min(seconds, taken);
  }
  const auto count = static_cast<double>(tree.Triangles().size());
  state.counters["triangles"] = count;
  state.counters["hits"] = hits;
  state.counters["Mrays_s"] = kRays / seconds * 1e-6;
  state.counters["build_ms"] = target.buildSeconds * 1e3;
  state.counters["B_per_tri"] = static_cast<double>(target.bytes) / count;
  state.counters["kernel_us_per_ray"] = KernelSecondsPerRay(target) * 1e6;
  CompareWithEmbree(state, target, seconds);
}

void BM_Plate(benchmark::State& state)
{
  PickOnTriangles(state, PlateTarget(static_cast<int>(state.range(0))));
}

BENCHMARK(BM_Plate)->DenseRange(0, 2)->Iterations(3)->UseManualTime()->Unit(
  benchmark::kMillisecond);

void BM_File(benchmark::State& state, const std::string& name)
{
  const char* folder = std::getenv("ORVEX_TEST_DATA");
  if (folder == nullptr)
    return state.SkipWithError("ORVEX_TEST_DATA does not name the folder of real STEP files");
  STEPControl_Reader reader;
  if (reader.ReadFile((std::string(folder) + "/" + name).c_str()) != IFSelect_RetDone)
    return state.SkipWithError("the file cannot be read");
  reader.TransferRoots();
  const TopoDS_Shape shape = reader.OneShape();
  BRepMesh_IncrementalMesh(shape, 0.05, false, 0.1, true);
  PickOnTriangles(state, TargetOf(shape));
}

BENCHMARK_CAPTURE(BM_File, toothed_pulley, std::string("toothed-pulley.step"))
  ->Iterations(3)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_File, foot_cover, std::string("freeform-foot-cover.step"))
  ->Iterations(3)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_File, robot_arm, std::string("robot-arm-follower-assembly.step"))
  ->Iterations(3)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);

// Rows of small plates with a hole, so that a line along X meets few of them.
std::vector<TopoDS_Shape> ManyShapes(int count)
{
  const TopoDS_Shape plate = PerforatedPlate(1);
  std::vector<TopoDS_Shape> shapes;
  const int side = static_cast<int>(std::ceil(std::cbrt(count)));
  for (int i = 0; i < count; ++i) {
    gp_Trsf place;
    place.SetTranslation(gp_Vec(4 * (i % side), 4 * (i / side % side), 4 * (i / side / side)));
    shapes.push_back(plate.Moved(place));
  }
  return shapes;
}

// Picks by many lines, and again with just the shapes that each of them hits in the list.
void BM_Level(benchmark::State& state)
{
  const auto level = static_cast<PickingLevel>(state.range(0));
  const std::vector<TopoDS_Shape> shapes = ManyShapes(static_cast<int>(state.range(1)));
  Bnd_Box box;
  for (const TopoDS_Shape& shape : shapes)
    BRepBndLib::Add(shape, box);
  Random random(Seed());
  const gp_XYZ low = box.CornerMin().XYZ(), extent = box.CornerMax().XYZ() - low;
  std::vector<gp_Lin> lines;
  while (lines.size() < 200) {
    const gp_XYZ from(-10, extent.Y() * random.Real(0, 1), extent.Z() * random.Real(0, 1));
    lines.emplace_back(gp_Pnt(low + from),
                       gp_Dir(1, random.Real(-0.1, 0.1), random.Real(-0.1, 0.1)));
  }
  OCCPickingSystem picking;
  const double setting = ThreadSecondsFor([&] { picking.SetShapesToPick(shapes); });
  picking.SetPickingLevel(level);
  std::size_t hits = 0, reached = 0;
  std::vector<std::vector<TopoDS_Shape>> hit(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (const TopoDS_Shape& shape : shapes) {
      Bnd_Box own;
      BRepBndLib::Add(shape, own, true);
      if (!own.IsOut(lines[i]))
        hit[i].push_back(shape);
    }
    reached += hit[i].size();
    picking.PickShapes(lines[i]);
  }
  double seconds = 0;
  for ([[maybe_unused]] auto iteration : state) {
    hits = 0;
    seconds = ThreadSecondsFor([&] {
      for (const gp_Lin& line : lines)
        hits += picking.PickShapes(line).size();
    });
    state.SetIterationTime(seconds);
  }
  double alone = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    OCCPickingSystem few;
    few.SetShapesToPick(hit[i]);
    few.SetPickingLevel(level);
    few.PickShapes(lines[i]);
    alone += ThreadSecondsFor([&] { few.PickShapes(lines[i]); });
  }
  const auto count = static_cast<double>(lines.size());
  state.counters["picks_s"] = count / seconds;
  state.counters["reached_per_pick"] = static_cast<double>(reached) / count;
  state.counters["hits_per_pick"] = static_cast<double>(hits) / count;
  state.counters["of_reached_alone"] = seconds / alone;
  state.counters["set_ms"] = setting * 1e3;
}

BENCHMARK(BM_Level)
  ->ArgNames({"level", "shapes"})
  ->ArgsProduct({{0, 1, 2}, {10, 1000, 10000}})
  ->Iterations(3)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);

void BM_Octree(benchmark::State& state)
{
  const std::vector<TopoDS_Shape> shapes = ManyShapes(static_cast<int>(state.range(0)));
  Bnd_Box box;
  const double boxes = ThreadSecondsFor([&] {
    for (const TopoDS_Shape& shape : shapes)
      BRepBndLib::Add(shape, box, true);
  });
  std::unique_ptr<OrvexShapeOctree> tree;
  double build = 0;
  for ([[maybe_unused]] auto iteration : state) {
    build = ThreadSecondsFor([&] {
      tree = std::make_unique<OrvexShapeOctree>(box, 6, 128);
      tree->InsertShapes(shapes);
    });
    state.SetIterationTime(build);
  }
  const gp_Lin line(gp_Pnt(-5, 2.3, 0.7), gp_Dir(1, 0.01, 0.02));
  static constexpr int kQueries = 20;
  std::size_t found = 0;
  const double query = ThreadSecondsFor([&] {
    for (int i = 0; i < kQueries; ++i)
      found = tree->GetCandidateShapes(line, 0.1).size();
  });
  state.counters["of_boxes"] = build / boxes;
  state.counters["query_us"] = query / kQueries * 1e6;
  state.counters["found"] = static_cast<double>(found);
}

BENCHMARK(BM_Octree)->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1)->UseManualTime()->Unit(
  benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
