#include "collision/OrvexMeshRoiBoolean.h"

#include "collision/internal/BoxClip.h"
#include "collision/internal/ExactStages.h"
#include "collision/internal/RegionReduction.h"
#include "collision/internal/RoiOctree.h"
#include "kernel/internal/BoxLimits.h"

#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <chrono>

using Orvex::BoxLimits;

namespace {

constexpr double kNoVolume = 1e-7;
constexpr bool kRunParallel = true;

template <typename Work>
auto Timed(double& seconds, Work&& work)
{
  const auto start = std::chrono::steady_clock::now();
  auto result = work();
  seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

// A vertex stands on a side of the region.
bool ReachesBorder(const TopoDS_Shape& shape, const BoxLimits& region)
{
  for (TopExp_Explorer vertex(shape, TopAbs_VERTEX); vertex.More(); vertex.Next()) {
    const TopoDS_Vertex& at = TopoDS::Vertex(vertex.Current());
    const gp_XYZ point = BRep_Tool::Pnt(at).XYZ();
    const double reach = BRep_Tool::Tolerance(at);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double value = point.GetData()[axis];
      if (value - region.min[axis] <= reach || region.max[axis] - value <= reach)
        return true;
    }
  }
  return false;
}

int FaceCount(const TopoDS_Shape& shape)
{
  int count = 0;
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
    ++count;
  return count;
}

BoxLimits Intersection(const BoxLimits& a, const BoxLimits& b)
{
  BoxLimits common;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    common.min[axis] = std::max(a.min[axis], b.min[axis]);
    common.max[axis] = std::min(a.max[axis], b.max[axis]);
  }
  return common;
}

BoxLimits Enlarged(BoxLimits box, double margin)
{
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.min[axis] -= margin;
    box.max[axis] += margin;
  }
  return box;
}

Bnd_Box KernelBox(const BoxLimits& box)
{
  Bnd_Box kernel;
  kernel.Update(box.min[0], box.min[1], box.min[2], box.max[0], box.max[1], box.max[2]);
  return kernel;
}

// One call, step by step. Each step tells whether to go on.
class RegionBoolean
{
public:
  RegionBoolean(const TopoDS_Shape& a_, const TopoDS_Shape& b_,
                const OrvexMeshRoiBooleanConfig& config_, double fuzzyTolerance,
                OrvexMeshRoiResult& result_, OrvexMeshRoiTrace& trace_)
      : a(a_), b(b_), config(config_), fuzzy(std::max(1e-7, fuzzyTolerance)), result(result_),
        trace(trace_)
  {}

  void Run()
  {
    if (!Timed(trace.reductionSeconds, [this] { return Reduce(); }) || !FindRegion() ||
        !ClipAndMakeCommon())
      return;
    // The surfaces come near each other in the region only, but what lies between them can reach
    // beyond it.
    if (!result.usedFallback && ReachesBorder(result.shape, clipRegion)) {
      trace.wasWidened = true;
      result.shape.Nullify();
      clipRegion = Enlarged(shared, MarginFor(shared));
      if (!ClipAndMakeCommon())
        return;
    }
    Measure();
  }

private:
  bool Fail(const char* message)
  {
    result.message = message;
    return false;
  }

  double MarginFor(const BoxLimits& region) const
  {
    const gp_XYZ extents(region.Extent(0), region.Extent(1), region.Extent(2));
    const double least = config.absoluteMargin > 0 ? config.absoluteMargin : 2 * fuzzy;
    return std::max(least, extents.Modulus() * config.relativeMargin);
  }

  // Leaves out of both shapes what lies outside of any region that can come out.
  bool Reduce()
  {
    if (a.IsNull() || b.IsNull())
      return Fail("One or both input shapes are null.");
    Orvex::RegionReduction reductionA(a), reductionB(b);
    overall.Add(reductionA.Box());
    overall.Add(reductionB.Box());
    overall.SetGap(fuzzy * 1.5);
    const auto boxA = Orvex::LimitsOf(reductionA.Box()), boxB = Orvex::LimitsOf(reductionB.Box());
    if (!boxA || !boxB)
      return Fail(kNoMesh);
    shared = Intersection(Enlarged(*boxA, fuzzy), Enlarged(*boxB, fuzzy));
    for (std::size_t axis = 0; axis < 3; ++axis)
      result.noOverlap = result.noOverlap || shared.Extent(axis) < 0;
    if (result.noOverlap)
      return false;
    const BoxLimits largest = Enlarged(shared, MarginFor(shared) + fuzzy);
    reducedA = reductionA.ReducedTo(largest);
    reducedB = reductionB.ReducedTo(largest);
    return true;
  }

  bool FindRegion()
  {
    constexpr double kLeastDeflection = 0.0001;
    const double deflection = std::max(kLeastDeflection, config.meshDeflection);
    // A, then B: braces keep the order.
    const auto triangles = Timed(trace.meshSeconds, [&] {
      return std::array{Orvex::CollectTriangles(reducedA, deflection),
                        Orvex::CollectTriangles(reducedB, deflection)};
    });
    Orvex::RemoveMeshesOfNewFaces(reducedA, a);
    Orvex::RemoveMeshesOfNewFaces(reducedB, b);
    trace.trianglesA = triangles[0].size();
    trace.trianglesB = triangles[1].size();
    if (triangles[0].empty() || triangles[1].empty())
      return Fail(kNoMesh);
    const Bnd_Box near = Timed(trace.regionSeconds, [&] {
      return Orvex::ComputeRoiBoxOctree(triangles[0], triangles[1], fuzzy, overall);
    });
    result.noOverlap = near.IsVoid();
    if (result.noOverlap)
      return false;
    // Triangles reach beyond what the shapes can have in common.
    const BoxLimits region = Intersection(*Orvex::LimitsOf(near), shared);
    trace.region = KernelBox(region);
    clipRegion = Enlarged(region, MarginFor(region));
    return true;
  }

  // What a reduction has left of a shape goes into the boolean as it is if there is little of it:
  // the clip would cost as much, and the common is the same.
  TopoDS_Shape Clipped(const TopoDS_Shape& shape, const TopoDS_Shape& original) const
  {
    constexpr int kFewFaces = 64;
    if (!shape.IsSame(original) && FaceCount(shape) <= kFewFaces)
      return shape;
    return config.clipMode == 1
             ? Orvex::ClippedBySlabs(shape, clipRegion, *Orvex::LimitsOf(overall), fuzzy)
             : Orvex::ClippedByCommon(shape, clipRegion, fuzzy);
  }

  bool ClipAndMakeCommon()
  {
    trace.clipRegion = KernelBox(clipRegion);
    TopoDS_Shape clippedA = Timed(trace.clipSecondsA, [&] { return Clipped(reducedA, a); });
    TopoDS_Shape clippedB = Timed(trace.clipSecondsB, [&] { return Clipped(reducedB, b); });
    if (clippedA.IsNull() || clippedB.IsNull()) {
      if (!config.fallbackFull)
        return Fail("ROI clip failed and fallbackFull is disabled.");
      clippedA = a;
      clippedB = b;
      result.usedFallback = true;
    }
    return MakeCommon(clippedA, clippedB);
  }

  bool MakeCommon(const TopoDS_Shape& clippedA, const TopoDS_Shape& clippedB)
  {
    const auto common = [this](const TopoDS_Shape& first, const TopoDS_Shape& second) {
      return Timed(trace.commonSeconds,
                   [&] { return Orvex::CommonOf(first, second, fuzzy, kRunParallel); });
    };
    result.shape = common(clippedA, clippedB);
    if (!result.shape.IsNull())
      return true;
    if (!config.fallbackFull)
      return Fail("BRepAlgoAPI_Common on clipped shapes failed.");
    result.shape = common(a, b);
    if (result.shape.IsNull())
      return Fail("BRepAlgoAPI_Common (fallback full) also failed.");
    result.usedFallback = true;
    return true;
  }

  void Measure()
  {
    result.volume = Orvex::VolumeOf(result.shape);
    if (result.volume < kNoVolume) {
      result.noOverlap = true;
      result.shape.Nullify();
      return;
    }
    GProp_GProps surface;
    BRepGProp::SurfaceProperties(result.shape, surface);
    result.area = surface.Mass();
  }

  static constexpr const char* kNoMesh = "No mesh data available for one or both shapes.";

  const TopoDS_Shape& a;
  const TopoDS_Shape& b;
  const OrvexMeshRoiBooleanConfig& config;
  double fuzzy;
  OrvexMeshRoiResult& result;
  OrvexMeshRoiTrace& trace;
  Bnd_Box overall;
  BoxLimits shared; // within the boxes of both
  BoxLimits clipRegion;
  TopoDS_Shape reducedA, reducedB;
};

} // namespace

OrvexMeshRoiResult OrvexMeshRoiBoolean::compute(const TopoDS_Shape& a, const TopoDS_Shape& b,
                                                const OrvexMeshRoiBooleanConfig& config,
                                                double fuzzyTolerance)
{
  OrvexMeshRoiTrace trace;
  return compute(a, b, config, fuzzyTolerance, trace);
}

OrvexMeshRoiResult OrvexMeshRoiBoolean::compute(const TopoDS_Shape& a, const TopoDS_Shape& b,
                                                const OrvexMeshRoiBooleanConfig& config,
                                                double fuzzyTolerance, OrvexMeshRoiTrace& trace)
{
  OrvexMeshRoiResult result;
  try {
    RegionBoolean(a, b, config, fuzzyTolerance, result, trace).Run();
  } catch (const Standard_Failure& failure) {
    result.message = std::string("OCCT exception: ").append(failure.GetMessageString());
  } catch (...) {
    result.message = "Unknown exception in OrvexMeshRoiBoolean::compute.";
  }
  return result;
}
