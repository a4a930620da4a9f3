// Curves and faces for operations on surfaces, sound ones and others.
#pragma once

#include "support/Random.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Builder.hxx>
#include <Geom_BezierCurve.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Circ.hxx>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace OrvexTest {

inline gp_Ax2 LevelAt(double z)
{
  return {gp_Pnt(0, 0, z), gp::DZ()};
}

inline TopoDS_Edge LineEdge(const gp_Pnt& from, const gp_Pnt& to)
{
  return BRepBuilderAPI_MakeEdge(from, to);
}

inline TopoDS_Edge ArcAt(double z, double radius, double from, double to)
{
  return BRepBuilderAPI_MakeEdge(gp_Circ(LevelAt(z), radius), from, to);
}

inline TopoDS_Edge BezierEdge(const std::vector<gp_Pnt>& points)
{
  TColgp_Array1OfPnt poles(1, static_cast<int>(points.size()));
  std::copy(points.begin(), points.end(), poles.begin());
  return BRepBuilderAPI_MakeEdge(new Geom_BezierCurve(poles));
}

inline TopoDS_Wire WireFrom(const TopoDS_Edge& edge)
{
  return BRepBuilderAPI_MakeWire(edge).Wire();
}

inline TopoDS_Wire CircleWire(double z, double radius)
{
  return WireFrom(BRepBuilderAPI_MakeEdge(gp_Circ(LevelAt(z), radius)));
}

inline TopoDS_Wire PolygonWire(const std::vector<gp_Pnt>& points, bool closed)
{
  BRepBuilderAPI_MakePolygon polygon;
  for (const gp_Pnt& point : points)
    polygon.Add(point);
  if (closed)
    polygon.Close();
  return polygon.Wire();
}

inline TopoDS_Wire SquareWire(double z, double size)
{
  return PolygonWire(
    {gp_Pnt(0, 0, z), gp_Pnt(size, 0, z), gp_Pnt(size, size, z), gp_Pnt(0, size, z)}, true);
}

inline TopoDS_Wire RegularWire(double z, double radius, int corners)
{
  std::vector<gp_Pnt> points;
  for (int i = 0; i < corners; ++i)
    points.emplace_back(radius * std::cos(2 * M_PI * i / corners),
                        radius * std::sin(2 * M_PI * i / corners), z);
  return PolygonWire(points, true);
}

inline std::vector<TopoDS_Shape> PartsOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  std::vector<TopoDS_Shape> parts;
  for (TopExp_Explorer part(shape, type); part.More(); part.Next())
    parts.push_back(part.Current());
  return parts;
}

// An edge without a curve in space.
inline TopoDS_Edge PoleOfSphere()
{
  for (const TopoDS_Shape& edge : PartsOf(BRepPrimAPI_MakeSphere(5).Shape(), TopAbs_EDGE))
    if (BRep_Tool::Degenerated(TopoDS::Edge(edge)))
      return TopoDS::Edge(edge);
  return {};
}

// Shapes of all kinds that an operation may be given, some of which it must refuse: at scales from
// 1e-9 to 1e9, crossing themselves, with places that are no numbers, null.
class RandomShapes
{
public:
  explicit RandomShapes(std::uint64_t seed) : random(seed)
  {}

  // The next shapes have coordinates up to ten times this.
  void PickScale()
  {
    static constexpr double kScales[] = {1, 1, 1, 1, 1, 1, 100, 1e9, 1e-9};
    scale = kScales[random.Index(9)];
  }

  gp_Pnt Point()
  {
    return {Place(), Place(), Place()};
  }

  TopoDS_Edge Edge()
  {
    const int kind = random.Index(16);
    if (kind == 0)
      return {};
    if (kind == 1)
      return TopoDS::Edge(AnyOf(Face(), TopAbs_EDGE));
    if (kind == 2)
      return BezierEdge({Point(), Nowhere(), Point()});
    if (kind < 7)
      return BezierEdge({Point(), Point(), Point(), Point()});
    return kind < 11 ? Arc() : LineEdge(Point(), kind == 11 ? Nowhere() : Point());
  }

  TopoDS_Wire Wire()
  {
    const int kind = random.Index(10);
    if (kind == 0)
      return {};
    const TopoDS_Edge edge = Edge();
    if (kind == 1)
      return edge.IsNull() ? TopoDS_Wire() : WireFrom(edge);
    if (kind == 2)
      return TopoDS::Wire(AnyOf(Face(), TopAbs_WIRE));
    return kind < 5 ? CircleWire(Place(), Length()) : Polygon(kind < 7);
  }

  TopoDS_Shape Curve()
  {
    const int kind = random.Index(12);
    if (kind == 0)
      return {};
    if (kind == 1)
      return BRepBuilderAPI_MakeVertex(Point()).Shape();
    if (kind == 2)
      return Face();
    if (kind == 3)
      return PairOf(Face(), Wire());
    return kind < 6 ? TopoDS_Shape(Edge()) : TopoDS_Shape(Wire());
  }

  TopoDS_Face Face()
  {
    return TopoDS::Face(AnyOf(Solid(), TopAbs_FACE));
  }

  TopoDS_Shape Solid()
  {
    const gp_Ax2 axes(Point(), gp::DZ());
    const int kind = random.Index(3);
    if (kind == 0)
      return BRepPrimAPI_MakeSphere(axes, Length()).Shape();
    return kind == 1 ? BRepPrimAPI_MakeCylinder(axes, Length(), Length()).Shape()
                     : BRepPrimAPI_MakeBox(axes, Length(), Length(), Length()).Shape();
  }

  // A number as options hold it: sound, at a limit, or none.
  double Number()
  {
    static constexpr double kOdd[] = {0,
                                      -1,
                                      1e-9,
                                      1e9,
                                      1e300,
                                      std::numeric_limits<double>::infinity(),
                                      -std::numeric_limits<double>::infinity(),
                                      std::numeric_limits<double>::quiet_NaN()};
    return random.Index(3) == 0 ? kOdd[random.Index(8)] : random.Real(0, 3);
  }

  Random random;

private:
  double Place()
  {
    return scale * random.Real(-10, 10);
  }

  double Length()
  {
    return scale * random.Real(0.1, 10);
  }

  gp_Pnt Nowhere()
  {
    static constexpr double kNowhere[] = {std::numeric_limits<double>::quiet_NaN(),
                                          std::numeric_limits<double>::infinity(), 1e200};
    return {Place(), kNowhere[random.Index(3)], Place()};
  }

  TopoDS_Edge Arc()
  {
    const double from = random.Real(0, 3);
    return ArcAt(Place(), Length(), from, from + random.Real(0.1, 3));
  }

  TopoDS_Shape AnyOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
  {
    const std::vector<TopoDS_Shape> parts = PartsOf(shape, type);
    return parts[static_cast<std::size_t>(random.Index(static_cast<int>(parts.size())))];
  }

  // Open or closed, in a plane or not; may cross itself.
  TopoDS_Wire Polygon(bool flat)
  {
    const double z = Place();
    std::vector<gp_Pnt> points;
    for (int count = 3 + random.Index(3); count > 0; --count)
      points.emplace_back(Place(), Place(), flat ? z : Place());
    return PolygonWire(points, random.Index(2) == 0);
  }

  static TopoDS_Shape PairOf(const TopoDS_Shape& first, const TopoDS_Shape& second)
  {
    TopoDS_Compound pair;
    BRep_Builder().MakeCompound(pair);
    BRep_Builder().Add(pair, first);
    if (!second.IsNull())
      BRep_Builder().Add(pair, second);
    return pair;
  }

  double scale = 1;
};

} // namespace OrvexTest
