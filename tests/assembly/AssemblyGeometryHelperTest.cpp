#include "assembly/AssemblyGeometryHelper.h"

#include "assembly/AssemblyConstraintSolver.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <gp_Quaternion.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace AssemblyGeometryHelper;
using namespace OrvexTest;

namespace {

gp_Trsf RandomPlacement(Random& random)
{
  const gp_Dir axis(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1) + 2);
  gp_Trsf turn, shift;
  turn.SetRotation(gp_Ax1(gp_Pnt(), axis), random.Real(0, 2 * M_PI));
  shift.SetTranslation(gp_Vec(random.Real(-50, 50), random.Real(-50, 50), random.Real(-50, 50)));
  return shift * turn;
}

class Mates : public testing::Test
{
protected:
  // A reference to a face of a new part, placed anywhere.
  std::string FaceOf(TopoDS_Shape part, int number, const gp_Trsf& placement = gp_Trsf())
  {
    part = BRepBuilderAPI_Transform(part, placement, true).Shape();
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), part);
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(part, TopAbs_FACE, faces);
    EXPECT_FALSE(ShapeLabelMgr::GetInstance()->RegisterSubShape(faces(number)).IsNull());
    return EncodeRefGeom(faces(number));
  }

  std::string BoxFace(int number, const gp_Trsf& placement = gp_Trsf())
  {
    return FaceOf(BRepPrimAPI_MakeBox(10, 20, 30).Shape(), number, placement);
  }

  std::string Wall(const gp_Trsf& placement = gp_Trsf())
  {
    return FaceOf(BRepPrimAPI_MakeCylinder(4, 9).Shape(), 1, placement);
  }

  static gp_Dir NormalOf(const std::string& reference)
  {
    gp_Pln plane;
    EXPECT_TRUE(GetFacePlane(reference, plane));
    return plane.Axis().Direction();
  }

  TestDocument document;
};

void ExpectRigid(const gp_Trsf& motion)
{
  EXPECT_NEAR(motion.ScaleFactor(), 1, 1e-12);
  EXPECT_NEAR(gp_Mat(motion.HVectorialPart()).Determinant(), 1, 1e-9);
}

// Degrees between the normals after a motion of b.
double AngleAfter(const gp_Dir& a, const gp_Dir& b, const gp_Trsf& motion)
{
  return a.Angle(b.Transformed(motion)) * 180 / M_PI;
}

} // namespace

TEST_F(Mates, ReferencesNameFacesThatAreRegistered)
{
  document.Doc()->SetUndoLimit(10);
  TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
  const TDF_Label label =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), box);
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(box, TopAbs_FACE, faces);
  EXPECT_EQ(EncodeRefGeom(faces(2)), "") << "not registered yet";
  const TDF_Label sub = ShapeLabelMgr::GetInstance()->RegisterSubShape(faces(2));
  EXPECT_GT(sub.Tag(), Orvex::kFeatureMetaTag);
  EXPECT_TRUE(ShapeLabelMgr::GetInstance()->RegisterSubShape(faces(2)).IsEqual(sub));
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 1);
  const std::string reference = EncodeRefGeom(faces(2));
  EXPECT_EQ(reference, std::to_string(label.Tag()) + ':' + std::to_string(sub.Tag()));
  EXPECT_TRUE(DecodeRefGeom(reference).IsSame(faces(2)));
  EXPECT_EQ(GetFaceCenter(reference).Distance(gp_Pnt(10, 10, 15)) < 1e-6, true);

  EXPECT_EQ(EncodeRefGeom({}), "");
  EXPECT_EQ(EncodeRefGeom(box), "") << "no face";
  EXPECT_TRUE(ShapeLabelMgr::GetInstance()->RegisterSubShape({}).IsNull());
  EXPECT_TRUE(
    ShapeLabelMgr::GetInstance()->RegisterSubShape(BRepPrimAPI_MakeBox(1, 1, 1).Solid()).IsNull());
  for (const char* wrong : {"", "12", ":", "x:y", "1:", "99999999999:1", "1:99999"}) {
    EXPECT_TRUE(DecodeRefGeom(wrong).IsNull()) << wrong;
    EXPECT_EQ(GetFaceCenter(wrong).Distance(gp_Pnt()), 0) << wrong;
    gp_Trsf motion;
    gp_Vec translation;
    double distance = 0;
    EXPECT_FALSE(ComputeCoincidentTransform(reference, wrong, motion));
    EXPECT_FALSE(ComputeCoincidentTransform(wrong, reference, motion));
    EXPECT_FALSE(ComputeConcentricTransform(wrong, wrong, motion));
    EXPECT_FALSE(ComputeParallelTransform(reference, wrong, motion));
    EXPECT_FALSE(ComputeAngleTransform(wrong, reference, 30, motion));
    EXPECT_FALSE(ComputeDistanceTranslation(reference, wrong, 1, translation));
    EXPECT_FALSE(ComputePlanePlaneDist(reference, wrong, distance));
  }
}

// Directions that are the same or opposite to the last bit, and none of an axis.
TEST_F(Mates, PartsTurnedAlikeMate)
{
  for (int i = 1; i <= 12; ++i) {
    gp_Trsf turn;
    turn.SetRotation(gp_Ax1(gp_Pnt(), gp_Dir(i % 3, i % 4, i % 5 + 1)), M_PI / 4 * i);
    gp_Trsf away;
    away.SetTranslation(gp_Vec(40, 7, i));
    for (int face = 1; face <= 6; ++face) {
      const std::string a = BoxFace(face, turn), b = BoxFace(1 + face % 6, away * turn);
      const gp_Dir normalA = NormalOf(a), normalB = NormalOf(b);
      gp_Trsf motion;
      ASSERT_TRUE(ComputeCoincidentTransform(a, b, motion));
      ExpectRigid(motion);
      EXPECT_NEAR(AngleAfter(normalA, normalB, motion), 180, 1e-9);
      EXPECT_LT(GetFaceCenter(b).Transformed(motion).Distance(GetFaceCenter(a)), 1e-9);
    }
    const std::string wall = Wall(turn), other = Wall(away * turn);
    gp_Trsf motion;
    ASSERT_TRUE(ComputeConcentricTransform(wall, other, motion));
    EXPECT_TRUE(motion.GetRotation().IsEqual(gp_Quaternion())) << "nothing is turned";
  }
}

TEST_F(Mates, RandomPairsMateAfterTheMotion)
{
  Random random(Seed());
  for (int i = 0; i < 40; ++i) {
    SCOPED_TRACE(SeedNote());
    const std::string a = BoxFace(1 + random.Index(6), RandomPlacement(random));
    const std::string b = BoxFace(1 + random.Index(6), RandomPlacement(random));
    const gp_Dir normalA = NormalOf(a), normalB = NormalOf(b);
    gp_Trsf motion;
    ASSERT_TRUE(ComputeCoincidentTransform(a, b, motion));
    ExpectRigid(motion);
    EXPECT_NEAR(AngleAfter(normalA, normalB, motion), 180, 1e-9);
    EXPECT_LT(GetFaceCenter(b).Transformed(motion).Distance(GetFaceCenter(a)), 1e-9);

    ASSERT_TRUE(ComputeParallelTransform(a, b, motion));
    ExpectRigid(motion);
    const double before = normalA.Angle(normalB) * 180 / M_PI;
    EXPECT_NEAR(AngleAfter(normalA, normalB, motion), before <= 90 ? 0 : 180, 1e-6);
    EXPECT_LT(GetFaceCenter(b).Transformed(motion).Distance(GetFaceCenter(b)), 1e-9);

    const double wanted = random.Real(0, 180);
    ASSERT_TRUE(ComputeAngleTransform(a, b, wanted, motion));
    EXPECT_NEAR(AngleAfter(normalA, normalB, motion), wanted, 1e-6);

    gp_Vec translation;
    ASSERT_TRUE(ComputeDistanceTranslation(a, b, 7, translation));
    const auto side = [&](const gp_Pnt& point) {
      return gp_Vec(GetFaceCenter(a), point) * gp_Vec(normalA);
    };
    const double now = side(GetFaceCenter(b));
    EXPECT_NEAR(side(GetFaceCenter(b).Translated(translation)), now >= 0 ? 7 : -7, 1e-9);
    double distance = 0;
    ASSERT_TRUE(ComputePlanePlaneDist(a, b, distance));
    EXPECT_NEAR(distance, std::abs(now), 1e-12);

    const std::string wallA = Wall(RandomPlacement(random)), wallB = Wall(RandomPlacement(random));
    gp_Ax1 axisA, axisB;
    ASSERT_TRUE(GetCylinderAxis(wallA, axisA) && GetCylinderAxis(wallB, axisB));
    ASSERT_TRUE(ComputeConcentricTransform(wallA, wallB, motion));
    ExpectRigid(motion);
    const gp_Ax1 moved = axisB.Transformed(motion);
    EXPECT_TRUE(moved.IsParallel(axisA, 1e-9));
    EXPECT_LT(gp_Lin(axisA).Distance(moved.Location()), 1e-9);
    EXPECT_GE(moved.Direction() * axisB.Direction(), -1e-9) << "the smaller turn";
  }
}

TEST_F(Mates, ParallelAndOppositeFacesNeedNoAxis)
{
  gp_Trsf away, flipped;
  away.SetTranslation(gp_Vec(100, 3, 5));
  flipped.SetRotation(gp_Ax1(gp_Pnt(), gp::DX()), M_PI);
  const std::string a = BoxFace(6), same = BoxFace(6, away), opposite = BoxFace(6, flipped);
  gp_Trsf motion;
  ASSERT_TRUE(ComputeCoincidentTransform(a, same, motion));
  EXPECT_NEAR(AngleAfter(NormalOf(a), NormalOf(same), motion), 180, 1e-9) << "a half turn";
  EXPECT_LT(GetFaceCenter(same).Transformed(motion).Distance(GetFaceCenter(a)), 1e-9);
  ASSERT_TRUE(ComputeCoincidentTransform(a, opposite, motion));
  EXPECT_EQ(motion.Form(), gp_Translation);
  for (const std::string& other : {same, opposite}) {
    ASSERT_TRUE(ComputeParallelTransform(a, other, motion));
    EXPECT_EQ(motion.Form(), gp_Identity);
  }
  EXPECT_TRUE(ComputeAngleTransform(a, same, 0, motion));
  EXPECT_FALSE(ComputeAngleTransform(a, same, 90, motion));
  EXPECT_EQ(motion.Form(), gp_Identity);
  const std::string wall = Wall(), turned = Wall(flipped);
  ASSERT_TRUE(ComputeConcentricTransform(wall, turned, motion));
  EXPECT_NEAR(motion.GetRotation().GetRotationAngle(), 0, 1e-9);
  EXPECT_FALSE(ComputeConcentricTransform(a, wall, motion)) << "a plane";
  EXPECT_FALSE(ComputeCoincidentTransform(a, wall, motion)) << "a cylinder";
  // The second partner of a distance may be of any kind.
  gp_Vec translation;
  EXPECT_TRUE(ComputeDistanceTranslation(a, wall, 5, translation));
}

TEST(AssemblyConstraints, IdsAreMadeForThoseWithout)
{
  AssemblyConstraintSolver& solver = AssemblyConstraintSolver::GetInstance();
  EXPECT_TRUE(solver.Solve());
  AssemblyConstraint named;
  named.id = "mine";
  named.value = 5;
  EXPECT_EQ(solver.AddConstraint({}), "ac_1");
  EXPECT_EQ(solver.AddConstraint(named), "mine");
  EXPECT_EQ(solver.AddConstraint(named), "mine");
  EXPECT_EQ(solver.AddConstraint({}), "ac_2");
  EXPECT_EQ(solver.GetConstraints().size(), 4U);
  EXPECT_FALSE(solver.RemoveConstraint("nobody"));
  EXPECT_TRUE(solver.RemoveConstraint(solver.GetConstraints()[1].id)) << "both, by the id of one";
  EXPECT_EQ(solver.GetConstraints().size(), 2U);
  EXPECT_TRUE(solver.Solve());
  solver.Clear();
  EXPECT_TRUE(solver.GetConstraints().empty());
  EXPECT_EQ(solver.AddConstraint({}), "ac_1");
}
