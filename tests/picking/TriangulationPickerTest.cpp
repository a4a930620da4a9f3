#include "picking/OrvexFaceTriangulationPicker.h"

#include "support/DetailedLog.h"
#include "support/Random.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepIntCurveSurface_Inter.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <optional>

using namespace OrvexTest;

namespace {

OrvexFaceTriangulationPicker& Picker()
{
  return *OrvexFaceTriangulationPicker::GetInstance();
}

TopoDS_Shape Cube()
{
  return BRepPrimAPI_MakeBox(10, 10, 10).Shape();
}

void ExpectMiss(const PickResultsOutput& result)
{
  EXPECT_FALSE(result.hit);
  EXPECT_EQ(result.parameter, DBL_MAX);
  EXPECT_EQ(result.point.Distance(gp_Pnt()), 0);
  EXPECT_TRUE(result.subShape.IsNull() && result.parentShape.IsNull() && result.face.IsNull());
}

TEST(TriangulationPicker, ReportsTheNearestFaceInFrontOfTheOrigin)
{
  TopoDS_Shape cube = Cube();
  const PickResultsOutput result = Picker().Pick(cube, {3, 4, 20}, gp::DZ().Reversed());
  ASSERT_TRUE(result.hit);
  EXPECT_EQ(result.level, 2);
  EXPECT_NEAR(result.point.Distance({3, 4, 10}), 0, 1e-12);
  EXPECT_EQ(result.parameter, 10);
  EXPECT_TRUE(result.parentShape.IsEqual(cube));
  EXPECT_TRUE(result.face.IsEqual(result.subShape));
  TopoDS_Shape face = result.face;
  EXPECT_TRUE(Picker().Pick(face, {1, 1, 11}, gp::DZ().Reversed()).hit);

  // From inside the far wall, and from a point on a face the opposite one.
  EXPECT_EQ(Picker().Pick(cube, {3, 4, 6}, gp::DZ().Reversed()).parameter, 6);
  EXPECT_EQ(Picker().Pick(cube, {3, 4, 10}, gp::DZ().Reversed()).parameter, 10);
  ExpectMiss(Picker().Pick(cube, {3, 4, 20}, gp::DZ()));
  // In the plane of a face, and along an edge.
  EXPECT_EQ(Picker().Pick(cube, {-5, 5, 10}, gp::DX()).parameter, 5);
  ExpectMiss(Picker().Pick(cube, {-5, 5, 10.001}, gp::DX()));
}

TEST(TriangulationPicker, DistancesOfASphereAreThoseOfItsMesh)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  static constexpr double kRadius = 5, kDeflection = 0.01;
  TopoDS_Shape sphere = BRepPrimAPI_MakeSphere(kRadius).Shape();
  BRepMesh_IncrementalMesh(sphere, kDeflection, false, 0.1);
  for (int i = 0; i < 2000; ++i) {
    const gp_XYZ aim(random.Real(-6, 6), random.Real(-6, 6), 0);
    const gp_Dir direction(random.Real(-1, 1), random.Real(-1, 1), -3);
    const gp_Pnt origin(aim - direction.XYZ() * 30);
    const double b = origin.XYZ().Dot(direction.XYZ());
    const double apart = std::sqrt(origin.XYZ().SquareModulus() - b * b);
    const PickResultsOutput result = Picker().Pick(sphere, origin, direction);
    if (std::abs(apart - kRadius) < 2 * kDeflection)
      continue;
    ASSERT_EQ(result.hit, apart < kRadius) << apart;
    if (result.hit) {
      EXPECT_NEAR(result.point.Distance(gp_Pnt()), kRadius, 2 * kDeflection);
    }
  }
}

struct ExactHit
{
  // -1: none.
  double distance = -1;
  TopoDS_Shape face;
};

ExactHit NearestExactHit(const TopoDS_Shape& shape, const gp_Lin& ray)
{
  ExactHit nearest;
  BRepIntCurveSurface_Inter hits;
  for (hits.Init(shape, ray, 1e-7); hits.More(); hits.Next())
    if (hits.W() > 0 && (nearest.distance < 0 || hits.W() < nearest.distance))
      nearest = {hits.W(), hits.Face()};
  return nearest;
}

// What the kernel's exact intersection says of a ray and of four others close by: the distance if
// all strike one face steeply, -1 if all miss, none if they disagree.
std::optional<double> SteadyDistance(const TopoDS_Shape& shape, const gp_Lin& ray, double apart)
{
  static constexpr double kFlattest = 0.3;
  const ExactHit middle = NearestExactHit(shape, ray);
  const gp_Ax3 frame(ray.Location(), ray.Direction());
  const gp_Vec x(frame.XDirection()), y(frame.YDirection());
  for (const gp_Vec& aside : {x, x.Reversed(), y, y.Reversed()}) {
    const ExactHit hit = NearestExactHit(shape, ray.Translated(aside * apart));
    if (!hit.face.IsEqual(middle.face) ||
        std::abs(hit.distance - middle.distance) > apart / kFlattest)
      return {};
  }
  return middle.distance;
}

TEST(TriangulationPicker, HitsAreTheKernelsWithinTheDeflection)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  static constexpr double kDeflection = 0.005;
  TopoDS_Shape model = BRepAlgoAPI_Cut(BRepPrimAPI_MakeTorus(6, 2).Shape(),
                                       BRepPrimAPI_MakeBox(gp_Pnt(0, 0, -3), 9, 9, 6).Shape());
  BRepMesh_IncrementalMesh(model, kDeflection, false, 0.1);
  const auto number = [&](double size) { return random.Real(-size, size); };
  int hits = 0, misses = 0;
  for (int i = 0; i < 2000; ++i) {
    const double x = number(9), y = number(9), dx = number(1), dy = number(1);
    const gp_Dir direction(dx, dy, -1);
    const gp_Pnt origin(gp_XYZ(x, y, 0) - direction.XYZ() * 20);
    const auto distance = SteadyDistance(model, gp_Lin(origin, direction), 2 * kDeflection);
    if (!distance)
      continue;
    const PickResultsOutput result = Picker().Pick(model, origin, direction);
    ASSERT_EQ(result.hit, *distance >= 0) << i;
    ++(result.hit ? hits : misses);
    if (result.hit) {
      EXPECT_NEAR(result.parameter, *distance, 4 * kDeflection) << i;
    }
  }
  EXPECT_GT(hits, 500);
  EXPECT_GT(misses, 300);
}

TEST(TriangulationPicker, KeepsTheTrianglesOfTheFirstPick)
{
  TopoDS_Shape cube = Cube();
  Picker().Initialize(std::vector<TopoDS_Shape>{cube, cube});
  BRepTools::Clean(cube);
  EXPECT_TRUE(Picker().Pick(cube, {3, 4, 20}, gp::DZ().Reversed()).hit);
  TopExp_Explorer face(cube, TopAbs_FACE);
  TopLoc_Location location;
  EXPECT_TRUE(BRep_Tool::Triangulation(TopoDS::Face(face.Current()), location).IsNull());

  // Another place is another hash.
  gp_Trsf away;
  away.SetTranslation(gp_Vec(100, 0, 0));
  TopoDS_Shape moved = cube.Moved(away);
  EXPECT_TRUE(Picker().Pick(moved, {103, 4, 20}, gp::DZ().Reversed()).hit);
  // The orientation is none.
  TopoDS_Shape reversed = cube.Reversed();
  BRepTools::Clean(cube);
  const PickResultsOutput result = Picker().Pick(reversed, {3, 4, 20}, gp::DZ().Reversed());
  EXPECT_TRUE(result.parentShape.IsEqual(reversed));
  face.Init(cube, TopAbs_FACE);
  EXPECT_TRUE(BRep_Tool::Triangulation(TopoDS::Face(face.Current()), location).IsNull());
}

TEST(TriangulationPicker, MeshesWhatHasNoMeshOnItsOwnFaces)
{
  const TopoDS_Shape sphere = BRepPrimAPI_MakeSphere(5).Shape();
  OrvexPickShapeData data(sphere);
  EXPECT_EQ(data.GetKDTree(), nullptr);
  EXPECT_TRUE(data.GetTriangles().empty());
  data.Initialize();
  TopLoc_Location location;
  const auto mesh = BRep_Tool::Triangulation(
    TopoDS::Face(TopExp_Explorer(sphere, TopAbs_FACE).Current()), location);
  ASSERT_FALSE(mesh.IsNull());
  EXPECT_EQ(data.GetTriangles().size(), static_cast<std::size_t>(mesh->NbTriangles()));
  EXPECT_TRUE(data.GetShape().IsEqual(sphere));
}

TEST(TriangulationPicker, ShapesWithoutTrianglesAreMissed)
{
  TopoDS_Compound empty;
  BRep_Builder().MakeCompound(empty);
  TopoDS_Face bare;
  BRep_Builder().MakeFace(bare);
  for (TopoDS_Shape shape : {TopoDS_Shape(), TopoDS_Shape(empty), TopoDS_Shape(bare),
                             BRepBuilderAPI_MakeVertex(gp_Pnt(0, 0, 0)).Shape(),
                             BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY())).Shape()})
    ExpectMiss(Picker().Pick(shape, {0, 0, 5}, gp::DZ().Reversed()));
  TopoDS_Shape cube = Cube();
  ExpectMiss(Picker().Pick(cube, {std::nan(""), 0, 5}, gp::DZ()));
}

TEST(TriangulationPicker, LogsEachPickOnlyWhileDetailIsWanted)
{
  OrvexDebugLogFile* log = OrvexDebugLogFile::GetInstance();
  TopoDS_Shape cube = Cube();
  const std::size_t before = log->Lines().size();
  log->SetWantsDetail(false);
  Picker().Pick(cube, {3, 4, 20}, gp::DZ().Reversed());
  EXPECT_EQ(log->Lines().size(), before);
  const DetailedLog detailed;
  Picker().Pick(cube, {3, 4, 20}, gp::DZ().Reversed());
  Picker().Pick(cube, {30, 4, 20}, gp::DZ().Reversed());
  const std::vector<std::string> lines = log->Lines();
  ASSERT_EQ(lines.size(), before + 4);
  EXPECT_EQ(lines[before], "Start Pick(candidate trianglues number): 12");
  EXPECT_EQ(lines[before + 1].rfind("Picking time is (seconds): ", 0), 0U);
  EXPECT_EQ(lines[before + 2], "Start Pick(candidate trianglues number): 0");
}

} // namespace
