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
    switch (random.Index(16)) {
    case 0:
      return {};
    case 1:
      return FromFace();
    case 2:
    case 3:
    case 4:
    case 5:
      return Arc();
    case 6:
    case 7:
    case 8:
    case 9:
      return BezierEdge({Point(), Point(), Point(), Point()});
    case 10:
      return BezierEdge({Point(), Nowhere(), Point()});
    default:
      return Line();
    }
  }

  TopoDS_Wire Wire()
  {
    switch (random.Index(10)) {
    case 0:
      return {};
    case 1:
    case 2:
      return OfEdge(Edge());
    case 3:
      return BoundaryOfFace();
    case 4:
    case 5:
      return CircleWire(Place(), Length());
    case 6:
      return Flat(3 + random.Index(3), random.Index(2) == 0);
    default:
      return Crooked(2 + random.Index(4), random.Index(2) == 0);
    }
  }

  TopoDS_Shape Curve()
  {
    switch (random.Index(12)) {
    case 0:
      return {};
    case 1:
      return BRepBuilderAPI_MakeVertex(Point()).Vertex();
    case 2:
      return Face();
    case 3:
      return Compound({Edge(), Edge()});
    case 4:
    case 5:
      return Edge();
    default:
      return Wire();
    }
  }

  TopoDS_Face Face()
  {
    const std::vector<TopoDS_Shape> faces = PartsOf(Solid(), TopAbs_FACE);
    return TopoDS::Face(
      faces[static_cast<std::size_t>(random.Index(static_cast<int>(faces.size())))]);
  }

  TopoDS_Shape Solid()
  {
    const gp_Ax2 axes(Point(), gp::DZ());
    switch (random.Index(3)) {
    case 0:
      return BRepPrimAPI_MakeSphere(axes, Length()).Shape();
    case 1:
      return BRepPrimAPI_MakeCylinder(axes, Length(), Length()).Shape();
    default:
      return BRepPrimAPI_MakeBox(axes, Length(), Length(), Length()).Shape();
    }
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

  TopoDS_Edge Line()
  {
    const gp_Pnt from = Point();
    BRepBuilderAPI_MakeEdge line(from, random.Index(12) == 0 ? Nowhere() : Point());
    return line.IsDone() ? line.Edge() : TopoDS_Edge();
  }

  TopoDS_Edge Arc()
  {
    const double from = random.Real(0, 3);
    return ArcAt(Place(), Length(), from, from + random.Real(0.1, 3));
  }

  TopoDS_Edge FromFace()
  {
    return TopoDS::Edge(PartsOf(Face(), TopAbs_EDGE).front());
  }

  TopoDS_Wire BoundaryOfFace()
  {
    return TopoDS::Wire(PartsOf(Face(), TopAbs_WIRE).front());
  }

  static TopoDS_Wire OfEdge(const TopoDS_Edge& edge)
  {
    if (edge.IsNull())
      return {};
    BRepBuilderAPI_MakeWire wire(edge);
    return wire.IsDone() ? wire.Wire() : TopoDS_Wire();
  }

  TopoDS_Wire Polygon(std::vector<gp_Pnt> points, bool closed)
  {
    BRepBuilderAPI_MakePolygon polygon;
    for (const gp_Pnt& point : points)
      polygon.Add(point);
    if (closed)
      polygon.Close();
    return polygon.IsDone() ? polygon.Wire() : TopoDS_Wire();
  }

  // In a plane; may cross itself.
  TopoDS_Wire Flat(int count, bool closed)
  {
    const double z = Place();
    std::vector<gp_Pnt> points;
    for (int i = 0; i < count; ++i)
      points.emplace_back(Place(), Place(), z);
    return Polygon(points, closed);
  }

  TopoDS_Wire Crooked(int count, bool closed)
  {
    std::vector<gp_Pnt> points;
    for (int i = 0; i < count; ++i)
      points.push_back(Point());
    return Polygon(points, closed && count > 2);
  }

  static TopoDS_Shape Compound(const std::vector<TopoDS_Shape>& shapes)
  {
    TopoDS_Compound compound;
    BRep_Builder().MakeCompound(compound);
    for (const TopoDS_Shape& shape : shapes)
      if (!shape.IsNull())
        BRep_Builder().Add(compound, shape);
    return compound;
  }

  double scale = 1;
};

} // namespace OrvexTest
