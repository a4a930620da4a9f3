#include "picking/OCCPickingSystemImpl.h"

#include "foundation/OrvexDebugLogFile.h"
#include "foundation/OrvexPTimer.h"
#include "kernel/internal/BoxLimits.h"
#include "picking/OrvexFaceTriangulationPicker.h"
#include "picking/internal/CurvePick.h"
#include "picking/internal/LineBox.h"
#include "picking/internal/WideBoxTree.h"

#include <BRepBndLib.hxx>
#include <BRepIntCurveSurface_Inter.hxx>
#include <BRep_Tool.hxx>
#include <ElCLib.hxx>
#include <GeomAPI_ProjectPointOnSurf.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <optional>
#include <string>
#include <utility>

using namespace Orvex;

namespace {

constexpr double kVertexTolerance = 1e-6;
constexpr double kFaceTolerance = 1e-7;
// Above what the kernel's tolerances let a hit lie outside of its face.
constexpr double kFaceReach = 1e-4;
constexpr SlabRule kMeeting = {1e-8, true};
constexpr std::array<TopAbs_ShapeEnum, 3> kPartTypes = {TopAbs_VERTEX, TopAbs_EDGE, TopAbs_FACE};

// Ascending, so that results come in the order of the list.
std::vector<std::uint32_t> PlacesOn(const WideBoxTree& tree, const gp_Lin& ray, double reach)
{
  static constexpr float kInfinity = std::numeric_limits<float>::infinity();
  std::vector<std::uint32_t> places;
  const WalkLine line(ray.Location().XYZ(), ray.Direction().XYZ(), reach, -kInfinity);
  const auto visit = [&](std::uint32_t place) {
    places.push_back(tree.Order()[place]);
    return kInfinity;
  };
  tree.Walk(line, visit, [](std::uint32_t) {});
  std::sort(places.begin(), places.end());
  return places;
}

// The vertices, edges or faces of one shape, as an explorer meets them, under a tree of their
// boxes.
class Parts
{
public:
  Parts(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
  {
    std::vector<BoxLimits> boxes;
    for (TopExp_Explorer found(shape, type); found.More(); found.Next()) {
      shapes.push_back(found.Current());
      boxes.push_back(BoxOf(found.Current()));
    }
    tree = WideBoxTree(boxes);
  }

  std::vector<std::uint32_t> On(const gp_Lin& ray, double reach) const
  {
    return PlacesOn(tree, ray, reach);
  }
  std::vector<std::uint32_t> All() const
  {
    std::vector<std::uint32_t> places(shapes.size());
    std::iota(places.begin(), places.end(), 0U);
    return places;
  }

  std::vector<TopoDS_Shape> shapes;

private:
  // Of the exact geometry, and larger by a part of its size than the kernel says, whose boxes of
  // free-form shapes are estimates.
  static BoxLimits BoxOf(const TopoDS_Shape& part)
  {
    static constexpr double kSlack = 0.01;
    Bnd_Box box;
    BRepBndLib::Add(part, box, false);
    // A part that the kernel knows no box of is looked at all the same.
    if (box.IsVoid())
      box.SetWhole();
    else
      box.Enlarge(kSlack * std::sqrt(box.SquareExtent()) + kVertexTolerance);
    return *LimitsOf(box);
  }

  WideBoxTree tree;
};

bool IsWhole(const TopoDS_Shape& shape)
{
  return !shape.IsNull() && shape.ShapeType() <= TopAbs_SOLID;
}

// Components that count as parallel are none to the rule, however far the line runs.
gp_Lin AsTheRuleSeesIt(const gp_Lin& ray)
{
  gp_XYZ direction = ray.Direction().XYZ();
  for (int axis = 1; axis <= 3; ++axis)
    if (std::abs(direction.Coord(axis)) < kMeeting.parallelBelow)
      direction.SetCoord(axis, 0);
  return gp_Lin(ray.Location(), gp_Dir(direction));
}

} // namespace

class OCCPickingSystemImpl::ShapeBoxes
{
public:
  explicit ShapeBoxes(const std::vector<TopoDS_Shape>& listed) : parts(listed.size())
  {
    for (const TopoDS_Shape& shape : listed) {
      Bnd_Box box;
      BRepBndLib::Add(shape, box, true);
      limits.push_back(box.IsVoid() || box.IsWhole() ? BoxLimits() : *LimitsOf(box));
    }
    tree = WideBoxTree(limits);
  }

  // The places of the shapes whose box the line meets.
  std::vector<std::uint32_t> On(const gp_Lin& ray) const
  {
    const gp_XYZ &o = ray.Location().XYZ(), &d = ray.Direction().XYZ();
    std::vector<std::uint32_t> places = PlacesOn(tree, AsTheRuleSeesIt(ray), 0);
    std::erase_if(places, [&](std::uint32_t i) { return !SpanInBox(o, d, limits[i], kMeeting); });
    return places;
  }

  const Parts& PartsOf(std::size_t index, const TopoDS_Shape& shape, PickingLevel level)
  {
    const auto type = static_cast<std::size_t>(level);
    std::shared_ptr<const Parts>& known = parts[index][type];
    if (known == nullptr)
      known = std::make_shared<const Parts>(shape, kPartTypes[type]);
    return *known;
  }

private:
  std::vector<BoxLimits> limits;
  WideBoxTree tree;
  std::vector<std::array<std::shared_ptr<const Parts>, kPartTypes.size()>> parts;
};

OCCPickingSystemImpl::OCCPickingSystemImpl() = default;
OCCPickingSystemImpl::~OCCPickingSystemImpl() = default;
OCCPickingSystemImpl::OCCPickingSystemImpl(const OCCPickingSystemImpl& other)
    : shapes(other.shapes),
      boxes(other.boxes == nullptr ? nullptr : std::make_unique<ShapeBoxes>(*other.boxes)),
      level(other.level), tolerance(other.tolerance)
{}
OCCPickingSystemImpl::OCCPickingSystemImpl(OCCPickingSystemImpl&&) noexcept = default;
OCCPickingSystemImpl& OCCPickingSystemImpl::operator=(const OCCPickingSystemImpl& other)
{
  return *this = OCCPickingSystemImpl(other);
}
OCCPickingSystemImpl& OCCPickingSystemImpl::operator=(OCCPickingSystemImpl&&) noexcept = default;

void OCCPickingSystemImpl::SetShapes(const std::vector<TopoDS_Shape>& listed)
{
  auto made = std::make_unique<ShapeBoxes>(listed);
  shapes = listed;
  boxes = std::move(made);
}

void OCCPickingSystemImpl::SetPickingLevel(PickingLevel newLevel)
{
  level = newLevel;
}

void OCCPickingSystemImpl::SetPickingTolerance(double newTolerance)
{
  tolerance = newTolerance;
}

std::vector<PickResult> OCCPickingSystemImpl::PickShapes(const gp_Lin& ray)
{
  std::vector<PickResult> results;
  const gp_Pnt& from = ray.Location();
  if (boxes == nullptr || !IsFinite(from.XYZ()) || !IsFinite(ray.Direction().XYZ()))
    return results;
  for (const std::uint32_t index : boxes->On(ray))
    PickShape(index, ray, results);
  std::stable_sort(results.begin(), results.end(), [&](const PickResult& a, const PickResult& b) {
    return from.SquareDistance(a.point) < from.SquareDistance(b.point);
  });
  return results;
}

void OCCPickingSystemImpl::PickShape(std::size_t index, const gp_Lin& ray,
                                     std::vector<PickResult>& results)
{
  // A log with a line for each face leaves none out.
  const bool isEachLogged =
    level == PickingLevel::Face && OrvexDebugLogFile::GetInstance()->WantsDetail();
  const auto pickParts = [&](double reach, const auto& pick) {
    const Parts& parts = boxes->PartsOf(index, shapes[index], level);
    for (const std::uint32_t place : isEachLogged ? parts.All() : parts.On(ray, reach))
      if (PickResult result = pick(parts.shapes[place]); result.hit)
        results.push_back(std::move(result));
  };
  switch (level) {
  case PickingLevel::Vertex:
    return pickParts(kVertexTolerance, [&](const TopoDS_Shape& part) {
      return PickVertex(index, TopoDS::Vertex(part), ray);
    });
  case PickingLevel::Edge:
    return pickParts(std::max(tolerance, 0.0), [&](const TopoDS_Shape& part) {
      return PickEdge(index, TopoDS::Edge(part), ray);
    });
  case PickingLevel::Face:
    return pickParts(kFaceReach, [&](const TopoDS_Shape& part) {
      return PickTimedFace(index, TopoDS::Face(part), ray);
    });
  case PickingLevel::Solid:
    if (IsWhole(shapes[index]))
      if (PickResult result = PickSolid(index, shapes[index], ray); result.hit)
        results.push_back(std::move(result));
    return;
  case PickingLevel::None:
    return;
  }
}

PickResult OCCPickingSystemImpl::PickVertex(std::size_t index, const TopoDS_Vertex& vertex,
                                            const gp_Lin& ray)
{
  const gp_Pnt point = BRep_Tool::Pnt(vertex);
  const gp_Pnt onLine = ElCLib::Value(ElCLib::Parameter(ray, point), ray);
  PickResult result;
  result.shapeIndex = index;
  result.hit = point.Distance(onLine) <= kVertexTolerance;
  result.level = static_cast<int>(PickingLevel::Vertex);
  result.point = onLine;
  result.subShape = vertex;
  return result;
}

PickResult OCCPickingSystemImpl::PickEdge(std::size_t index, const TopoDS_Edge& edge,
                                          const gp_Lin& ray)
{
  PickResult result;
  const std::optional<CurvePlace> place = NearestPlace(edge, ray, tolerance);
  if (!place || !(tolerance >= place->distance))
    return result;
  result.shapeIndex = index;
  result.hit = true;
  result.level = static_cast<int>(PickingLevel::Edge);
  result.point = place->point;
  result.parameter = place->parameter;
  result.subShape = edge;
  return result;
}

PickResult OCCPickingSystemImpl::PickFace(std::size_t index, const TopoDS_Face& face,
                                          const gp_Lin& ray)
{
  PickResult result;
  const opencascade::handle<Geom_Surface> surface = BRep_Tool::Surface(face);
  if (surface.IsNull())
    return result;
  BRepIntCurveSurface_Inter crossing;
  crossing.Init(face, ray, kFaceTolerance);
  if (!crossing.More())
    return result;
  GeomAPI_ProjectPointOnSurf onSurface(crossing.Pnt(), surface, Extrema_ExtAlgo_Grad);
  if (onSurface.NbPoints() == 0)
    return result;
  onSurface.LowerDistanceParameters(result.u, result.v);
  result.shapeIndex = index;
  result.hit = true;
  result.level = static_cast<int>(PickingLevel::Face);
  result.point = crossing.Pnt();
  result.parameter = crossing.W();
  result.subShape = face;
  return result;
}

PickResult OCCPickingSystemImpl::PickTimedFace(std::size_t index, const TopoDS_Face& face,
                                               const gp_Lin& ray)
{
  OrvexDebugLogFile* log = OrvexDebugLogFile::GetInstance();
  if (!log->WantsDetail())
    return PickFace(index, face, ray);
  OrvexPTimer timer;
  timer.start();
  PickResult result = PickFace(index, face, ray);
  timer.stop();
  std::string line = timer.elapsedMilliseconds() > 0.01 ? "Pick Cost time: " : "Pick Face time: ";
  line += timer.elapsedTimeAsString();
  log->dumpToFile(std::move(line));
  return result;
}

PickResult OCCPickingSystemImpl::PickSolid(std::size_t index, const TopoDS_Shape& shape,
                                           const gp_Lin& ray)
{
  TopoDS_Shape picked = shape;
  PickResult result = OrvexFaceTriangulationPicker::GetInstance()->Pick(picked, ray.Location(),
                                                                        ray.Direction().Reversed());
  result.shapeIndex = index;
  return result;
}
