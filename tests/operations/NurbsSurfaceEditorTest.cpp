#include "operations/NurbsSurfaceEditor.h"

#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepCheck_Analyzer.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Standard_Failure.hxx>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

using namespace OrvexTest;

namespace {

using Editor = NurbsSurfaceEditor;
using Grid = std::vector<std::vector<gp_Pnt>>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Handle(Geom_BSplineSurface) SurfaceOf(const TopoDS_Face& face)
{
  return Handle(Geom_BSplineSurface)::DownCast(BRep_Tool::Surface(face));
}

Grid FlatGrid(int rows, int columns)
{
  Grid grid(static_cast<std::size_t>(rows));
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < columns; ++j)
      grid[static_cast<std::size_t>(i)].emplace_back(10.0 * i / (rows - 1), 6.0 * j / (columns - 1),
                                                     0);
  return grid;
}

// A flat patch of 10 by 6, of degrees 2 and 3.
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

gp_Pnt MiddleOf(const TopoDS_Face& face)
{
  double u1 = 0, u2 = 0, v1 = 0, v2 = 0;
  BRepTools::UVBounds(face, u1, u2, v1, v2);
  return SurfaceOf(face)->Value((u1 + u2) / 2, (v1 + v2) / 2);
}

struct Knots
{
  std::vector<double> values;
  std::vector<int> multiplicities;
  bool operator==(const Knots&) const = default;
};

Knots KnotsOf(const TColStd_Array1OfReal& values, const TColStd_Array1OfInteger& multiplicities)
{
  return {{values.begin(), values.end()}, {multiplicities.begin(), multiplicities.end()}};
}

Knots UKnotsOf(const TopoDS_Face& face)
{
  return KnotsOf(SurfaceOf(face)->UKnots(), SurfaceOf(face)->UMultiplicities());
}

Knots VKnotsOf(const TopoDS_Face& face)
{
  return KnotsOf(SurfaceOf(face)->VKnots(), SurfaceOf(face)->VMultiplicities());
}

TEST(NurbsSurfaceEditor, GridsGetClampedDegreesAndClampedUniformKnots)
{
  struct Case
  {
    int rows, columns, uDegree, vDegree;
    Knots u, v;
  };
  const Knots bilinear{{0, 1}, {2, 2}};
  for (const Case& row : {Case{2, 2, 3, 3, bilinear, bilinear},
                          Case{2, 5, 1, 2, bilinear, {{0, 1.0 / 3, 2.0 / 3, 1}, {3, 1, 1, 3}}},
                          Case{2, 3, -7, 0, bilinear, {{0, 0.5, 1}, {2, 1, 2}}},
                          Case{4, 2, 99, 99, {{0, 1}, {4, 4}}, bilinear}}) {
    const TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(FlatGrid(row.rows, row.columns),
                                                                  row.uDegree, row.vDegree);
    ASSERT_FALSE(face.IsNull());
    EXPECT_EQ(UKnotsOf(face), row.u);
    EXPECT_EQ(VKnotsOf(face), row.v);
    EXPECT_TRUE(BRepCheck_Analyzer(face).IsValid());
    EXPECT_NEAR(ExactAreaOf(face), 60, 1e-9);
    EXPECT_FALSE(SurfaceOf(face)->IsURational() || SurfaceOf(face)->IsVRational());
  }
}

TEST(NurbsSurfaceEditor, ThePoleOfRowAndColumnIsThePointOfTheGrid)
{
  Grid grid = FlatGrid(3, 4);
  grid[1][2].SetZ(7);
  const auto surface = SurfaceOf(Editor::CreateSurfaceFromControlGrid(grid, 2, 2));
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 4; ++j)
      EXPECT_EQ(surface->Pole(i, j).Distance(grid[std::size_t(i - 1)][std::size_t(j - 1)]), 0);
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
TEST(NurbsSurfaceEditor, APoleMovesTheSurfaceByItsBasisFunction)
{
  TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(FlatGrid(3, 3), 2, 2);
  const TopoDS_Face other = face;
  const gp_Pnt before = MiddleOf(face);
  EXPECT_TRUE(Editor::MoveControlPoint(face, 2, 2, gp_Vec(1, -2, 8)));
  EXPECT_TRUE(MiddleOf(face).IsEqual(before.Translated(gp_Vec(1, -2, 8) / 4), 1e-12));
  EXPECT_EQ(SurfaceOf(face), SurfaceOf(other)) << "edited in place";
  EXPECT_FALSE(face.IsSame(other));
}

TEST(NurbsSurfaceEditor, WeightsStayAndPlacesCount)
{
  TopoDS_Face face = Patch();
  SurfaceOf(face)->SetWeight(2, 3, 5);
  EXPECT_TRUE(Editor::MoveControlPoint(face, 2, 3, gp_Vec(0, 0, 1)));
  EXPECT_EQ(SurfaceOf(face)->Weight(2, 3), 5);

  const TopoDS_Face original = Patch();
  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(100, 0, 0));
  TopoDS_Face moved = TopoDS::Face(original.Moved(shift));
  EXPECT_TRUE(Editor::MoveControlPoint(moved, 1, 1, gp_Vec(0, 0, 1)));
  EXPECT_NEAR(BoundsOf(moved).CornerMax().X(), 110, 1e-6);
  EXPECT_EQ(SurfaceOf(original)->Pole(1, 1).Z(), 0) << "its place gave it a surface of its own";
}

TEST(NurbsSurfaceEditor, PushingTranslatesRigidlyAlongTheSurfaceNormal)
{
  Grid dome = FlatGrid(5, 5);
  dome[2][2].SetZ(6);
  for (const double distance : {3.0, -3.0, 1e9, 1.001e-7}) {
    TopoDS_Face face = Editor::CreateSurfaceFromControlGrid(dome, 2, 2);
    const auto before = Handle(Geom_BSplineSurface)::DownCast(SurfaceOf(face)->Copy());
    face.Reverse();
    EXPECT_TRUE(Editor::PushPullFaceAlongNormal(face, distance));
    // By symmetry the normal at the middle is that of the plane, whatever way the face looks.
    for (int i = 1; i <= 5; ++i)
      for (int j = 1; j <= 5; ++j)
        EXPECT_TRUE(
          SurfaceOf(face)->Pole(i, j).IsEqual(before->Pole(i, j).Translated(gp_Vec(0, 0, distance)),
                                              1e-9 + std::abs(distance) * 1e-15));
  }
}

TEST(NurbsSurfaceEditor, KnotsAreScaledAndTheShapeStays)
{
  TopoDS_Face face = Patch();
  const Knots u = UKnotsOf(face);
  const double area = ExactAreaOf(face);
  const gp_Pnt middle = MiddleOf(face);
  EXPECT_TRUE(Editor::ReparameterizeSurface(face, -2, 4, 10, 10.5));
  const Knots scaled = UKnotsOf(face);
  EXPECT_EQ(scaled.multiplicities, u.multiplicities);
  for (std::size_t i = 0; i < u.values.size(); ++i)
    EXPECT_NEAR(scaled.values[i], -2 + 6 * u.values[i], 1e-12);
  EXPECT_EQ(VKnotsOf(face).values.front(), 10);
  EXPECT_EQ(VKnotsOf(face).values.back(), 10.5);
  EXPECT_NEAR(ExactAreaOf(face), area, 1e-9);
  EXPECT_TRUE(MiddleOf(face).IsEqual(middle, 1e-9));
}

TEST(NurbsSurfaceEditor, ATrimmedFaceComesBackWithItsNaturalBounds)
{
  const std::vector<std::function<bool(TopoDS_Face&)>> edits = {
    [](TopoDS_Face& face) { return Editor::MoveControlPoint(face, 1, 1, gp_Vec()); },
    [](TopoDS_Face& face) { return Editor::PushPullFaceAlongNormal(face, 1); },
    [](TopoDS_Face& face) { return Editor::ReparameterizeSurface(face, 0, 2, 0, 2); }};
  for (const auto& edit : edits) {
    const auto surface = SurfaceOf(Editor::CreateSurfaceFromControlGrid(FlatGrid(2, 2), 1, 1));
    TopoDS_Face face = BRepBuilderAPI_MakeFace(surface, 0.25, 0.75, 0.25, 0.75, 1e-7).Face();
    EXPECT_NEAR(ExactAreaOf(face), 15, 1e-9);
    EXPECT_TRUE(edit(face));
    EXPECT_NEAR(ExactAreaOf(face), 60, 1e-9);
  }
}

TEST(NurbsSurfaceEditor, WhatIsRefusedChangesNothing)
{
  const std::vector<std::function<bool(TopoDS_Face&)>> edits = {
    [](TopoDS_Face& face) { return Editor::MoveControlPoint(face, 0, 1, gp_Vec(1, 1, 1)); },
    [](TopoDS_Face& face) { return Editor::MoveControlPoint(face, 1, 7, gp_Vec(1, 1, 1)); },
    [](TopoDS_Face& face) { return Editor::MoveControlPoint(face, 1, 1, gp_Vec(0, kNaN, 0)); },
    [](TopoDS_Face& face) { return Editor::PushPullFaceAlongNormal(face, 1e-7); },
    [](TopoDS_Face& face) { return Editor::PushPullFaceAlongNormal(face, kNaN); },
    [](TopoDS_Face& face) { return Editor::PushPullFaceAlongNormal(face, -kInfinity); },
    [](TopoDS_Face& face) { return Editor::ReparameterizeSurface(face, 1, 1, 0, 1); },
    [](TopoDS_Face& face) { return Editor::ReparameterizeSurface(face, 0, 1, 1, 0); },
    [](TopoDS_Face& face) { return Editor::ReparameterizeSurface(face, 0, kNaN, 0, 1); },
    [](TopoDS_Face& face) { return Editor::ReparameterizeSurface(face, 0, kInfinity, 0, 1); }};
  const TopoDS_Face plane = TopoDS::Face(SquareAt(0, 0, 0));
  for (const auto& edit : edits) {
    for (const TopoDS_Face& original : {Patch(), plane}) {
      TopoDS_Face face = original;
      const std::string before = BrepOf(face);
      EXPECT_FALSE(edit(face));
      EXPECT_TRUE(face.IsEqual(original));
      EXPECT_EQ(BrepOf(face), before);
    }
    TopoDS_Face none;
    EXPECT_FALSE(edit(none));
  }
  TopoDS_Face face = plane;
  EXPECT_FALSE(Editor::MoveControlPoint(face, 1, 1, gp_Vec(1, 1, 1)));
  EXPECT_FALSE(Editor::PushPullFaceAlongNormal(face, 1));
  EXPECT_FALSE(Editor::ReparameterizeSurface(face, 0, 1, 0, 1));
}

// Grids of random size, degree and scale, now and then with points that fall together or lie far
// out: a face is valid, moving back what was moved gives the old area.
TEST(NurbsSurfaceEditor, RandomGridsAreBuiltAndEditedBack)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  std::array<int, 3> outcomes{}; // built, refused, failed
  for (int i = 0; i < 200; ++i) {
    const int rows = 1 + random.Index(6), columns = 1 + random.Index(6);
    const double scale = std::pow(10, random.Real(-3, 6));
    Grid grid(static_cast<std::size_t>(rows));
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < columns; ++c)
        grid[static_cast<std::size_t>(r)].emplace_back(
          scale * r, scale * c * (random.Index(40) > 0), scale * random.Real(-1, 1));
    try {
      TopoDS_Face face =
        Editor::CreateSurfaceFromControlGrid(grid, random.Index(7) - 1, random.Index(7) - 1);
      ++outcomes[face.IsNull()];
      EXPECT_EQ(face.IsNull(), rows < 2 || columns < 2);
      if (face.IsNull())
        continue;
      const double area = ExactAreaOf(face);
      const gp_Vec delta(scale, scale, scale);
      EXPECT_TRUE(Editor::MoveControlPoint(face, rows, columns, delta));
      EXPECT_TRUE(Editor::MoveControlPoint(face, rows, columns, -delta));
      EXPECT_NEAR(ExactAreaOf(face), area, area * 1e-9);
    } catch (const Standard_Failure&) {
      ++outcomes[2];
    }
  }
  RecordProperty("built", outcomes[0]);
  RecordProperty("refused", outcomes[1]);
  RecordProperty("failed", outcomes[2]);
  EXPECT_EQ(outcomes[2], 0);
}

} // namespace
