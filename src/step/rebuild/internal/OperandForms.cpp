#include "step/rebuild/internal/OperandForms.h"

#include "analysis/ShapeEquivalenceAnalyzer.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Splitter.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepGProp.hxx>
#include <BRepLib.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Ax1.hxx>
#include <gp_Circ.hxx>
#include <gp_Cone.hxx>
#include <gp_Cylinder.hxx>
#include <gp_Pln.hxx>
#include <gp_Torus.hxx>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

namespace Orvex {

namespace {

// Sines of angles up to here count as zero: numbers of six digits and splines in place of round
// faces are as good as this. A form is only kept if the body that it makes is equivalent.
constexpr double kSlope = 1e-3;
// More than this many axes are not tried.
constexpr std::size_t kMostAxes = 24;

std::vector<TopoDS_Face> FacesOf(const TopoDS_Shape& body)
{
  std::vector<TopoDS_Face> faces;
  for (TopExp_Explorer at(body, TopAbs_FACE); at.More(); at.Next())
    faces.push_back(TopoDS::Face(at.Current()));
  return faces;
}

bool IsPlane(const TopoDS_Face& face)
{
  return BRepAdaptor_Surface(face, false).GetType() == GeomAbs_Plane;
}

gp_Pln PlaneOf(const TopoDS_Face& face)
{
  return BRepAdaptor_Surface(face, false).Plane();
}

// Whether visit(point, normal) holds at a few places all over the face; the normal is a unit vector
// without a side. Places where the surface has none are left out.
bool HoldsOn(const TopoDS_Face& face,
             const std::function<bool(const gp_Pnt&, const gp_Vec&)>& visit)
{
  constexpr int kPlaces = 5;
  const BRepAdaptor_Surface surface(face, false);
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
  BRepTools::UVBounds(face, uMin, uMax, vMin, vMax);
  for (int row = 0; row < kPlaces; ++row)
    for (int column = 0; column < kPlaces; ++column) {
      gp_Pnt point;
      gp_Vec alongU;
      gp_Vec alongV;
      surface.D1(uMin + (uMax - uMin) * (row + 0.5) / kPlaces,
                 vMin + (vMax - vMin) * (column + 0.5) / kPlaces, point, alongU, alongV);
      const gp_Vec normal = alongU.Crossed(alongV);
      if (normal.Magnitude() > gp::Resolution() && !visit(point, normal.Normalized()))
        return false;
    }
  return true;
}

bool IsEquivalent(const TopoDS_Shape& body, const TopoDS_Shape& candidate)
{
  return !candidate.IsNull() &&
         ShapeEquivalenceAnalyzer::Compare(body, candidate, ShapeEquivalenceOptions()).equivalent;
}

// The only solid of the shape, with a positive volume; null if there are none or several.
TopoDS_Shape SolidIn(const TopoDS_Shape& shape)
{
  TopoDS_Shape found;
  for (TopExp_Explorer at(shape, TopAbs_SOLID); at.More(); at.Next()) {
    if (!found.IsNull())
      return {};
    found = at.Current();
  }
  if (found.IsNull())
    return {};
  TopoDS_Solid solid = TopoDS::Solid(found);
  BRepLib::OrientClosedSolid(solid);
  return solid;
}

// Tries to build with `make`; what the kernel refuses is no form.
TopoDS_Shape Equivalent(const TopoDS_Solid& body, const std::function<TopoDS_Shape()>& make)
{
  try {
    const TopoDS_Shape made = SolidIn(make());
    return IsEquivalent(body, made) ? made : TopoDS_Shape();
  } catch (const Standard_Failure&) {
    return {};
  }
}

// A flat face at either end of a direction that all other faces follow.
struct Ends
{
  TopoDS_Face bottom;
  gp_Vec way;
};

std::optional<Ends> EndsAlong(const gp_Dir& direction, const std::vector<TopoDS_Face>& faces)
{
  std::vector<TopoDS_Face> caps;
  for (const TopoDS_Face& face : faces) {
    const bool isSide = HoldsOn(face, [&](const gp_Pnt&, const gp_Vec& normal) {
      return std::abs(normal.Dot(gp_Vec(direction))) < kSlope;
    });
    if (isSide)
      continue;
    if (caps.size() == 2 || !IsPlane(face) ||
        !PlaneOf(face).Axis().Direction().IsParallel(direction, kSlope))
      return {};
    caps.push_back(face);
  }
  if (caps.size() != 2)
    return {};
  const gp_Dir normal = PlaneOf(caps[0]).Axis().Direction();
  const gp_Vec between(PlaneOf(caps[0]).Location(), PlaneOf(caps[1]).Location());
  return Ends{caps[0], gp_Vec(normal) * between.Dot(gp_Vec(normal))};
}

// Adds what no earlier one is the same as.
template <typename Item, typename IsSame>
void AddNew(std::vector<Item>& items, const Item& item, IsSame&& isSame)
{
  if (std::none_of(items.begin(), items.end(), [&](const Item& other) { return isSame(other); }))
    items.push_back(item);
}

std::vector<gp_Dir> FlatDirections(const std::vector<TopoDS_Face>& faces)
{
  std::vector<gp_Dir> directions;
  for (const TopoDS_Face& face : faces)
    if (IsPlane(face)) {
      const gp_Dir normal = PlaneOf(face).Axis().Direction();
      AddNew(directions, normal,
             [&](const gp_Dir& other) { return other.IsParallel(normal, kSlope); });
    }
  return directions;
}

// How far points lie apart that count as one: a hundred thousandth of the body's size.
double NearOf(const TopoDS_Shape& body)
{
  Bnd_Box box;
  BRepBndLib::Add(body, box);
  return 1e-5 * std::sqrt(box.SquareExtent());
}

void AddAxis(std::vector<gp_Ax1>& axes, const gp_Ax1& axis, double near)
{
  AddNew(axes, axis, [&](const gp_Ax1& other) {
    return other.IsCoaxial(axis, kSlope, near) || other.IsCoaxial(axis.Reversed(), kSlope, near);
  });
}

gp_Ax1 MiddleAxis(const TopoDS_Face& flat)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(flat, properties);
  return gp_Ax1(properties.CentreOfMass(), PlaneOf(flat).Axis().Direction());
}

// Those of round faces and of circles, and those through the middle of flat faces: around a body
// whose round faces are splines there are no others.
std::vector<gp_Ax1> AxesOf(const TopoDS_Shape& body)
{
  const double near = NearOf(body);
  std::vector<gp_Ax1> axes;
  for (const TopoDS_Face& face : FacesOf(body)) {
    const BRepAdaptor_Surface surface(face, false);
    if (surface.GetType() == GeomAbs_Cylinder)
      AddAxis(axes, surface.Cylinder().Axis(), near);
    if (surface.GetType() == GeomAbs_Cone)
      AddAxis(axes, surface.Cone().Axis(), near);
    if (surface.GetType() == GeomAbs_Torus)
      AddAxis(axes, surface.Torus().Axis(), near);
    if (surface.GetType() == GeomAbs_SurfaceOfRevolution)
      AddAxis(axes, surface.AxeOfRevolution(), near);
    if (surface.GetType() == GeomAbs_Plane)
      AddAxis(axes, MiddleAxis(face), near);
  }
  for (TopExp_Explorer at(body, TopAbs_EDGE); at.More(); at.Next()) {
    const TopoDS_Edge edge = TopoDS::Edge(at.Current());
    if (BRep_Tool::Degenerated(edge))
      continue;
    const BRepAdaptor_Curve curve(edge);
    if (curve.GetType() == GeomAbs_Circle)
      AddAxis(axes, curve.Circle().Axis(), near);
  }
  if (axes.size() > kMostAxes)
    axes.resize(kMostAxes);
  return axes;
}

// Places by the angle around an axis and the distance from it.
class Around
{
public:
  explicit Around(const gp_Ax1& turned) : axis(turned), frame(turned.Location(), turned.Direction())
  {}

  // From the axis at right angles to the point.
  gp_Vec Radius(const gp_Pnt& point) const
  {
    const gp_Vec from(axis.Location(), point);
    return from - gp_Vec(axis.Direction()) * from.Dot(gp_Vec(axis.Direction()));
  }

  double Height(const gp_Pnt& point) const
  {
    return gp_Vec(axis.Location(), point).Dot(gp_Vec(axis.Direction()));
  }

  double Angle(const gp_Pnt& point) const
  {
    const gp_Vec radius = Radius(point);
    return std::atan2(radius.Dot(gp_Vec(frame.YDirection())),
                      radius.Dot(gp_Vec(frame.XDirection())));
  }

  // A rectangle from the axis outwards at the angle 0.
  TopoDS_Face HalfPlane(double reach, double bottom, double top) const
  {
    const gp_Ax3 place(axis.Location(), frame.YDirection(), frame.XDirection());
    const gp_Pln plane(place);
    const double sense = gp_Vec(place.YDirection()).Dot(gp_Vec(axis.Direction())) > 0 ? 1 : -1;
    return BRepBuilderAPI_MakeFace(plane, 0, reach, std::min(sense * bottom, sense * top),
                                   std::max(sense * bottom, sense * top))
      .Face();
  }

private:
  gp_Ax1 axis;
  gp_Ax2 frame;
};

bool IsRevolved(const TopoDS_Face& face, const gp_Ax1& axis)
{
  const Around around(axis);
  return HoldsOn(face, [&](const gp_Pnt& point, const gp_Vec& normal) {
    const gp_Vec across = gp_Vec(axis.Direction()).Crossed(around.Radius(point));
    return std::abs(normal.Dot(across)) <= kSlope * std::max(across.Magnitude(), 1e-9);
  });
}

bool HoldsAxis(const TopoDS_Face& face, const gp_Ax1& axis, double near)
{
  return IsPlane(face) && PlaneOf(face).Distance(axis.Location()) < near &&
         std::abs(PlaneOf(face).Axis().Direction().Dot(axis.Direction())) < kSlope;
}

// The angles at which faces end: where edges run in planes through the axis.
std::vector<std::pair<double, TopoDS_Edge>> MeridiansOf(const TopoDS_Shape& body,
                                                        const gp_Ax1& axis, double near)
{
  const Around around(axis);
  std::vector<std::pair<double, TopoDS_Edge>> meridians;
  TopTools_MapOfShape seen;
  for (TopExp_Explorer at(body, TopAbs_EDGE); at.More(); at.Next()) {
    const TopoDS_Edge edge = TopoDS::Edge(at.Current());
    if (BRep_Tool::Degenerated(edge) || !seen.Add(edge))
      continue;
    const BRepAdaptor_Curve curve(edge);
    const double first = curve.FirstParameter();
    const double length = curve.LastParameter() - first;
    const gp_Pnt middle = curve.Value(first + 0.5 * length);
    const gp_Pnt quarter = curve.Value(first + 0.3 * length);
    const bool isOnAxis = around.Radius(middle).Magnitude() < near;
    if (!isOnAxis &&
        around.Radius(middle).Crossed(around.Radius(quarter)).Magnitude() <=
          kSlope * around.Radius(middle).SquareMagnitude() &&
        around.Radius(middle).Dot(around.Radius(quarter)) > 0)
      meridians.emplace_back(around.Angle(middle), edge);
  }
  return meridians;
}

TopoDS_Shape Turned(const TopoDS_Shape& shape, const gp_Ax1& axis, double angle)
{
  gp_Trsf turn;
  turn.SetRotation(axis, angle);
  return shape.Moved(TopLoc_Location(turn));
}

// The half of the body's cross-section through the axis, at an angle away from all edges, turned to
// where the first meridian is.
TopoDS_Shape ProfileOf(const TopoDS_Shape& body, const gp_Ax1& axis, double start)
{
  constexpr double kAway = 0.7;
  const Around around(axis);
  Bnd_Box box;
  BRepBndLib::Add(body, box);
  const double reach = 2 * std::sqrt(box.SquareExtent());
  const gp_Pnt middle((box.CornerMin().XYZ() + box.CornerMax().XYZ()) / 2);
  const double height = around.Height(middle);
  const double radius = reach + around.Radius(middle).Magnitude();
  const TopoDS_Shape half =
    Turned(around.HalfPlane(radius, height - reach, height + reach), axis, start + kAway);
  return Turned(BRepAlgoAPI_Common(half, body).Shape(), axis, -kAway);
}

// A body of full turns whose faces may be parted along meridians.
TopoDS_Shape FullTurn(const TopoDS_Shape& body, const gp_Ax1& axis)
{
  const auto meridians = MeridiansOf(body, axis, NearOf(body));
  const double start = meridians.empty() ? 0 : meridians.front().first;
  const TopoDS_Shape whole = BRepPrimAPI_MakeRevol(ProfileOf(body, axis, start), axis).Shape();
  TopTools_ListOfShape cuts;
  for (const auto& [angle, edge] : meridians)
    if (std::abs(std::remainder(angle - start, 2 * M_PI)) > kSlope)
      cuts.Append(edge);
  if (cuts.IsEmpty())
    return whole;
  BRepAlgoAPI_Splitter splitter;
  TopTools_ListOfShape bodies;
  bodies.Append(whole);
  splitter.SetArguments(bodies);
  splitter.SetTools(cuts);
  splitter.Build();
  return splitter.Shape();
}

std::vector<double> AnglesBetween(const TopoDS_Face& first, const TopoDS_Face& second,
                                  const gp_Ax1& axis)
{
  const gp_Dir one = PlaneOf(first).Axis().Direction();
  const gp_Dir other = PlaneOf(second).Axis().Direction();
  const double angle = one.AngleWithRef(other, axis.Direction());
  std::vector<double> angles;
  for (const double turn : {angle, angle + M_PI, angle - M_PI, angle + 2 * M_PI, angle - 2 * M_PI})
    if (std::abs(turn) > kSlope && std::abs(turn) < 2 * M_PI - kSlope)
      angles.push_back(turn);
  return angles;
}

TopoDS_Shape RevolutionAbout(const gp_Ax1& axis, const TopoDS_Solid& body,
                             const std::vector<TopoDS_Face>& faces)
{
  std::vector<TopoDS_Face> caps;
  for (const TopoDS_Face& face : faces)
    if (!IsRevolved(face, axis)) {
      if (caps.size() == 2 || !HoldsAxis(face, axis, NearOf(body)))
        return {};
      caps.push_back(face);
    }
  if (caps.empty())
    return Equivalent(body, [&] { return FullTurn(body, axis); });
  if (caps.size() != 2)
    return {};
  for (const double angle : AnglesBetween(caps[0], caps[1], axis)) {
    const TopoDS_Shape made =
      Equivalent(body, [&] { return BRepPrimAPI_MakeRevol(caps[0], axis, angle).Shape(); });
    if (!made.IsNull())
      return made;
  }
  return {};
}

bool ShareAnEdge(const TopoDS_Face& first, const TopoDS_Face& second)
{
  TopTools_MapOfShape edges;
  for (TopExp_Explorer at(first, TopAbs_EDGE); at.More(); at.Next())
    edges.Add(at.Current());
  for (TopExp_Explorer at(second, TopAbs_EDGE); at.More(); at.Next())
    if (edges.Contains(at.Current()))
      return true;
  return false;
}

// Two flat faces that do not touch, and that all others join.
bool AreSections(const TopoDS_Face& first, const TopoDS_Face& second,
                 const std::vector<TopoDS_Face>& faces)
{
  return !ShareAnEdge(first, second) &&
         std::all_of(faces.begin(), faces.end(), [&](const TopoDS_Face& face) {
           return face.IsSame(first) || face.IsSame(second) ||
                  (ShareAnEdge(face, first) && ShareAnEdge(face, second));
         });
}

TopoDS_Shape LoftBetween(const TopoDS_Face& first, const TopoDS_Face& second)
{
  BRepOffsetAPI_ThruSections loft(true, true);
  loft.AddWire(BRepTools::OuterWire(first));
  loft.AddWire(BRepTools::OuterWire(second));
  loft.Build();
  return loft.Shape();
}

} // namespace

FormedBody ExtrusionOf(const TopoDS_Solid& body)
{
  const std::vector<TopoDS_Face> faces = FacesOf(body);
  for (const gp_Dir& direction : FlatDirections(faces))
    if (const auto ends = EndsAlong(direction, faces)) {
      const TopoDS_Shape made = Equivalent(
        body, [&] { return BRepPrimAPI_MakePrism(ends->bottom, ends->way, true).Shape(); });
      if (!made.IsNull())
        return {made, "extrusion"};
    }
  return {};
}

FormedBody RevolutionOf(const TopoDS_Solid& body)
{
  const std::vector<TopoDS_Face> faces = FacesOf(body);
  for (const gp_Ax1& axis : AxesOf(body)) {
    const TopoDS_Shape made = RevolutionAbout(axis, body, faces);
    if (!made.IsNull())
      return {made, "revolution"};
  }
  return {};
}

FormedBody LoftOf(const TopoDS_Solid& body)
{
  const std::vector<TopoDS_Face> faces = FacesOf(body);
  std::vector<TopoDS_Face> flat;
  std::copy_if(faces.begin(), faces.end(), std::back_inserter(flat), IsPlane);
  for (std::size_t first = 0; first < flat.size(); ++first)
    for (std::size_t second = first + 1; second < flat.size(); ++second)
      if (AreSections(flat[first], flat[second], faces)) {
        const TopoDS_Shape made =
          Equivalent(body, [&] { return LoftBetween(flat[first], flat[second]); });
        if (!made.IsNull())
          return {made, "loft"};
      }
  return {};
}

FormedBody FormOf(const TopoDS_Solid& body)
{
  for (const auto form : {ExtrusionOf, RevolutionOf, LoftOf})
    if (FormedBody formed = form(body); !formed.shape.IsNull())
      return formed;
  return {};
}

} // namespace Orvex
