// Collision checks on seeded scenes of parts of all kinds, each a shape of its own.
//
// The fast preset against FCL, the usual library for collisions of meshes, where it is installed:
// same triangles, same pairs. "trees" are both libraries' trees over all parts with a test of each
// pair whose boxes meet, on one thread; "cold" is a whole run of ours with its meshing against
// meshing all parts, all trees and the tests. Meshing is the kernel's on both sides.
//
// The accurate preset against the kernel's own exact distance and common solid, each once, on the
// pairs that reach those stages.

#include "Timing.h"
#include "collision/OrvexCollisionEngine.h"
#include "collision/internal/CacheFilling.h"
#include "collision/internal/ExactStages.h"
#include "collision/internal/PartRecords.h"
#include "collision/internal/ShapeMeshing.h"
#include "collision/internal/TriBVHTests.h"
#include "step/CStepFileReader.h"
#include "support/CollisionScenes.h"

#include <BRepAlgoAPI_Common.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <BRepTools.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>

#ifdef ORVEX_HAS_FCL
#include <fcl/geometry/bvh/BVH_model.h>
#include <fcl/narrowphase/collision.h>
#endif

#include <omp.h>

#include <map>

namespace {

using namespace OrvexTest;
using Orvex::TriBVH;
using Tree = std::shared_ptr<const TriBVH>;
using Parts = std::vector<OrvexModelPart>;
using Pairs = std::vector<std::pair<int, int>>;

struct Scene
{
  std::vector<TopoDS_Shape> shapes;
  Parts parts;
  OrvexSceneStats stats;
};

// Real assemblies, in the place of a number of parts.
constexpr const char* kAssemblies[] = {"robot-arm-follower-assembly.step",
                                       "distribution-board-assembly.step",
                                       "nested-bracket-assembly-ap214.step"};

// The placed solids of a file; none without the folder of files.
std::vector<TopoDS_Shape> SolidsOf(const char* file)
{
  std::vector<TopoDS_Shape> solids;
  const char* folder = std::getenv("ORVEX_TEST_DATA");
  if (folder == nullptr)
    return solids;
  CStepFileReader reader;
  reader.SetInputFileName(QString("%1/%2").arg(folder, file));
  reader.ReadSynchronously();
  for (const StepShapeData& item : reader.GetImportShapeDataList())
    for (TopExp_Explorer solid(item.shape, TopAbs_SOLID); solid.More(); solid.Next())
      solids.push_back(solid.Current());
  return solids;
}

// Made once for each size; -1, -2, ... are the assemblies.
const Scene& SceneOf(int count)
{
  static std::map<int, Scene> scenes;
  Scene& scene = scenes[count];
  if (scene.shapes.empty()) {
    scene.shapes = count > 0 ? SceneOfParts(Seed(), count) : SolidsOf(kAssemblies[-count - 1]);
    scene.parts = Orvex::PartsOf(scene.shapes);
    scene.stats.sceneDiagonal = DiagonalOf(scene.shapes);
  }
  return scene;
}

void ForgetMeshes(const Scene& scene)
{
  for (const TopoDS_Shape& shape : scene.shapes)
    BRepTools::Clean(shape);
}

void MeshAll(const Scene& scene, const OrvexCollisionConfig& config)
{
  const double deflection = Orvex::MeshDeflection(config, scene.stats);
  Orvex::MeshDistinctShapes(scene.shapes, Orvex::FinenessFor(deflection), [] { return false; });
}

std::vector<Tree> TreesOf(const Scene& scene)
{
  std::vector<Tree> trees;
  for (const TopoDS_Shape& shape : scene.shapes)
    trees.push_back(TriBVH::Of(shape));
  return trees;
}

Pairs PairsWhoseBoxesMeet(const Scene& scene)
{
  Pairs pairs;
  for (std::size_t i = 0; i < scene.parts.size(); ++i)
    for (std::size_t j = i + 1; j < scene.parts.size(); ++j)
      if (!scene.parts[i].box.IsOut(scene.parts[j].box))
        pairs.emplace_back(i, j);
  return pairs;
}

#ifdef ORVEX_HAS_FCL
using PeerModel = std::shared_ptr<fcl::BVHModel<fcl::OBBRSSd>>;

struct PeerMesh
{
  std::vector<fcl::Vector3d> points;
  std::vector<fcl::Triangle> triangles;
};

PeerMesh PeerMeshOf(const TriBVH& tree)
{
  PeerMesh mesh;
  for (const gp_XYZ& point : tree.vertices)
    mesh.points.emplace_back(point.X(), point.Y(), point.Z());
  for (const TriBVH::Triangle& t : tree.triangles)
    mesh.triangles.emplace_back(t[0], t[1], t[2]);
  return mesh;
}

std::vector<PeerModel> PeerModelsOf(const std::vector<PeerMesh>& meshes)
{
  std::vector<PeerModel> models;
  for (const PeerMesh& mesh : meshes) {
    models.push_back(std::make_shared<fcl::BVHModel<fcl::OBBRSSd>>());
    models.back()->beginModel();
    models.back()->addSubModel(mesh.points, mesh.triangles);
    models.back()->endModel();
  }
  return models;
}

int PeerCollisions(const std::vector<PeerModel>& models, const Pairs& pairs)
{
  int collisions = 0;
  for (const auto& [i, j] : pairs) {
    const fcl::CollisionRequestd request;
    fcl::CollisionResultd result;
    const auto place = fcl::Transform3d::Identity();
    fcl::collide(models[static_cast<std::size_t>(i)].get(), place,
                 models[static_cast<std::size_t>(j)].get(), place, request, result);
    collisions += result.isCollision();
  }
  return collisions;
}

void BM_FastAgainstFcl(benchmark::State& state)
{
  const Scene& scene = SceneOf(static_cast<int>(state.range(0)));
  if (scene.shapes.empty()) {
    state.SkipWithError("ORVEX_TEST_DATA does not name the folder of real STEP files");
    return;
  }
  const auto config = OrvexCollisionConfig::createFastConfig();
  const Pairs pairs = PairsWhoseBoxesMeet(scene);
  const double fuzzy = std::max(1e-7, config.relativeFuzzy * scene.stats.sceneDiagonal);
  double ours = 0, peers = 0, oursCold = 0, peersCold = 0;
  OrvexCollisionTrace trace;
  std::size_t triangles = 0;
  for ([[maybe_unused]] auto iteration : state) {
    ForgetMeshes(scene);
    trace = {};
    oursCold = WallSecondsFor(
      [&] { OrvexCollisionEngine(config, scene.stats).compute(scene.parts, {}, nullptr, &trace); });
    ForgetMeshes(scene);
    const double meshing = WallSecondsFor([&] { MeshAll(scene, config); });
    std::vector<Tree> trees;
    ours = WallSecondsFor([&] {
      trees = TreesOf(scene);
      int met = 0;
      for (const auto& [i, j] : pairs) {
        const Tree &a = trees[static_cast<std::size_t>(i)], &b = trees[static_cast<std::size_t>(j)];
        met += a && b && Orvex::LeavesMayOverlap(*a, *b, fuzzy) &&
               Orvex::DistanceOf(*a, *b, fuzzy, {}).isWithin;
      }
      benchmark::DoNotOptimize(met);
    });
    std::vector<PeerMesh> meshes;
    triangles = 0;
    for (const Tree& tree : trees) {
      meshes.push_back(tree ? PeerMeshOf(*tree) : PeerMesh());
      triangles += meshes.back().triangles.size();
    }
    peers = WallSecondsFor(
      [&] { benchmark::DoNotOptimize(PeerCollisions(PeerModelsOf(meshes), pairs)); });
    peersCold = meshing + peers;
    state.SetIterationTime(oursCold);
  }
  state.counters["parts"] = static_cast<double>(scene.parts.size());
  state.counters["triangles"] = static_cast<double>(triangles);
  state.counters["pairs"] = static_cast<double>(pairs.size());
  state.counters["meshed"] = trace.meshedParts;
  state.counters["trees_ms"] = ours * 1e3;
  state.counters["fcl_trees_ms"] = peers * 1e3;
  state.counters["trees_ratio"] = ours / peers;
  state.counters["fcl_cold_ms"] = peersCold * 1e3;
  state.counters["cold_ratio"] = oursCold / peersCold;
  state.counters["bytes/triangle"] = static_cast<double>(trace.treeBytes) /
                                     static_cast<double>(std::max<std::size_t>(trace.triangles, 1));
}

BENCHMARK(BM_FastAgainstFcl)
  ->Arg(100)
  ->Arg(300)
  ->Arg(1000)
  ->Arg(3000)
  ->Arg(-1)
  ->Arg(-2)
  ->Arg(-3)
  ->Iterations(1)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);
#endif

// Boxes and meshes are there already: what is left grows with the pairs that are proposed.
void BM_FastAgainstAllPairs(benchmark::State& state)
{
  const Scene& scene = SceneOf(static_cast<int>(state.range(0)));
  const OrvexCollisionEngine indexed(OrvexCollisionConfig::createFastConfig(), scene.stats);
  auto config = OrvexCollisionConfig::createFastConfig();
  config.spaceIndexKind = 0;
  const OrvexCollisionEngine all(config, scene.stats);
  const auto run = [&scene](const OrvexCollisionEngine& engine) {
    return WallSecondsFor(
      [&] { benchmark::DoNotOptimize(engine.compute(scene.parts, {}, nullptr)); });
  };
  run(indexed);
  run(all);
  double ours = 0, allPairs = 0;
  for ([[maybe_unused]] auto iteration : state) {
    ours = run(indexed);
    allPairs = run(all);
    state.SetIterationTime(ours);
  }
  state.SetComplexityN(state.range(0));
  state.counters["proposed"] = indexed.lastMetrics().candidatePairs;
  state.counters["all_pairs_ms"] = allPairs * 1e3;
  state.counters["ratio"] = ours / allPairs;
}

BENCHMARK(BM_FastAgainstAllPairs)
  ->Arg(100)
  ->Arg(300)
  ->Arg(1000)
  ->Arg(3000)
  ->Iterations(5)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond)
  ->Complexity();

// The pairs that reach the kernel, and what it takes for them by itself.
class KernelFloor
{
public:
  KernelFloor(const Scene& scene_, const OrvexCollisionConfig& config) : scene(scene_)
  {
    const double fuzzy = config.relativeFuzzy * scene.stats.sceneDiagonal;
    const auto trees = TreesOf(scene);
    for (const auto& [i, j] : PairsWhoseBoxesMeet(scene)) {
      const auto a = static_cast<std::size_t>(i), b = static_cast<std::size_t>(j);
      if (trees[a] && trees[b] && Orvex::LeavesMayOverlap(*trees[a], *trees[b], fuzzy))
        pairs.emplace_back(i, j);
    }
    contact = std::max(1e-7, fuzzy);
  }

  double Seconds() const
  {
    // The kernel writes on its operands.
    std::vector<std::pair<TopoDS_Shape, TopoDS_Shape>> operands;
    for (const auto& [i, j] : pairs)
      operands.emplace_back(BRepBuilderAPI_Copy(scene.shapes[static_cast<std::size_t>(i)], false),
                            BRepBuilderAPI_Copy(scene.shapes[static_cast<std::size_t>(j)], false));
    return WallSecondsFor([&] {
      for (const auto& [a, b] : operands)
        TestPair(a, b);
    });
  }

  std::size_t PairCount() const
  {
    return pairs.size();
  }

private:
  void TestPair(const TopoDS_Shape& a, const TopoDS_Shape& b) const
  {
    const BRepExtrema_DistShapeShape distance(a, b, Extrema_ExtFlag_MINMAX, Extrema_ExtAlgo_Grad);
    if (!distance.IsDone() || distance.Value() > contact)
      return;
    BRepAlgoAPI_Common common;
    TopTools_ListOfShape first, second;
    first.Append(a);
    second.Append(b);
    common.SetArguments(first);
    common.SetTools(second);
    common.SetFuzzyValue(contact);
    common.SetRunParallel(true);
    common.Build();
    GProp_GProps volume;
    BRepGProp::VolumeProperties(common.Shape(), volume);
  }

  const Scene& scene;
  Pairs pairs;
  double contact;
};

// With meshes and trees from an earlier run, as a caller that repeats its checks has them.
void BM_AccurateAgainstKernel(benchmark::State& state)
{
  const Scene& scene = SceneOf(static_cast<int>(state.range(0)));
  const auto config = OrvexCollisionConfig::createAccurateConfig();
  const OrvexCollisionEngine engine(config, scene.stats);
  const int usual = omp_get_max_threads();
  const auto seconds = [&](int threads) {
    omp_set_num_threads(threads);
    const double taken =
      WallSecondsFor([&] { benchmark::DoNotOptimize(engine.compute(scene.parts, {}, nullptr)); });
    omp_set_num_threads(usual);
    return taken;
  };
  MeshAll(scene, config);
  seconds(usual);
  const KernelFloor kernel(scene, config);
  double one = 0, two = 0, floor = 0;
  for ([[maybe_unused]] auto iteration : state) {
    floor = kernel.Seconds();
    one = seconds(1);
    two = seconds(2);
    state.SetIterationTime(two);
  }
  state.counters["pairs"] = static_cast<double>(kernel.PairCount());
  state.counters["kernel_ms"] = floor * 1e3;
  state.counters["one_thread_ms"] = one * 1e3;
  state.counters["ratio_one"] = one / floor;
  state.counters["speedup_two"] = one / two;
}

BENCHMARK(BM_AccurateAgainstKernel)
  ->Arg(100)
  ->Arg(300)
  ->Arg(1000)
  ->Iterations(3)
  ->UseManualTime()
  ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
