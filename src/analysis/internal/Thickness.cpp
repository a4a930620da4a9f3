#include "analysis/internal/Thickness.h"

#include "analysis/internal/FaceRays.h"
#include "analysis/internal/InsideTest.h"
#include "kernel/internal/ParallelFor.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepBndLib.hxx>
#include <BRepLib.hxx>
#include <Bnd_Box.hxx>
#include <TopTools_ListOfShape.hxx>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace Orvex {

namespace {

// How far from the surface the rays start, and how far they reach.
struct Reach
{
  double start;
  double end;

  explicit Reach(const Bnd_Box& box)
  {
    const double diagonal = std::sqrt(box.SquareExtent());
    start = std::max(diagonal * 1e-9, 1e-6);
    end = std::max(2 * diagonal, 1.0);
  }
};

// Measures on one thread.
class ThicknessMeter
{
public:
  ThicknessMeter(const TopoDS_Shape& shape, const FaceBoxes& boxes, const Reach& limits)
      : rays(boxes), inside(shape), reach(limits)
  {}

  // Nothing where no material is on either side, and where a way through it does not end.
  std::optional<double> At(const gp_Pnt& point, const gp_Dir& normal)
  {
    const gp_Pnt plus = point.Translated(gp_Vec(normal) * reach.start);
    const gp_Pnt minus = point.Translated(gp_Vec(normal) * -reach.start);
    const bool plusInside = inside.Holds(plus);
    const bool minusInside = inside.Holds(minus);
    if (!plusInside && !minusInside)
      return std::nullopt;
    const auto ahead = plusInside ? Way(plus, normal) : std::nullopt;
    const auto back = minusInside ? Way(minus, normal.Reversed()) : std::nullopt;
    if ((plusInside && !ahead) || (minusInside && !back))
      return std::nullopt;
    const double distance = ahead && back ? std::min(*ahead, *back) : ahead ? *ahead : *back;
    return distance + reach.start;
  }

private:
  std::optional<double> Way(const gp_Pnt& from, const gp_Dir& direction)
  {
    if (reach.start >= reach.end)
      return std::nullopt;
    return rays.Nearest(gp_Lin(from, direction), reach.start, reach.end);
  }

  FaceRays rays;
  InsideTest inside;
  const Reach reach;
};

// A copy in which planar faces hold the curves of their edges. Of others the kernel computes them
// anew whenever it is asked where a point lies, to the same result.
TopoDS_Shape WithCurvesOnPlanes(const TopoDS_Shape& shape)
{
  TopologyCopier copier;
  const TopoDS_Shape copy = copier.Copy(shape);
  EachFace(copy, [](const TopoDS_Face& face, int) {
    if (BRepAdaptor_Surface(face, false).GetType() != GeomAbs_Plane)
      return;
    TopTools_ListOfShape edges;
    for (TopExp_Explorer edge(face, TopAbs_EDGE); edge.More(); edge.Next())
      edges.Append(edge.Current());
    BRepLib::BuildPCurveForEdgesOnPlane(edges, face);
  });
  return copy;
}

void Measure(ThicknessMeter& meter, int samplesPerAxis, FaceThickness& face)
{
  if (face.sampling.IsEmpty())
    return;
  const BRepAdaptor_Surface surface(face.sampling.face, true);
  face.sampling.EachPlace({samplesPerAxis, samplesPerAxis}, 1,
                          [&](const GridPlace& place, GeomLProp_SLProps& properties) {
                            if (!properties.IsNormalDefined())
                              return;
                            const gp_Pnt point = surface.Value(place.u, place.v);
                            if (const auto value = meter.At(point, properties.Normal()))
                              face.values.push_back({place, point, *value});
                          });
}

} // namespace

std::vector<FaceThickness> MeasureThickness(const TopoDS_Shape& shape, int samplesPerAxis)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box, true);
  std::vector<FaceThickness> measured;
  if (box.IsVoid())
    return measured;
  EachFace(shape, [&](const TopoDS_Face& face, int) {
    measured.push_back({FaceSampling(face), {}});
  });
  const TopoDS_Shape target = WithCurvesOnPlanes(shape);
  const FaceBoxes boxes(target);
  const Reach reach(box);
  const auto makeMeter = [&] { return std::make_unique<ThicknessMeter>(target, boxes, reach); };
  ParallelFor(measured.size(), makeMeter, [&](const auto& meter, std::size_t i) {
    Measure(*meter, samplesPerAxis, measured[i]);
  });
  return measured;
}

} // namespace Orvex
