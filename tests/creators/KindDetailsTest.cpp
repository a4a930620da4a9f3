// What single kinds do in their own way: clamps, refusals, messages, thinning and reduction.

#include "creators/ArcShapeParaCreator.h"
#include "creators/BSplineShapeParaCreator.h"
#include "creators/BezierShapeParaCreator.h"
#include "creators/CircleShapeParaCreator.h"
#include "creators/ConeShapeParaCreator.h"
#include "creators/CylinderShapeParaCreator.h"
#include "creators/ExtrudeLoopParaCreator.h"
#include "creators/ExtrudeShapeParaCreator.h"
#include "creators/LineShapeParaCreator.h"
#include "creators/OrthPolygonShapeParaCreator.h"
#include "creators/RectangleShapeParaCreator.h"
#include "creators/RevolveShapeParaCreator.h"
#include "creators/ShapeParaCreatorTool.h"
#include "creators/SphereShapeParaCreator.h"
#include "creators/TorousShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "foundation/UserMessage.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRep_Tool.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <Poly_Triangulation.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

#include <memory>
#include <numbers>

using namespace OrvexTest;
using std::numbers::pi;

namespace {

class KindDetails : public testing::Test
{
protected:
  static TopoDS_Shape ShapeOn(const TDF_Label& label)
  {
    return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  }

  static TDF_Label Child(const TDF_Label& label, const char* name)
  {
    return Orvex::ChildByName(label, name);
  }

  static bool IsRegistered(const TDF_Label& label)
  {
    return ParametricFeatureManager::GetInstance().FindFeature(
             ParametricFeatureManager::MakeLabelKey(label)) != nullptr;
  }

  static std::size_t ShapeCount()
  {
    return ShapeLabelMgr::GetAllShapes().size();
  }

  // Messages shown to the user by the calls of `work`.
  template <typename Work>
  static std::vector<std::string> MessagesOf(Work&& work)
  {
    std::vector<std::string> shown;
    const auto earlier =
      Orvex::SetUserMessageHandler([&](const std::string& title, const std::string& text) {
        shown.push_back(title + "/" + text);
      });
    work();
    Orvex::SetUserMessageHandler(earlier);
    return shown;
  }

  static TopoDS_Face UnitSquare()
  {
    return BRepBuilderAPI_MakeFace(gp_Pln(), 0, 1, 0, 1);
  }

  TestDocument document{10};
};

TEST_F(KindDetails, SolidsAreBroughtIntoRangeByTheRebuildOnly)
{
  CylinderShapeParaCreator cylinder;
  TDF_Label label = cylinder.CreateCylinder(gp_Pnt(), gp_Dir(), 2, 3, 90);
  const auto rebuilt = [&](auto& creator, TDF_Label target, const char* name, double value) {
    Orvex::SetReal(Child(target, name), value);
    creator.UpdateShape(target);
    return VolumeOf(ShapeOn(target));
  };
  const double full = pi * 4 * 3;
  for (const double angle : {0.0, 400.0, std::nan("")})
    EXPECT_NEAR(rebuilt(cylinder, label, "Angle", angle), full, 1e-6) << angle;
  EXPECT_NEAR(rebuilt(cylinder, label, "Angle", -90), full / 4, 1e-6) << "absolute value";
  EXPECT_NEAR(rebuilt(cylinder, label, "Height", 0), full / 4 / 3 * 1e-6, 1e-12);

  ConeShapeParaCreator cone;
  gp_Dir up;
  double bottom = 1, top = 0, height = 3, turn = 360;
  TDF_Label coneLabel = cone.CreateCone(gp_Pnt(), up, bottom, top, height, turn);
  EXPECT_NEAR(rebuilt(cone, coneLabel, "Bottom Radius", 0), pi * 1e-12, 1e-14);
  EXPECT_NEAR(rebuilt(cone, coneLabel, "Bottom Radius", 2), pi * 4, 1e-6);
  EXPECT_NEAR(rebuilt(cone, coneLabel, "Top Radius", -5), pi * 4, 1e-6) << "negative is zero";

  SphereShapeParaCreator sphere;
  TDF_Label sphereLabel = sphere.CreateSphere(gp_Pnt(), 2, -90, 90, 360);
  const double half = 2.0 / 3 * pi * 8;
  EXPECT_NEAR(rebuilt(sphere, sphereLabel, "Angle1", 10), half, 1e-6);
  EXPECT_NEAR(rebuilt(sphere, sphereLabel, "Angle1", -200), 2 * half, 1e-6);
  EXPECT_NEAR(rebuilt(sphere, sphereLabel, "Angle2", -10), half, 1e-6);
}

TEST_F(KindDetails, CylinderFollowsReferencesForItsNumbersOnly)
{
  CylinderShapeParaCreator cylinder;
  TDF_Label label = cylinder.CreateCylinder(gp_Pnt(1, 2, 3), gp_Dir(), 2, 3, 360);
  Orvex::SetName(Child(label, "Height").FindChild(1), "10");
  Orvex::SetName(Child(label, "Base Point").FindChild(1), "10");
  gp_Pnt base;
  gp_Dir axis;
  double radius = 0, height = 0, angle = 0;
  cylinder.GetParameter(label, base, axis, radius, height, angle);
  EXPECT_EQ(height, 10);
  EXPECT_TRUE(base.IsEqual(gp_Pnt(1, 2, 3), 0));

  SphereShapeParaCreator sphere;
  TDF_Label ball = sphere.CreateSphere(gp_Pnt(), 2, -90, 90, 360);
  Orvex::SetName(Child(ball, "Radius").FindChild(1), "10");
  Orvex::SetReal(Child(ball, "Angle1"), -45);
  double a1 = 0, a2 = 0, a3 = 0;
  sphere.GetParameter(ball, base, radius, a1, a2, a3);
  EXPECT_EQ(radius, 2) << "a sphere reads what is stored";
  EXPECT_EQ(a1, -45);
}

TEST_F(KindDetails, TorusIsCheckedInOrderAndRefusedSilently)
{
  struct Case
  {
    double major, minor, a1, a2, a3;
    const char* text;
  };
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Case& c :
       {Case{0, 0, 9, 0, 0, "Torus major radius must be positive."},
        Case{nan, 1, 0, 180, 360, "Torus major radius must be positive."},
        Case{1, 0, 9, 0, 0, "Torus minor radius must be positive."},
        Case{10, 10, 9, 0, 0, "Torus major radius must be greater than minor radius."},
        Case{10, 1, 9, -1, 0, "Torus angle1 must be within [-180, 0]."},
        Case{10, 1, -180, 181, 0, "Torus angle2 must be within [0, 180]."},
        Case{10, 1, -180, 180, 0, "Torus angle3 must be within (0, 360]."}}) {
    std::string error;
    EXPECT_FALSE(
      TorousShapeParaCreator::ValidateParameters(c.major, c.minor, c.a1, c.a2, c.a3, &error));
    EXPECT_EQ(error, c.text);
    EXPECT_FALSE(
      TorousShapeParaCreator::ValidateParameters(c.major, c.minor, c.a1, c.a2, c.a3, nullptr));
  }
  EXPECT_TRUE(TorousShapeParaCreator::ValidateParameters(10, 1, 0, 180, 360, nullptr));

  TorousShapeParaCreator torus;
  double major = 10, minor = 10, a1 = -180, a2 = 180, a3 = 360;
  const int before = TarvelNameIndexMgr::GetGlobeIndex();
  const auto messages = MessagesOf(
    [&] { EXPECT_TRUE(torus.CreateTorous(gp_Pnt(), major, minor, a1, a2, a3).IsNull()); });
  EXPECT_TRUE(messages.empty());
  EXPECT_EQ(ShapeCount(), 0U);
  EXPECT_EQ(TarvelNameIndexMgr::GetGlobeIndex(), before + 1);

  minor = 2;
  TDF_Label label = torus.CreateTorous(gp_Pnt(), major, minor, a1, a2, a3);
  TopLoc_Location location;
  const auto face = TopoDS::Face(TopExp_Explorer(ShapeOn(label), TopAbs_FACE).Current());
  EXPECT_FALSE(BRep_Tool::Triangulation(face, location).IsNull()) << "a torus is born meshed";
  const TopoDS_Shape shape = ShapeOn(label);
  Orvex::SetReal(Child(label, "Radius"), 20);
  torus.UpdateShape(label);
  EXPECT_TRUE(ShapeOn(label).IsEqual(shape));
}

TEST_F(KindDetails, CurvesRefuseWhatTheyCannotBe)
{
  const int before = TarvelNameIndexMgr::GetGlobeIndex();
  gp_Pnt a(1, 1, 1), b(1, 1, 1 + 5e-7);
  std::vector<gp_Pnt> one{a}, twins{a, gp_Pnt(1, 1, 1 + 5e-8)};
  EXPECT_TRUE(LineShapeParaCreator().CreateLine(a, b).IsNull());
  EXPECT_TRUE(BezierShapeParaCreator().CreateBezier(one).IsNull());
  EXPECT_TRUE(BSplineShapeParaCreator().CreateBSpline(one).IsNull());
  EXPECT_TRUE(BSplineShapeParaCreator().CreateBSpline(twins).IsNull());
  EXPECT_TRUE(OrthPolygonShapeParaCreator().CreateOrthPolygon(a, gp_Pnt(), 0).IsNull());
  EXPECT_THROW(CircleShapeParaCreator().CreateCircle(a, -1), Standard_Failure);
  EXPECT_THROW(ArcShapeParaCreator().CreateArc(gp_Pnt(), gp_Pnt(1, 0, 0), gp_Pnt(2, 0, 0)),
               Standard_Failure);
  EXPECT_EQ(ShapeCount(), 0U);
  EXPECT_EQ(TarvelNameIndexMgr::GetGlobeIndex(), before + 1);

  gp_Pnt c(2, 1, 1);
  TDF_Label line = LineShapeParaCreator().CreateLine(a, c);
  const TopoDS_Shape shape = ShapeOn(line);
  Orvex::SetPoint(Child(line, "End Point"), a);
  LineShapeParaCreator().UpdateShape(line);
  EXPECT_TRUE(ShapeOn(line).IsEqual(shape));
}

TEST_F(KindDetails, APolygonTurnsItsFirstVertexAndDrawsNoNumber)
{
  OrthPolygonShapeParaCreator polygon;
  const int before = TarvelNameIndexMgr::GetGlobeIndex();
  const TDF_Label hexagon = polygon.CreateOrthPolygon(gp_Pnt(), gp_Pnt(3, 4, 7), 6);
  EXPECT_EQ(TarvelNameIndexMgr::GetGlobeIndex(), before + 1);
  EXPECT_TRUE(Orvex::HasName(hexagon, "Polygon"));
  const TopoDS_Shape opposite = BRepBuilderAPI_MakeVertex(gp_Pnt(-3, -4, 7)).Vertex();
  EXPECT_LT(BRepExtrema_DistShapeShape(ShapeOn(hexagon), opposite).Value(), 1e-7);
  int edges = 0;
  for (TopExp_Explorer edge(ShapeOn(hexagon), TopAbs_EDGE); edge.More(); edge.Next())
    ++edges;
  EXPECT_EQ(edges, 6);
}

TEST_F(KindDetails, InterpolationThinsOutButStoresThePointsAsGiven)
{
  std::vector<gp_Pnt> points{gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 1e-8), gp_Pnt(3, 4, 0)};
  BSplineShapeParaCreator spline;
  TDF_Label label = spline.CreateBSpline(points);
  EXPECT_NEAR(LengthOf(ShapeOn(label)), 5, 1e-6);
  std::vector<gp_Pnt> read;
  spline.GetParameter(label, read);
  ASSERT_EQ(read.size(), 3U);
  EXPECT_TRUE(read[1].IsEqual(points[1], 0));

  const TDF_Label list = Child(label, "ControlPoints");
  EXPECT_TRUE(list.IsAttribute(TDataStd_BooleanList::GetID()));
  EXPECT_TRUE(Orvex::HasName(list.FindChild(2), "CtrlPt_2"));
  std::vector<gp_Pnt> shorter{gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)};
  spline.SetShapeParameter(label, shorter);
  EXPECT_FALSE(list.FindChild(3, false).HasAttribute());
  spline.GetParameter(label, read);
  EXPECT_EQ(read.size(), 2U);
  spline.UpdateShape(label);
  EXPECT_NEAR(LengthOf(ShapeOn(label)), 1, 1e-6);

  const auto* feature = ParametricFeatureManager::GetInstance().FindFeature(
    ParametricFeatureManager::MakeLabelKey(label));
  ASSERT_NE(feature, nullptr);
  EXPECT_EQ(feature->paramLabels.count("CtrlPt_3"), 1U);
}

TEST_F(KindDetails, ReducedSplinesStayCloseAndAreNoFeature)
{
  std::vector<gp_Pnt> points;
  for (int i = 0; i <= 40; ++i)
    points.emplace_back(i * 0.25, std::sin(i * 0.25), 0);
  BSplineShapeParaCreator spline;
  const auto curveOn = [&](const TDF_Label& label) {
    double first = 0, last = 0;
    return Handle(Geom_BSplineCurve)::DownCast(
      BRep_Tool::Curve(TopoDS::Edge(ShapeOn(label)), first, last));
  };
  TDF_Label reduced = spline.CreateBSplineEx(points, 2, false);
  EXPECT_FALSE(IsRegistered(reduced));
  EXPECT_LT(curveOn(reduced)->NbKnots(), 41);
  for (const gp_Pnt& point : points) {
    const TopoDS_Shape vertex = BRepBuilderAPI_MakeVertex(point).Vertex();
    EXPECT_LT(BRepExtrema_DistShapeShape(ShapeOn(reduced), vertex).Value(), 0.05);
  }
  spline.UpdateShape(reduced);
  EXPECT_EQ(curveOn(reduced)->NbKnots(), 41) << "a rebuild is an ordinary interpolation";

  const TDF_Label plain = spline.CreateBSplineEx(points, 1, true);
  EXPECT_TRUE(IsRegistered(plain));
  EXPECT_FALSE(curveOn(plain)->IsPeriodic());
  points.push_back(points.front());
  points.back().SetY(5);
  EXPECT_TRUE(curveOn(spline.CreateBSplineEx(points, 2, true))->IsPeriodic());
  // Equal neighbours cannot be interpolated: the fall-back leaves them out.
  points.push_back(points.back());
  EXPECT_TRUE(IsRegistered(spline.CreateBSplineEx(points, 2, false)));
}

TEST_F(KindDetails, ExtrudeScalesTheCallersVectorAndKeepsItsSource)
{
  ExtrudeShapeParaCreator extrude;
  gp_Vec vector(0, 0, 5);
  double length = 2;
  const TopoDS_Shape source = UnitSquare();
  const TDF_Label sourceLabel =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), source);
  TDF_Label label = extrude.CreateExtrude(source, vector, length);
  EXPECT_NEAR(vector.Magnitude(), 2, 1e-12);
  EXPECT_NEAR(VolumeOf(ShapeOn(label)), 2, 1e-9);
  EXPECT_TRUE(ShapeLabelMgr::GetInstance()->GetShapeLabel(source).IsEqual(sourceLabel));

  TDF_Label gone = sourceLabel;
  ShapeLabelMgr::GetInstance()->RemoveShapeByLabel(gone);
  Orvex::SetReal(Child(label, "Length"), 7);
  extrude.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(ShapeOn(label)), 7, 1e-9);

  gp_Vec none;
  EXPECT_THROW(extrude.CreateExtrude(source, none, length), Standard_Failure);
  EXPECT_TRUE(extrude.CreateExtrude(TopoDS_Shape(), vector, length).IsNull());
}

TEST_F(KindDetails, TheParameterThatHoldsASourceIsNoLabelOfAShape)
{
  auto* registry = ShapeLabelMgr::GetInstance();
  ExtrudeShapeParaCreator extrude;
  gp_Vec up(0, 0, 1);
  double length = 2;
  TopoDS_Shape source = UnitSquare(); // not registered; the prism shares it as its base
  TDF_Label label = extrude.CreateExtrude(source, up, length);
  std::string name = "base";
  EXPECT_FALSE(registry->SetShapeName(&source, name));
  EXPECT_TRUE(registry->GetShapeLabel(source).IsNull());
  EXPECT_TRUE(registry->GetShapeLabelWithFace(source).IsNull());
  EXPECT_TRUE(registry->GetSubShapeByTag(label.Tag(), 11).IsNull());
  ShapeLabelMgr::SubShapeMap tree;
  registry->GetSubshapWithcursive(label, tree);
  EXPECT_TRUE(tree[ShapeOn(label).TShape()].empty());
  Orvex::SetReal(Child(label, "Length"), 7);
  extrude.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(ShapeOn(label)), 7, 1e-9);
}

TEST_F(KindDetails, ANullLabelIsNoShapeOfAnyKind)
{
  TDF_Label null;
  for (const Orvex::ShapeKind* kind : Orvex::ShapeKinds()) {
    const std::unique_ptr<KindShapeParaCreator> creator(kind->make());
    creator->UpdateShape(null);
    creator->PerformTransform(null, gp_Trsf());
    EXPECT_TRUE(creator->PerformClone(null, gp_Trsf()).IsNull()) << kind->word;
    creator->StoreParameters(null, creator->ReadParameters(null));
  }
  EXPECT_EQ(ShapeCount(), 0U);
}

TEST_F(KindDetails, SweepsTellTheUserOfANegativeValueAndKeepTheOldOne)
{
  TopoDS_Shape source = UnitSquare();
  gp_Vec up(0, 0, 1);
  gp_Dir dir(0, 0, 1), axis(0, 1, 0);
  gp_Pnt away(-1, 0, 0);
  double length = 2, angle = pi, bad = -1;
  ExtrudeShapeParaCreator extrude;
  RevolveShapeParaCreator revolve;
  ExtrudeLoopParaCreator loop;
  TopoDS_Face face = UnitSquare();
  TDF_Label extruded = extrude.CreateExtrude(source, up, length);
  TDF_Label revolved = revolve.CreateRevolve(source, away, axis, angle);
  TDF_Label looped = loop.CreateExtrudeByLoop(face, dir, length);
  EXPECT_NEAR(VolumeOf(ShapeOn(revolved)), pi * 1.5, 1e-6) << "half a turn";
  const auto messages = MessagesOf([&] {
    extrude.SetShapeParameter(extruded, source, up, bad);
    revolve.SetShapeParameter(revolved, source, away, axis, bad);
    loop.SetShapeParameter(looped, face, dir, bad);
  });
  EXPECT_EQ(messages, std::vector<std::string>(3, "Error/Negative Value"));
  EXPECT_EQ(Orvex::RealOf(Child(extruded, "Length")), 2.0);
  EXPECT_EQ(Orvex::RealOf(Child(revolved, "Angle")), pi);
  EXPECT_EQ(Orvex::RealOf(Child(looped, "Length")), 2.0);
}

TEST_F(KindDetails, TheExtrudeOfAFaceTellsOfAMissingFaceAndIsNoFeature)
{
  ExtrudeLoopParaCreator loop;
  TDF_Label label = loop.CreateExtrudeByLoop(UnitSquare(), gp_Dir(0, 0, 1), 2);
  EXPECT_FALSE(IsRegistered(label));
  EXPECT_EQ(Orvex::ValidTypeOf(label), 23);
  const auto messages = MessagesOf([&] {
    EXPECT_TRUE(loop.CreateExtrudeByLoop(TopoDS_Face(), gp_Dir(), 2).IsNull());
    Child(label, "Extrude").ForgetAllAttributes();
    Orvex::SetName(label.FindChild(11), "Extrude");
    loop.UpdateShape(label);
  });
  EXPECT_EQ(messages, std::vector<std::string>(2, "Error/extrude face is NULL"));
  EXPECT_NEAR(VolumeOf(ShapeOn(label)), 2, 1e-9);
}

} // namespace
