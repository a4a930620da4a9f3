#include "step/replay/StepReplayIRBuilder.h"

#include "step/CStepFileReader.h"
#include "support/ReplayShapes.h"
#include "support/StepFiles.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRep_Builder.hxx>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvex;
using namespace OrvexTest;
using testing::ElementsAre;
using testing::Pair;

namespace {

ReplayIRSummary SummaryOf(const TopoDS_Shape& shape)
{
  return StepReplayIRBuilder().BuildSummary(shape, "model");
}

int OuterLoops(const ReplayIRSummary& summary, const ReplayFaceRecord& face)
{
  int count = 0;
  for (const ReplayId loop : face.loopIds)
    count += summary.loops[loop - 1].isOuter;
  return count;
}

} // namespace

TEST(ReplaySummary, OfABoxCountsWhatABoxHas)
{
  const ReplayIRSummary box = SummaryOf(BoxSolid());
  EXPECT_EQ(box.sourceName, "model");
  EXPECT_EQ(box.vertices.size(), 8U);
  EXPECT_EQ(box.curves.size(), 12U);
  EXPECT_EQ(box.coedges.size(), 24U);
  EXPECT_EQ(box.loops.size(), 6U);
  EXPECT_THAT(box.curveHistogram, ElementsAre(Pair("line", 12)));
  EXPECT_THAT(box.surfaceHistogram, ElementsAre(Pair("plane", 6)));
  int sameSense = 0;
  for (const ReplayFaceRecord& face : box.faces) {
    EXPECT_EQ(face.surfaceId, face.id);
    EXPECT_EQ((std::vector{face.boundCount, face.edgeCount}), (std::vector{1, 4}));
    sameSense += face.sameSense;
  }
  EXPECT_EQ(sameSense, 3);
  ASSERT_EQ(box.shells.size(), 1U);
  EXPECT_TRUE(box.shells[0].isClosed);
  EXPECT_THAT(box.shells[0].faceIds, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(box.solids[0].shellIds, ElementsAre(1));
  // Loops and coedges count through the faces.
  for (std::size_t i = 0; i < box.loops.size(); ++i)
    EXPECT_THAT(box.loops[i].coedgeIds, ElementsAre(4 * i + 1, 4 * i + 2, 4 * i + 3, 4 * i + 4));
}

TEST(ReplaySummary, OfACylinderTellsTheSeamTwice)
{
  const ReplayIRSummary cylinder = SummaryOf(CylinderSolid());
  EXPECT_THAT(cylinder.curveHistogram, ElementsAre(Pair("circle", 2), Pair("line", 1)));
  EXPECT_THAT(cylinder.surfaceHistogram,
              ElementsAre(Pair("cylinder_surface", 1), Pair("plane", 2)));
  const ReplayFaceRecord& wall = cylinder.faces[0];
  EXPECT_EQ(wall.edgeCount, 4);
  EXPECT_EQ(wall.loopIds.size(), 1U);
  for (const ReplayCurveRecord& curve : cylinder.curves) {
    const bool isSeam = curve.kind == kLineCurve;
    EXPECT_EQ(std::count(wall.edgeIds.begin(), wall.edgeIds.end(), curve.id), isSeam ? 2 : 1);
    EXPECT_EQ(curve.startVertexId == curve.endVertexId, !isSeam);
  }
}

TEST(ReplaySummary, AHoleIsALoopThatIsNotOuter)
{
  const ReplayIRSummary holed = SummaryOf(HoledBoxSolid());
  int withHole = 0;
  for (const ReplayFaceRecord& face : holed.faces) {
    withHole += face.boundCount == 2;
    EXPECT_EQ(OuterLoops(holed, face), 1);
  }
  EXPECT_EQ(withHole, 2);
}

TEST(ReplaySummary, AnEdgeWithoutExtentHasARecordAndNoCurve)
{
  const ReplayIRSummary sphere = SummaryOf(BRepPrimAPI_MakeSphere(5).Shape());
  EXPECT_EQ(sphere.curves.size(), 3U);
  int without = 0;
  for (const ReplayCoedgeRecord& coedge : sphere.coedges) {
    EXPECT_TRUE(coedge.hasPcurve);
    EXPECT_EQ(coedge.pcurveKind, kLineCurve);
    without += !coedge.hasCurve3d;
  }
  EXPECT_EQ(without, 2);
}

TEST(ReplaySummary, SplinesAreCounted)
{
  const ReplayIRSummary summary =
    StepReplayIRBuilder().BuildSummary({SplineFace(true), BezierFace(), SplineEdge()}, "");
  const ReplaySurfaceRecord& spline = summary.surfaces[0];
  EXPECT_EQ((std::vector{spline.degreeU, spline.degreeV, spline.poleRows, spline.poleCols,
                         spline.uKnotCount, spline.vKnotCount}),
            (std::vector{1, 2, 2, 4, 2, 3}));
  const ReplaySurfaceRecord& bezier = summary.surfaces[1];
  EXPECT_EQ((std::vector{bezier.degreeU, bezier.degreeV, bezier.poleRows, bezier.poleCols,
                         bezier.uKnotCount, bezier.vKnotCount}),
            (std::vector{1, 1, 2, 2, 0, 0}));
  const ReplayCurveRecord& curve = summary.curves.back();
  EXPECT_EQ((std::vector{curve.degree, curve.poleCount, curve.knotCount}), (std::vector{2, 4, 3}));
  EXPECT_THAT(summary.surfaceHistogram,
              ElementsAre(Pair("b_spline_surface", 1), Pair("bezier_surface", 1)));
}

// The text of the kind differs from that of the payload.
TEST(ReplaySummary, KindsAreThoseOfTheTable)
{
  const std::pair<TopoDS_Face, const char*> kinds[] = {
    {ExtrudedSpline(), "surface_of_linear_extrusion"},
    {RevolvedSpline(), "surface_of_revolution"},
    {OffsetFace(), "offset_surface"},
    {FaceOn(new Geom_ConicalSurface(gp_Ax3(), 0.25, 4)), "cone_surface"},
    {FaceOn(new Geom_ToroidalSurface(gp_Ax3(), 4, 1)), "torus_surface"},
  };
  for (const auto& [face, kind] : kinds)
    EXPECT_THAT(SummaryOf(face).surfaceHistogram, ElementsAre(Pair(kind, 1)));
  EXPECT_STREQ(ToString(static_cast<ReplayCurveKind>(99)), "unknown_curve");
  EXPECT_STREQ(ToString(static_cast<ReplaySurfaceKind>(-1)), "unknown_surface");
}

TEST(ReplaySummary, OfNothingIsEmpty)
{
  EXPECT_EQ(ToJson(StepReplayIRBuilder().BuildSummary(std::vector<TopoDS_Shape>(1), "a \"b\"\n")),
            R"({"sourceName":"a \"b\"\n","vertices":[],"curves":[],"surfaces":[],"faces":[],)"
            R"("loops":[],"coedges":[],"shells":[],"solids":[],"curveHistogram":{},)"
            R"("surfaceHistogram":{}})");
}

// Written from the rules: a plane with one straight edge along X, in a wire that no walk finds.
TEST(ReplaySummary, JsonIsExactlyThis)
{
  BRep_Builder builder;
  TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln()).Face();
  builder.Add(
    face, BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1.0 / 3, 0, 0)))
            .Wire());
  EXPECT_EQ(ToJson(SummaryOf(face)),
            R"({"sourceName":"model","vertices":[{"id":1,"x":0,"y":0,"z":0},)"
            R"({"id":2,"x":0.333333,"y":0,"z":0}],"curves":[{"id":1,"kind":"line","degree":-1,)"
            R"("poleCount":0,"knotCount":0,"startVertexId":1,"endVertexId":2}],"surfaces":[)"
            R"({"id":1,"kind":"plane","degreeU":-1,"degreeV":-1,"poleRows":0,"poleCols":0,)"
            R"("uKnotCount":0,"vKnotCount":0}],"faces":[{"id":1,"surfaceId":1,"boundCount":1,)"
            R"("edgeCount":1,"sameSense":true,"loopIds":[1],"edgeIds":[1]}],"loops":[{"id":1,)"
            R"("faceId":1,"isOuter":true,"coedgeCount":1,"coedgeIds":[1]}],"coedges":[{"id":1,)"
            R"("loopId":1,"edgeId":1,"orientation":true,"hasCurve3d":true,"hasPcurve":true,)"
            R"("pcurveKind":"line","pcurveDegree":-1,"pcurvePoleCount":0,"pcurveKnotCount":0,)"
            R"("startVertexId":1,"endVertexId":2}],"shells":[],"solids":[],)"
            R"("curveHistogram":{"line":1},"surfaceHistogram":{"plane":1}})");
}

// What was asked about the file before must not answer for the one that is read now.
TEST(ReplayOfReader, BothWaysToReadMakeItStale)
{
  ScratchFile first("first.step"), second("second.step");
  WriteFreeShapes(first, {{"box", BoxSolid()}});
  WriteFreeShapes(second,
                  {{"cylinder", CylinderSolid()}, {"ball", BRepPrimAPI_MakeSphere(2).Shape()}});
  const auto counts = [](const CStepFileReader& reader) {
    return std::vector{reader.BuildReplayIRSummary().faces.size(),
                       reader.BuildReplayFeatureCandidates().size(),
                       reader.ExpandReplayFacePayloadJson(4).size()};
  };
  for (const bool plain : {false, true}) {
    CStepFileReader reader;
    const auto read = [&](const ScratchFile& file) {
      reader.SetInputFileName(file.Path());
      EXPECT_TRUE(plain ? reader.TryReadStepsMapNew() : reader.ReadSynchronously());
      return counts(reader);
    };
    const auto ofFirst = read(first);
    EXPECT_EQ(ofFirst[0], 6U);
    const auto ofSecond = read(second);
    EXPECT_EQ(ofSecond[0], plain ? 10U : 4U) << "the plain read adds to what is there";
    EXPECT_NE(ofSecond[1], ofFirst[1]);
    EXPECT_EQ(read(first)[0], plain ? 16U : 6U);
  }
}

TEST(ReplayOfReader, WithoutAModelThereIsNothing)
{
  const CStepFileReader reader;
  EXPECT_TRUE(reader.BuildReplayIRSummary().faces.empty());
  EXPECT_EQ(reader.BuildReplayFeatureCandidatesJson(), "[]");
  EXPECT_EQ(reader.ExpandReplaySolidPayloadJson(1), "{}");
  const auto bundle =
    QJsonDocument::fromJson(QByteArray::fromStdString(reader.BuildReplaySolidBundleJson(1)));
  EXPECT_TRUE(bundle["payload"].toObject().isEmpty());
  EXPECT_TRUE(bundle["plan"]["steps"].toArray().isEmpty());
}

// The same documents from run to run, and with one thread after the other.
TEST(ReplayOfReader, RealFilesGiveTheSameDocumentsAgain)
{
  const auto files = ReadableFiles();
  if (files.empty())
    GTEST_SKIP() << "ORVEX_TEST_DATA does not name the folder of real STEP files";
  for (const FileFacts& facts : {files.front(), files.back()}) {
    std::vector<std::string> texts;
    for (int run = 0; run < 2; ++run) {
      CStepFileReader reader;
      reader.SetInputFileName(DataFile(facts.file));
      ASSERT_TRUE(reader.ReadSynchronously() || reader.TryReadStepsMapNew()) << facts.file;
      texts.push_back(reader.BuildReplayBundleJson() + reader.BuildReplaySolidBundleJson(1));
    }
    EXPECT_TRUE(texts[0] == texts[1]) << facts.file;
  }
}
