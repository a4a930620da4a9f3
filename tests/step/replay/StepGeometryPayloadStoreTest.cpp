#include "step/replay/StepGeometryPayloadStore.h"

#include "step/replay/StepReplayIRBuilder.h"
#include "step/replay/internal/JsonNumber.h"
#include "support/Random.h"
#include "support/ReplayShapes.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <TopExp.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Elips.hxx>
#include <gp_Pln.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <sstream>

using namespace Orvex;
using namespace OrvexTest;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

namespace {

MATCHER(Near, "")
{
  return std::abs(std::get<0>(arg) - std::get<1>(arg)) < 1e-9;
}

QJsonObject Parsed(const std::string& json)
{
  return QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
}

ReplaySurfacePayload OnlySurface(const TopoDS_Shape& face)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(face);
  ReplaySurfacePayload surface;
  EXPECT_TRUE(store.ExpandSurfacePayload(1, surface));
  return surface;
}

ReplayCurvePayload OnlyCurve(const TopoDS_Shape& edge)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(edge);
  ReplayCurvePayload curve;
  EXPECT_TRUE(store.ExpandCurvePayload(1, curve));
  return curve;
}

// The keys of an object as they stand in the text.
std::vector<std::string> KeysOf(const std::string& json)
{
  std::vector<std::string> keys;
  int depth = 0;
  for (std::size_t i = 0; i < json.size(); ++i) {
    depth += json[i] == '{' || json[i] == '[';
    depth -= json[i] == '}' || json[i] == ']';
    if (json[i] != '"')
      continue;
    const std::size_t end = json.find('"', i + 1);
    if (depth == 1 && json[end + 1] == ':')
      keys.push_back(json.substr(i + 1, end - i - 1));
    i = end;
  }
  return keys;
}

} // namespace

TEST(PayloadStore, CurvesCarryTheirKindAndItsNumbers)
{
  const gp_Ax2 frame(gp_Pnt(1, 2, 3), gp_Dir(0, 1, 0), gp_Dir(0, 0, 1));
  const auto line = OnlyCurve(BRepBuilderAPI_MakeEdge(gp_Pnt(1, 1, 1), gp_Pnt(4, 5, 1)).Edge());
  EXPECT_EQ(line.kind, "line");
  EXPECT_EQ(line.degree, -1);
  EXPECT_THAT(line.analyticParameters, Pointwise(Near(), {1.0, 1.0, 1.0, 4.0, 5.0, 1.0}));
  const auto circle = OnlyCurve(BRepBuilderAPI_MakeEdge(gp_Circ(frame, 2), 0.5, 1.5).Edge());
  EXPECT_EQ(circle.kind, "circle");
  EXPECT_THAT(circle.analyticParameters,
              Pointwise(Near(), {1.0, 2.0, 3.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 2.0, 0.5, 1.5}));
  const auto ellipse = OnlyCurve(BRepBuilderAPI_MakeEdge(gp_Elips(frame, 3, 2)).Edge());
  EXPECT_EQ(ellipse.kind, "ellipse");
  EXPECT_THAT(ellipse.analyticParameters, Pointwise(Near(), {1.0, 2.0, 3.0, 0.0, 1.0, 0.0, 0.0, 0.0,
                                                             1.0, 3.0, 2.0, 0.0, 2 * M_PI}));
  const auto bezier = OnlyCurve(BezierEdge({1, 2, 1}));
  EXPECT_EQ(bezier.kind, "bezier_curve");
  EXPECT_EQ(bezier.degree, 2);
  EXPECT_EQ(bezier.controlPoints.size(), 3U);
  EXPECT_THAT(bezier.weights, ElementsAre(1, 2, 1));
  EXPECT_TRUE(bezier.knots.empty() && bezier.analyticParameters.empty());
  const auto spline = OnlyCurve(SplineEdge());
  EXPECT_EQ(spline.kind, "b_spline_curve");
  EXPECT_EQ(spline.degree, 2);
  EXPECT_EQ(spline.controlPoints.size(), 4U);
  EXPECT_THAT(spline.knots, ElementsAre(0, 0.5, 1));
  EXPECT_THAT(spline.multiplicities, ElementsAre(3, 1, 3));
  EXPECT_TRUE(spline.weights.empty());
}

TEST(PayloadStore, SurfacesCarryTheirKindAndItsNumbers)
{
  struct Case
  {
    TopoDS_Face face;
    const char* kind;
    std::vector<double> analytic;
  };
  const gp_Ax3 frame(gp_Pnt(1, 2, 3), gp_Dir(0, 1, 0), gp_Dir(0, 0, 1));
  const std::vector<double> place = {1, 2, 3, 0, 1, 0, 0, 0, 1};
  const auto with = [&](std::vector<double> sizes) {
    sizes.insert(sizes.begin(), place.begin(), place.end());
    return sizes;
  };
  const Case cases[] = {
    {FaceOn(new Geom_Plane(gp_Pln(frame))), "plane", {1, 2, 3, 0, 1, 0}},
    {FaceOn(new Geom_CylindricalSurface(frame, 4)), "cylinder_surface", with({4})},
    {FaceOn(new Geom_ConicalSurface(frame, 0.25, 4)), "cone_surface", with({4, 0.25})},
    {FaceOn(new Geom_SphericalSurface(frame, 4)), "sphere", with({4})},
    {FaceOn(new Geom_ToroidalSurface(frame, 4, 1)), "torus_surface", with({4, 1})},
    {RevolvedSpline(), "surface_of_revolution", {0, 0, 0, 0, 0, 1}},
    {ExtrudedSpline(), "surface_of_extrusion", {0, 0, 1}},
    {OffsetFace(), "other_surface", {}},
  };
  for (const Case& expected : cases) {
    const ReplaySurfacePayload surface = OnlySurface(expected.face);
    EXPECT_EQ(surface.kind, expected.kind);
    EXPECT_THAT(surface.analyticParameters, Pointwise(Near(), expected.analytic)) << surface.kind;
    const bool swept = expected.face.IsSame(cases[5].face) || expected.face.IsSame(cases[6].face);
    EXPECT_EQ(surface.hasBasisCurve, swept) << surface.kind;
    EXPECT_EQ(surface.basisCurve.kind, swept ? "b_spline_curve" : "") << surface.kind;
    EXPECT_EQ(surface.basisCurve.id, swept ? 1U : 0U);
    double u1 = 0, u2 = 0, v1 = 0, v2 = 0;
    BRepTools::UVBounds(expected.face, u1, u2, v1, v2);
    EXPECT_EQ((std::vector{surface.uMin, surface.uMax, surface.vMin, surface.vMax}),
              (std::vector{u1, u2, v1, v2}))
      << surface.kind;
  }
}

TEST(PayloadStore, SplineSurfacesRunAlongVInsideOfU)
{
  const ReplaySurfacePayload rational = OnlySurface(SplineFace(true));
  EXPECT_EQ(rational.kind, "b_spline_surface");
  EXPECT_EQ((std::vector{rational.degreeU, rational.degreeV}), (std::vector{1, 2}));
  EXPECT_EQ((std::vector{rational.poleRows, rational.poleCols}), (std::vector{2, 4}));
  ASSERT_EQ(rational.controlPoints.size(), 8U);
  ASSERT_EQ(rational.weights.size(), 8U);
  // SplineFace puts the pole of row i and column j at (i, j, i * j) with the weight 1 + i * j.
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 4; ++j) {
      const auto at = static_cast<std::size_t>(4 * i + j);
      EXPECT_EQ(rational.controlPoints[at].x, i);
      EXPECT_EQ(rational.controlPoints[at].y, j);
      EXPECT_EQ(rational.weights[at], 1 + i * j);
    }
  EXPECT_THAT(rational.uKnots, ElementsAre(0, 1));
  EXPECT_THAT(rational.uMultiplicities, ElementsAre(2, 2));
  EXPECT_THAT(rational.vKnots, ElementsAre(0, 0.5, 1));
  EXPECT_THAT(rational.vMultiplicities, ElementsAre(3, 1, 3));
  EXPECT_TRUE(OnlySurface(SplineFace(false)).weights.empty());
  EXPECT_TRUE(OnlySurface(BezierFace()).weights.empty());
}

// The wall of a cylinder: two circles and the seam, each way.
TEST(PayloadStore, ASeamIsTwoCoedgesWithTwoCurvesEach)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(CylinderSolid());
  ReplayFacePayload wall;
  ASSERT_TRUE(store.ExpandFacePayload(1, wall));
  EXPECT_EQ(wall.surface.kind, "cylinder_surface");
  ASSERT_EQ(wall.trim.loops.size(), 1U);
  EXPECT_TRUE(wall.trim.loops[0].isOuter);
  const auto& coedges = wall.trim.loops[0].coedges;
  ASSERT_EQ(coedges.size(), 4U);
  std::vector<bool> seamWays;
  std::vector<double> seamPlaces, secondaryPlaces;
  for (const ReplayCoedgePayload& coedge : coedges) {
    EXPECT_EQ(coedge.curve3d.kind, coedge.isSeam ? "line" : "circle");
    EXPECT_EQ(coedge.curve3d.id, coedge.edgeId);
    EXPECT_EQ(coedge.pcurve.analyticParameters.size(), 4U);
    EXPECT_EQ(coedge.hasSecondaryPcurve, coedge.isSeam);
    EXPECT_TRUE(coedge.hasStartVertexPoint && coedge.hasEndVertexPoint);
    EXPECT_TRUE(coedge.hasStartVertexUv && coedge.hasEndVertexUv);
    EXPECT_EQ(coedge.startVertexId == coedge.endVertexId, !coedge.isSeam);
    if (coedge.isSeam) {
      seamWays.push_back(coedge.orientation);
      seamPlaces.push_back(coedge.pcurve.analyticParameters[0]);
      secondaryPlaces.push_back(coedge.secondaryPcurve.analyticParameters[0]);
    }
  }
  ASSERT_EQ(seamPlaces.size(), 2U);
  EXPECT_NEAR(std::abs(seamPlaces[0] - seamPlaces[1]), 2 * M_PI, 1e-9);
  EXPECT_EQ(secondaryPlaces[0], secondaryPlaces[1]) << "that of the edge, whichever way";
  EXPECT_THAT(seamWays, testing::UnorderedElementsAre(true, false));
}

// Where vertices lie is what the kernel says, vertex by vertex.
TEST(PayloadStore, PlacesOfVerticesAreTheKernels)
{
  for (const TopoDS_Shape& shape : GoldenShapes()) {
    StepGeometryPayloadStore store;
    store.BuildIndex(shape);
    TopTools_IndexedMapOfShape faces, vertices;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    TopExp::MapShapes(shape, TopAbs_VERTEX, vertices);
    for (int face = 1; face <= faces.Extent(); ++face) {
      ReplayFaceTrimPayload trim;
      ASSERT_TRUE(store.ExpandFaceTrimPayload(static_cast<ReplayId>(face), trim));
      for (const ReplayLoopPayload& loop : trim.loops)
        for (const ReplayCoedgePayload& coedge : loop.coedges) {
          ASSERT_TRUE(coedge.hasStartVertexUv);
          const gp_Pnt2d place =
            BRep_Tool::Parameters(TopoDS::Vertex(vertices(static_cast<int>(coedge.startVertexId))),
                                  TopoDS::Face(faces(face)));
          EXPECT_EQ(coedge.startVertexUv.u, place.X());
          EXPECT_EQ(coedge.startVertexUv.v, place.Y());
        }
    }
  }
}

TEST(PayloadStore, SolidsHoldTheirShellsAndTheKernelsText)
{
  const TopoDS_Shape box = BoxSolid();
  StepGeometryPayloadStore store;
  store.BuildIndex(box);
  ReplaySolidPayload solid;
  ASSERT_TRUE(store.ExpandSolidPayload(1, solid));
  std::ostringstream text;
  BRepTools::Write(box, text, true, false, TopTools_FormatVersion_VERSION_3);
  EXPECT_EQ(solid.exactBrep, text.str());
  ASSERT_EQ(solid.shells.size(), 1U);
  EXPECT_TRUE(solid.shells[0].isClosed);
  ASSERT_EQ(solid.shells[0].faces.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(solid.shells[0].faces[i].faceId, i + 1);
}

TEST(PayloadStore, JsonHasEveryKeyInOrderAndSixDigits)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(CylinderSolid(1.0 / 3));
  EXPECT_THAT(KeysOf(store.ExpandCurvePayloadJson(1)),
              ElementsAre("id", "kind", "degree", "firstParameter", "lastParameter",
                          "controlPoints", "knots", "multiplicities", "weights",
                          "analyticParameters"));
  EXPECT_THAT(KeysOf(store.ExpandSurfacePayloadJson(1)),
              ElementsAre("id", "kind", "degreeU", "degreeV", "uMin", "uMax", "vMin", "vMax",
                          "poleRows", "poleCols", "controlPoints", "uKnots", "vKnots",
                          "uMultiplicities", "vMultiplicities", "weights", "analyticParameters",
                          "hasBasisCurve", "basisCurve"));
  EXPECT_THAT(
    KeysOf(store.ExpandFaceTrimPayloadJson(1)),
    ElementsAre("faceId", "surfaceId", "sameSense", "uMin", "uMax", "vMin", "vMax", "loops"));
  EXPECT_THAT(KeysOf(store.ExpandFacePayloadJson(1)), ElementsAre("faceId", "surface", "trim"));
  EXPECT_THAT(KeysOf(store.ExpandShellPayloadJson(1)), ElementsAre("shellId", "isClosed", "faces"));
  EXPECT_THAT(KeysOf(store.ExpandSolidPayloadJson(1)),
              ElementsAre("solidId", "exactBrep", "shells"));
  const std::string coedge = store.ExpandFacePayloadJson(1);
  EXPECT_NE(coedge.find("\"kind\":\"cylinder_surface\",\"degreeU\":-1,\"degreeV\":-1,\"uMin\":0,"
                        "\"uMax\":6.28319,"),
            std::string::npos);
  EXPECT_NE(coedge.find("0.333333]"), std::string::npos);
  EXPECT_NE(coedge.find("\"basisCurve\":{}}"), std::string::npos);
  EXPECT_NE(coedge.find("\"secondaryPcurve\":{\"kind\":\"\",\"degree\":-1,\"firstParameter\":0,"
                        "\"lastParameter\":0,\"controlPoints\":[],\"knots\":[],"
                        "\"multiplicities\":[],\"weights\":[],\"analyticParameters\":[]}}"),
            std::string::npos);
}

// A text is the same whether its parts are in the caches already or not, and parses.
TEST(PayloadStore, JsonIsTheSameWithAndWithoutCaches)
{
  for (const TopoDS_Shape& shape : GoldenShapes()) {
    StepGeometryPayloadStore fresh, used;
    fresh.BuildIndex(shape);
    used.BuildIndex(shape);
    ReplaySolidPayload solid;
    ASSERT_TRUE(used.ExpandSolidPayload(1, solid));
    const std::string text = fresh.ExpandSolidPayloadJson(1);
    EXPECT_TRUE(text == used.ExpandSolidPayloadJson(1));
    EXPECT_TRUE(text == fresh.ExpandSolidPayloadJson(1));
    const QJsonObject parsed = Parsed(text);
    EXPECT_EQ(parsed["exactBrep"].toString().toStdString(), solid.exactBrep);
    EXPECT_EQ(parsed["shells"][0]["faces"].toArray().size(),
              static_cast<qsizetype>(solid.shells[0].faces.size()));
  }
}

TEST(PayloadStore, IdsThatNothingHasAndModelsWithoutAnythingFail)
{
  StepGeometryPayloadStore store;
  ReplayCurvePayload curve;
  EXPECT_FALSE(store.ExpandCurvePayload(1, curve)) << "before any index";
  store.BuildIndex(BoxSolid());
  EXPECT_TRUE(store.ExpandCurvePayload(12, curve));
  for (const ReplayId id : {ReplayId{0}, ReplayId{13}, ~ReplayId{0}}) {
    EXPECT_FALSE(store.ExpandCurvePayload(id, curve));
    EXPECT_EQ(curve.id, id);
    EXPECT_TRUE(curve.kind.empty());
    for (const std::string& json :
         {store.ExpandCurvePayloadJson(id), store.ExpandSurfacePayloadJson(id),
          store.ExpandFaceTrimPayloadJson(id), store.ExpandFacePayloadJson(id),
          store.ExpandShellPayloadJson(id), store.ExpandSolidPayloadJson(id)})
      EXPECT_EQ(json, "{}");
  }
  store.BuildIndex(std::vector{TopoDS_Shape(), TopoDS_Shape()});
  EXPECT_EQ(store.ExpandCurvePayloadJson(1), "{}");
  store.BuildIndex(TopoDS_Shape());
  EXPECT_EQ(store.ExpandFacePayloadJson(1), "{}");
}

// What the kernel can hold and cannot describe.
TEST(PayloadStore, BrokenGeometryCostsNoMoreThanItself)
{
  BRep_Builder builder;
  TopoDS_Face bare;
  builder.MakeFace(bare);
  const TopoDS_Wire open =
    BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(gp_Pnt(), gp_Pnt(1, 0, 0)));
  builder.Add(bare, open);
  TopoDS_Edge noCurve;
  builder.MakeEdge(noCurve);
  const TopoDS_Face endless = BRepBuilderAPI_MakeFace(gp_Pln()).Face();
  TopoDS_Shell shell;
  builder.MakeShell(shell);
  builder.Add(shell, bare);
  builder.Add(shell, endless);
  TopoDS_Face withStray = TopoDS::Face(FaceOn(new Geom_Plane(gp_Pln())));
  builder.Add(withStray, open);
  builder.Add(shell, withStray);
  StepGeometryPayloadStore store;
  store.BuildIndex(std::vector<TopoDS_Shape>{shell, noCurve});
  ReplayShellPayload payload;
  ASSERT_TRUE(store.ExpandShellPayload(1, payload));
  ASSERT_EQ(payload.faces.size(), 2U) << "the face without a surface is left out";
  EXPECT_EQ(payload.faces[0].faceId, 2U);
  EXPECT_EQ(payload.faces[1].trim.loops.size(), 2U);
  EXPECT_EQ(Parsed(store.ExpandShellPayloadJson(1))["faces"].toArray().size(), 2);
  EXPECT_EQ(store.ExpandFacePayloadJson(1), "{}");
  TopTools_IndexedMapOfShape edges;
  TopExp::MapShapes(shell, TopAbs_EDGE, edges);
  EXPECT_EQ(store.ExpandCurvePayloadJson(static_cast<ReplayId>(edges.Extent()) + 1), "{}");
}

// Summary and store count alike, also over roots that share a face.
TEST(PayloadStore, IdsAreThoseOfTheSummary)
{
  const TopoDS_Shape box = BoxSolid(), cylinder = CylinderSolid();
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(box, TopAbs_FACE, faces);
  const std::vector<TopoDS_Shape> roots = {faces(3), TopoDS_Shape(), cylinder, box};
  StepGeometryPayloadStore store;
  store.BuildIndex(roots);
  const ReplayIRSummary summary = StepReplayIRBuilder().BuildSummary(roots, "roots");
  ASSERT_EQ(summary.faces.size(), 9U);
  EXPECT_EQ(store.ExpandFacePayloadJson(10), "{}");
  for (const ReplayFaceRecord& face : summary.faces) {
    ReplayFacePayload payload;
    ASSERT_TRUE(store.ExpandFacePayload(face.id, payload));
    ASSERT_EQ(payload.trim.loops.size(), face.loopIds.size());
    for (std::size_t i = 0; i < face.loopIds.size(); ++i) {
      const ReplayLoopRecord& loop = summary.loops[face.loopIds[i] - 1];
      ASSERT_EQ(payload.trim.loops[i].coedges.size(), loop.coedgeIds.size());
      for (std::size_t j = 0; j < loop.coedgeIds.size(); ++j) {
        const ReplayCoedgeRecord& coedge = summary.coedges[loop.coedgeIds[j] - 1];
        EXPECT_EQ(payload.trim.loops[i].coedges[j].edgeId, coedge.edgeId);
        EXPECT_EQ(payload.trim.loops[i].coedges[j].startVertexId, coedge.startVertexId);
      }
    }
  }
}

// Against the conversion of the C library, also where six digits end near a half.
TEST(JsonNumber, IsThatOfPrintf)
{
  Random random(7);
  const auto check = [](double value) {
    char expected[64], text[kJsonNumberSize + 1];
    std::snprintf(expected, sizeof expected, "%g", value);
    *WriteJsonNumber(text, value) = '\0';
    EXPECT_STREQ(text, expected);
  };
  for (const double value : {0.0, -0.0, 1.0, 999999.5, 999999.4, 0.0001, 0.00009999995, 1e6, 1e-300,
                             123456.5, 0.1234565, -2.5, 1e300, 5e-324})
    check(value);
  for (int i = 0; i < 200000; ++i) {
    check(random.Real(-1e3, 1e3));
    const auto any = std::bit_cast<double>(random.Next());
    check(std::isfinite(any) ? any : 1);
    check(std::round(random.Real(-1e7, 1e7)) * 0.5 * std::pow(10, -random.Index(11)));
  }
}
