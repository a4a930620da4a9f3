#include "operations/NurbsSurfaceEditor.h"

#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepCheck_Analyzer.hxx>
#include <BRep_Tool.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Standard_Failure.hxx>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>

using namespace OrvexTest;

namespace {

using Editor = NurbsSurfaceEditor;
using Grid = std::vector<std::vector<gp_Pnt>>;
using Edit = std::function<bool(TopoDS_Face&)>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Handle(Geom_BSplineSurface) SurfaceOf(const TopoDS_Face& face)
{
  return Handle(Geom_BSplineSurface)::DownCast(BRep_Tool::Surface(face));
}

// A flat grid of 10 by 6.
Grid FlatGrid(int rows, int columns)
{
  Grid grid(static_cast<std::size_t>(rows));
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < columns; ++j)
      grid[std::size_t(i)].emplace_back(10.0 * i / (rows - 1), 6.0 * j / (columns - 1), 0);
  return grid;
}

TopoDS_Face Patch()
{
  return Editor::CreateSurfaceFromControlGrid(FlatGrid(5, 6), 2, 3);
}

// By adaptive integration: otherwise the kernel is off by a thousandth on splines with inner knots.
double ExactAreaOf(const TopoDS_Shape& face)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(face, properties, 1e-10);
  return properties.Mass();
}

// All knots, each as often as its multiplicity says.
std::vector<double> Flat(const TColStd_Array1OfReal& knots, const TColStd_Array1OfInteger& times)
{
  std::vector<double> flat;
  for (int i = knots.Lower(); i <= knots.Upper(); ++i)
    flat.insert(flat.end(), std::size_t(times(i)), knots(i));
  return flat;
}

TEST(NurbsSurfaceEditor, GridsGetClampedDegreesAndClampedUniformKnots)
{
  using Knots = std::vector<double>;
  struct Case
  {
    int rows, columns, uDegree, vDegree;
    Knots u, v;
  };
  const Knots line{0, 0, 1, 1};
  for (const Case& row :
       {Case{2, 2, 3, 3, line, line}, Case{2, 5, 1, 2, line, {0, 0, 0, 1.0 / 3, 2.0 / 3, 1, 1, 1}},
        Case{2, 3, -7, 0, line, {0, 0, 0.5, 1, 1}},
        Case{4, 2, 99, 99, {0, 0, 0, 0, 1, 1, 1, 1}, line}}) {
    const Grid grid = FlatGrid(row.rows, row.columns);
    const TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(grid, row.uDegree, row.vDegree);
    ASSERT_FALSE(face.IsNull());
    const auto surface = SurfaceOf(face);
    EXPECT_EQ(Flat(surface->UKnots(), surface->UMultiplicities()), row.u);
    EXPECT_EQ(Flat(surface->VKnots(), surface->VMultiplicities()), row.v);
    EXPECT_TRUE(BRepCheck_Analyzer(face).IsValid());
    EXPECT_NEAR(ExactAreaOf(face), 60, 1e-9);
    for (int i = 1; i <= row.rows; ++i)
      for (int j = 1; j <= row.columns; ++j)
        EXPECT_EQ(surface->Pole(i, j).Distance(grid[std::size_t(i - 1)][std::size_t(j - 1)]), 0);
  }
}

TEST(NurbsSurfaceEditor, GridsThatAreNoneGiveNothing)
{
  Grid ragged = FlatGrid(3, 3), odd = FlatGrid(3, 3);
  ragged[2].pop_back();
  odd[1][1].SetX(kNaN);
  const Grid oneRow(1, std::vector<gp_Pnt>(3)), oneColumn(3, std::vector<gp_Pnt>(1));
  for (const Grid& grid : {Grid{}, Grid(2), oneRow, oneColumn, ragged, odd})
    EXPECT_TRUE(Editor::CreateSurfaceFromControlGrid(grid, 1, 1).IsNull());
  EXPECT_THROW(Editor::CreateSurfaceFromControlGrid(FlatGrid(30, 2), 26, 1), Standard_Failure);
  const Grid onePoint(3, std::vector<gp_Pnt>(3));
  EXPECT_NO_THROW(Editor::CreateSurfaceFromControlGrid(onePoint, 2, 2));
}

// A pole moves a point of the surface by its basis function: for a single span of degree 2, by
// 1/2 * 1/2 at the middle.
TEST(NurbsSurfaceEditor, APoleMovesTheSurfaceInPlaceByItsBasisFunction)
{
  TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(FlatGrid(3, 3), 2, 2);
  const TopoDS_Face other = face;
  const gp_Pnt before = SurfaceOf(face)->Value(0.5, 0.5);
  EXPECT_TRUE(Editor::MoveControlPoint(face, 2, 2, gp_Vec(1, -2, 8)));
  const gp_Pnt expected = before.Translated(gp_Vec(1, -2, 8) / 4);
  EXPECT_TRUE(SurfaceOf(other)->Value(0.5, 0.5).IsEqual(expected, 1e-12));
  EXPECT_FALSE(face.IsSame(other));
  SurfaceOf(face)->SetWeight(2, 3, 5);
  EXPECT_TRUE(Editor::MoveControlPoint(face, 2, 3, gp_Vec(0, 0, 1)));
  EXPECT_EQ(SurfaceOf(face)->Weight(2, 3), 5);

  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(100, 0, 0));
  TopoDS_Face moved = TopoDS::Face(face.Moved(shift));
  const gp_Pnt corner = SurfaceOf(face)->Pole(1, 1);
  EXPECT_TRUE(Editor::MoveControlPoint(moved, 1, 1, gp_Vec(0, 0, 1)));
  EXPECT_EQ(SurfaceOf(moved)->Pole(1, 1).X(), 100);
  EXPECT_TRUE(SurfaceOf(face)->Pole(1, 1).IsEqual(corner, 0))
    << "a location is a surface of its own";
}

TEST(NurbsSurfaceEditor, PushingTranslatesRigidlyAlongTheSurfaceNormal)
{
  Grid dome = FlatGrid(5, 5);
  dome[2][2].SetZ(6);
  for (const double distance : {3.0, -3.0, 1e9, 1.001e-7}) {
    TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(dome, 2, 2);
    face.Reverse();
    EXPECT_TRUE(Editor::PushPullFaceAlongNormal(face, distance));
    // By symmetry the normal at the middle is that of the plane, whatever way the face looks.
    for (int i = 1; i <= 5; ++i)
      for (int j = 1; j <= 5; ++j)
        EXPECT_TRUE(SurfaceOf(face)->Pole(i, j).IsEqual(
          dome[std::size_t(i - 1)][std::size_t(j - 1)].Translated(gp_Vec(0, 0, distance)),
          1e-9 + std::abs(distance) * 1e-15));
  }
}

TEST(NurbsSurfaceEditor, KnotsAreScaledAndTheShapeStays)
{
  TopoDS_Face face = Patch();
  const TColStd_Array1OfReal u = SurfaceOf(face)->UKnots();
  EXPECT_TRUE(Editor::ReparameterizeSurface(face, -2, 4, 10, 10.5));
  for (int i = u.Lower(); i <= u.Upper(); ++i)
    EXPECT_NEAR(SurfaceOf(face)->UKnot(i), -2 + 6 * u(i), 1e-12);
  EXPECT_EQ(SurfaceOf(face)->VKnots().First(), 10);
  EXPECT_EQ(SurfaceOf(face)->VKnots().Last(), 10.5);
  EXPECT_NEAR(ExactAreaOf(face), 60, 1e-6);
}

TEST(NurbsSurfaceEditor, ATrimmedFaceComesBackWithItsNaturalBounds)
{
  for (const Edit& edit :
       {Edit([](TopoDS_Face& f) { return Editor::MoveControlPoint(f, 1, 1, gp_Vec()); }),
        Edit([](TopoDS_Face& f) { return Editor::PushPullFaceAlongNormal(f, 1); }),
        Edit([](TopoDS_Face& f) { return Editor::ReparameterizeSurface(f, 0, 2, 0, 2); })}) {
    const auto surface = SurfaceOf(Editor::CreateSurfaceFromControlGrid(FlatGrid(2, 2), 1, 1));
    TopoDS_Face face = BRepBuilderAPI_MakeFace(surface, 0.25, 0.75, 0.25, 0.75, 1e-7).Face();
    EXPECT_NEAR(ExactAreaOf(face), 15, 1e-9);
    EXPECT_TRUE(edit(face));
    EXPECT_NEAR(ExactAreaOf(face), 60, 1e-9);
    TopoDS_Face plane = TopoDS::Face(SquareAt(0, 0, 0)), none;
    EXPECT_FALSE(edit(plane));
    EXPECT_FALSE(edit(none));
  }
}

TEST(NurbsSurfaceEditor, WhatIsRefusedChangesNothing)
{
  for (const Edit& edit :
       {Edit([](TopoDS_Face& f) { return Editor::MoveControlPoint(f, 0, 1, gp_Vec(1, 1, 1)); }),
        Edit([](TopoDS_Face& f) { return Editor::MoveControlPoint(f, 1, 7, gp_Vec(1, 1, 1)); }),
        Edit([](TopoDS_Face& f) { return Editor::MoveControlPoint(f, 1, 1, gp_Vec(0, kNaN, 0)); }),
        Edit([](TopoDS_Face& f) { return Editor::PushPullFaceAlongNormal(f, 1e-7); }),
        Edit([](TopoDS_Face& f) { return Editor::PushPullFaceAlongNormal(f, kNaN); }),
        Edit([](TopoDS_Face& f) { return Editor::PushPullFaceAlongNormal(f, -kInfinity); }),
        Edit([](TopoDS_Face& f) { return Editor::ReparameterizeSurface(f, 1, 1, 0, 1); }),
        Edit([](TopoDS_Face& f) { return Editor::ReparameterizeSurface(f, 0, 1, 1, 0); }),
        Edit([](TopoDS_Face& f) { return Editor::ReparameterizeSurface(f, 0, kNaN, 0, 1); }),
        Edit(
          [](TopoDS_Face& f) { return Editor::ReparameterizeSurface(f, 0, kInfinity, 0, 1); })}) {
    const TopoDS_Face original = Patch();
    TopoDS_Face face = original;
    const std::string before = BrepOf(face);
    EXPECT_FALSE(edit(face));
    EXPECT_TRUE(face.IsEqual(original));
    EXPECT_EQ(BrepOf(face), before);
  }
}

// Grids of random size, degree and scale, now and then with points that fall together: moving back
// what was moved gives the old area.
TEST(NurbsSurfaceEditor, RandomGridsAreBuiltAndEditedBack)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  std::array<int, 2> outcomes{}; // built, refused
  for (int i = 0; i < 200; ++i) {
    const int rows = 1 + random.Index(6), columns = 1 + random.Index(6);
    const double scale = std::pow(10, random.Real(-3, 6));
    Grid grid(static_cast<std::size_t>(rows));
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < columns; ++c)
        grid[std::size_t(r)].emplace_back(scale * r, scale * c * (random.Index(40) > 0),
                                          scale * random.Real(-1, 1));
    TopoDS_Face face =
      Editor::CreateSurfaceFromControlGrid(grid, random.Index(7) - 1, random.Index(7) - 1);
    ++outcomes[face.IsNull()];
    EXPECT_EQ(face.IsNull(), rows < 2 || columns < 2);
    if (face.IsNull())
      continue;
    const double area = AreaOf(face);
    const gp_Vec delta(scale, scale, scale);
    EXPECT_TRUE(Editor::MoveControlPoint(face, rows, columns, delta));
    EXPECT_TRUE(Editor::MoveControlPoint(face, rows, columns, -delta));
    EXPECT_NEAR(AreaOf(face), area, area * 1e-9);
  }
  RecordProperty("built", outcomes[0]);
  RecordProperty("refused", outcomes[1]);
}

} // namespace
