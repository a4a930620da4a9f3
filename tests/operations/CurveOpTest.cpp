#include "operations/CurveOp.h"

#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRep_Tool.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_Circle.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <TColgp_Array1OfPnt.hxx>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

using namespace OrvexTest;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const gp_Ax2 kFlat(gp_Pnt(), gp::DZ());

TopoDS_Edge Line(double length)
{
  return BRepBuilderAPI_MakeEdge(gp_Pnt(1, 2, 3), gp_Pnt(1, 2 + 0.6 * length, 3 + 0.8 * length));
}

TopoDS_Edge Circle(double radius)
{
  return BRepBuilderAPI_MakeEdge(gp_Circ(kFlat, radius));
}

TopoDS_Edge Arc(double radius, double from, double to)
{
  return BRepBuilderAPI_MakeEdge(gp_Circ(kFlat, radius), from, to);
}

TopoDS_Edge Bezier(const std::vector<gp_Pnt>& points)
{
  TColgp_Array1OfPnt poles(1, static_cast<int>(points.size()));
  std::copy(points.begin(), points.end(), poles.begin());
  return BRepBuilderAPI_MakeEdge(new Geom_BezierCurve(poles));
}

TopoDS_Wire Square(double size)
{
  return TopoDS::Wire(TopExp_Explorer(SquareAt(0, 0, 0, size), TopAbs_WIRE).Current());
}

TopoDS_Compound CompoundOf(const std::vector<TopoDS_Shape>& shapes)
{
  TopoDS_Compound compound;
  BRep_Builder().MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    BRep_Builder().Add(compound, shape);
  return compound;
}

gp_Pnt EndOf(const TopoDS_Shape& edge, bool last)
{
  const BRepAdaptor_Curve curve(TopoDS::Edge(edge));
  return curve.Value(last ? curve.LastParameter() : curve.FirstParameter());
}

void ExpectAt(const gp_Pnt& found, const gp_Pnt& expected)
{
  EXPECT_LE(found.Distance(expected), 1e-9) << found.X() << ' ' << found.Y() << ' ' << found.Z();
}

TEST(CurveOp, LinesAreExtendedAtEitherEnd)
{
  const TopoDS_Edge line = Line(10);
  for (const bool atEnd : {true, false}) {
    const TopoDS_Shape longer = CurveOp::ExtendCurve(line, 5, atEnd);
    EXPECT_NEAR(LengthOf(longer), 15, 1e-9);
    ExpectAt(EndOf(longer, !atEnd), EndOf(line, !atEnd));
  }
  const TopoDS_Shape first = CurveOp::ExtendCurve(CompoundOf({line, Line(70)}), 5, true);
  EXPECT_EQ(first.ShapeType(), TopAbs_EDGE);
  EXPECT_NEAR(LengthOf(first), 15, 1e-9) << "the first edge alone";
}

// The extension ends at the point at that distance along the tangent and leaves the old part where
// it was.
TEST(CurveOp, CurvesAreExtendedAlongTheirTangent)
{
  const TopoDS_Edge bezier = Bezier({{0, 0, 0}, {0, 4, 0}, {8, 4, 0}, {8, 0, 3}});
  const gp_Dir atStart(0, -1, 0), atEnd(0, -4, 3);
  const TopoDS_Shape after = CurveOp::ExtendCurve(bezier, 2, true);
  const TopoDS_Shape before = CurveOp::ExtendCurve(bezier, 2, false);
  ExpectAt(EndOf(after, true), gp_Pnt(8, 0, 3).Translated(gp_Vec(atEnd) * 2));
  ExpectAt(EndOf(before, false), gp_Pnt(0, 0, 0).Translated(gp_Vec(atStart) * 2));
  ExpectAt(EndOf(after, false), EndOf(bezier, false));
  ExpectAt(EndOf(before, true), EndOf(bezier, true));
  for (const TopoDS_Shape& longer : {after, before})
    EXPECT_NEAR(LengthOf(longer), LengthOf(bezier) + 2, 0.5);
}

TEST(CurveOp, WhatHasNoEndIsNotExtended)
{
  const TopoDS_Edge whole = Circle(5), part = Arc(5, 0, 1), point = Bezier({{1, 1, 1}, {1, 1, 1}});
  TopoDS_Edge trimmed;
  BRep_Builder().MakeEdge(trimmed, new Geom_TrimmedCurve(new Geom_Circle(kFlat, 5), 0, 1), 1e-7);
  BRep_Builder().Range(trimmed, 0, 1);
  for (const bool atEnd : {true, false}) {
    for (const TopoDS_Shape& shape : {TopoDS_Shape(whole), TopoDS_Shape(part), TopoDS_Shape(point),
                                      TopoDS_Shape(CompoundOf({})), TopoDS_Shape()})
      EXPECT_TRUE(CurveOp::ExtendCurve(shape, 1, atEnd).IsNull());
    for (const double distance : {0.0, -1.0, kNaN, kInfinity})
      EXPECT_TRUE(CurveOp::ExtendCurve(Line(10), distance, atEnd).IsNull());
    EXPECT_GT(LengthOf(CurveOp::ExtendCurve(trimmed, 1, atEnd)), 5.9);
  }
}

TEST(CurveOp, OffsetsHaveTheLengthOfTheFormula)
{
  const TopoDS_Wire square = Square(10);
  for (const double distance : {0.5, 1.0, 1e3})
    EXPECT_NEAR(LengthOf(CurveOp::OffsetCurve(square, distance)), 40 + 2 * M_PI * distance, 1e-6);
  EXPECT_NEAR(LengthOf(CurveOp::OffsetCurve(square, -1)), 32, 1e-6);
  for (const double radius : {1e-3, 0.3, 1.0, 1.0005, 2.0, 1e6})
    for (const double part : {-0.5, -1e-3, 0.0, 0.5, 3.0})
      EXPECT_NEAR(LengthOf(CurveOp::OffsetCurve(Circle(radius), part * radius)) / radius,
                  2 * M_PI * (1 + part), 1e-6);
  const TopoDS_Edge turned = TopoDS::Edge(Circle(0.5).Reversed());
  EXPECT_NEAR(LengthOf(CurveOp::OffsetCurve(BRepBuilderAPI_MakeWire(turned).Wire(), -0.1)),
              1.2 * M_PI, 1e-6);
  const TopoDS_Shape nothingLeft = CurveOp::OffsetCurve(square, -6);
  ASSERT_FALSE(nothingLeft.IsNull());
  EXPECT_EQ(LengthOf(nothingLeft), 0);
}

TEST(CurveOp, WhatIsNoPlaneWireIsNotOffset)
{
  const TopoDS_Shape space = BRepBuilderAPI_MakePolygon(gp_Pnt(0, 0, 0), gp_Pnt(9, 0, 0),
                                                        gp_Pnt(9, 9, 5), gp_Pnt(0, 9, 0), true)
                               .Wire();
  const TopoDS_Shape vertex = TopExp_Explorer(Square(1), TopAbs_VERTEX).Current();
  TopoDS_Wire empty;
  BRep_Builder().MakeWire(empty);
  BRepBuilderAPI_MakeWire twice(Circle(0.2));
  twice.Add(TopoDS::Edge(TopExp_Explorer(twice.Wire(), TopAbs_EDGE).Current()));
  for (const TopoDS_Shape& shape :
       {space, vertex, TopoDS_Shape(empty), TopoDS_Shape(CompoundOf({Square(1)})), TopoDS_Shape(),
        TopoDS_Shape(Line(1)), TopoDS_Shape(Circle(1e10)), TopoDS_Shape(twice.Wire())})
    EXPECT_TRUE(CurveOp::OffsetCurve(shape, 1).IsNull());
  for (const double distance : {kNaN, kInfinity, -kInfinity})
    EXPECT_TRUE(CurveOp::OffsetCurve(Square(1), distance).IsNull());
}

TEST(CurveOp, TrimsTakeWhatLiesBetweenAndInside)
{
  const TopoDS_Edge arc = Arc(5, 1, 4);
  struct Case
  {
    double first, last, length;
  };
  for (const Case& row : {Case{2, 3, 5}, Case{3, 2, 5}, Case{-9, 3, 10}, Case{2, kInfinity, 10},
                          Case{-kInfinity, kInfinity, 15}, Case{2, 2 + 1.001e-7, 5.005e-7}}) {
    const TopoDS_Shape part = CurveOp::TrimCurve(arc, row.first, row.last);
    ASSERT_FALSE(part.IsNull());
    EXPECT_NEAR(LengthOf(part), row.length, 1e-9);
    const double from = std::max(1.0, std::min(row.first, row.last));
    ExpectAt(EndOf(part, false), gp_Pnt(5 * std::cos(from), 5 * std::sin(from), 0));
  }
  EXPECT_NEAR(LengthOf(CurveOp::TrimCurve(Circle(5), 6, 1)), 25, 1e-9) << "not across the seam";
  EXPECT_NEAR(LengthOf(CurveOp::TrimCurve(Circle(5), 0, 7)), 10 * M_PI, 1e-9);
  for (const auto& [first, last] : {std::pair{2.0, 2.0},
                                    {2.0, 2 + 0.9e-7},
                                    {5.0, 9.0},
                                    {-3.0, 0.5},
                                    {kNaN, 2.0},
                                    {2.0, kNaN},
                                    {kInfinity, kInfinity}})
    EXPECT_TRUE(CurveOp::TrimCurve(arc, first, last).IsNull()) << first << ' ' << last;
  EXPECT_TRUE(CurveOp::TrimCurve(TopoDS_Shape(), 0, 1).IsNull());
  EXPECT_TRUE(CurveOp::TrimCurve(CompoundOf({}), 0, 1).IsNull());
}

TEST(CurveOp, InputsStayBitForBit)
{
  TopoDS_Edge bare;
  BRep_Builder().MakeEdge(bare);
  for (const TopoDS_Shape& shape :
       {TopoDS_Shape(Line(10)), TopoDS_Shape(Circle(5)), TopoDS_Shape(Square(10)), Drill(),
        TopoDS_Shape(Bezier({{0, 0, 0}, {0, 4, 0}, {8, 4, 0}})), TopoDS_Shape(bare)}) {
    const std::string before = BrepOf(shape);
    try {
      CurveOp::OffsetCurve(shape, 1);
      CurveOp::ExtendCurve(shape, 1, true);
      CurveOp::TrimCurve(shape, 0.1, 0.2);
    } catch (const Standard_Failure&) {
      EXPECT_TRUE(shape.IsSame(bare)) << "only an edge without any curve is beyond the kernel";
    }
    EXPECT_EQ(BrepOf(shape), before);
  }
}

// Random splines over nine orders of size: the parts of a trim add up, and so does an extension.
TEST(CurveOp, RandomCurvesAreTrimmedExtendedAndOffset)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  std::array<int, 3> built{}; // trimmed, extended, offset
  for (int i = 0; i < 200; ++i) {
    const double size = std::pow(10, random.Real(-2, 7)), middle = random.Real(0.01, 0.99);
    std::vector<gp_Pnt> points;
    for (int k = 2 + random.Index(5); k >= 0; --k)
      points.emplace_back(random.Real(0, size), random.Real(0, size), random.Real(0, size));
    const TopoDS_Edge curve = Bezier(points);
    const double length = LengthOf(curve);
    const double parts = LengthOf(CurveOp::TrimCurve(curve, 0, middle)) +
                         LengthOf(CurveOp::TrimCurve(curve, 2, middle));
    built[0] += std::abs(parts - length) <= 1e-6 * length;
    const TopoDS_Shape longer = CurveOp::ExtendCurve(curve, size, random.Index(2) == 0);
    built[1] += !longer.IsNull() && LengthOf(longer) >= length + size * (1 - 1e-6);
    const TopoDS_Shape grown = CurveOp::OffsetCurve(Square(size), size * random.Real(0, 2));
    built[2] += !grown.IsNull() && LengthOf(grown) > 4 * size;
  }
  EXPECT_EQ(built, (std::array{200, 200, 200}));
}

} // namespace
