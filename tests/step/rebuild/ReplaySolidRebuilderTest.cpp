// Solids go out as payload text and come back as solids: what comes back has to be equivalent.
#include "step/rebuild/ReplaySolidRebuilder.h"

#include "analysis/ShapeEquivalenceAnalyzer.h"
#include "step/rebuild/ReplayPayloadReader.h"
#include "step/replay/StepGeometryPayloadStore.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <gmock/gmock.h>

#include <cmath>
#include <map>

namespace Orvex {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::vector<ReplayFacePayload> PayloadsOf(const TopoDS_Shape& solid)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(solid);
  std::vector<ReplayFacePayload> faces;
  std::string error;
  EXPECT_TRUE(ReplayPayloadReader::ReadFaces(store.ExpandSolidPayloadJson(1), faces, error))
    << error;
  return faces;
}

// The same with all digits.
std::vector<ReplayFacePayload> ExactPayloadsOf(const TopoDS_Shape& solid)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(solid);
  ReplaySolidPayload payload;
  EXPECT_TRUE(store.ExpandSolidPayload(1, payload));
  return payload.shells.at(0).faces;
}

void ExpectEquivalent(const TopoDS_Shape& exact, const ReplayRebuild& rebuilt)
{
  ASSERT_FALSE(rebuilt.shape.IsNull()) << rebuilt.failure;
  const ShapeEquivalenceReport report =
    ShapeEquivalenceAnalyzer::Compare(exact, rebuilt.shape, ShapeEquivalenceOptions());
  EXPECT_TRUE(report.equivalent) << testing::PrintToString(report.failures) << " volumes "
                                 << report.source.volume << " and " << report.candidate.volume;
}

// "base extrusion", "cut revolution" and so on, with how many there are of each.
std::map<std::string, int> PartsOf(const ReplayRebuild& rebuilt)
{
  std::map<std::string, int> parts;
  for (const ReplayRebuiltOperand& operand : rebuilt.operands)
    ++parts[std::string(operand.role).append(" ").append(operand.form)];
  return parts;
}

using Parts = std::map<std::string, int>;

TopoDS_Shape Moved(const TopoDS_Shape& shape, double x, double y, double z)
{
  gp_Trsf move;
  move.SetTranslation(gp_Vec(x, y, z));
  return shape.Moved(TopLoc_Location(move));
}

TopoDS_Shape Fused(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  return TopExp_Explorer(BRepAlgoAPI_Fuse(first, second).Shape(), TopAbs_SOLID).Current();
}

TopoDS_Shape Cut(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  return TopExp_Explorer(BRepAlgoAPI_Cut(first, second).Shape(), TopAbs_SOLID).Current();
}

TopoDS_Shape Drill(double radius, double x, double y, double z, double depth)
{
  return Moved(BRepPrimAPI_MakeCylinder(radius, depth).Shape(), x, y, z);
}

// A plate with a boss that is drilled through, a pocket with an island in it, and a countersunk
// hole.
TopoDS_Shape Bracket()
{
  TopoDS_Shape part = BRepPrimAPI_MakeBox(60, 40, 10).Shape();
  part = Fused(part, Drill(8, 15, 20, 10, 12));
  part = Cut(part, Drill(4, 15, 20, -1, 40));
  part = Cut(part, Moved(BRepPrimAPI_MakeBox(16, 20, 6).Shape(), 30, 10, 4));
  part = Fused(part, Moved(BRepPrimAPI_MakeBox(4, 5, 3).Shape(), 36, 17, 4));
  part = Cut(part, Drill(2, 53, 20, -1, 20));
  return Cut(part, Moved(BRepPrimAPI_MakeCone(2, 4, 2).Shape(), 53, 20, 8));
}

// A stepped shaft with a groove, whose round faces are whole.
TopoDS_Shape Shaft()
{
  BRepBuilderAPI_MakePolygon outline;
  for (const gp_Pnt& corner : {gp_Pnt(0, 0, 0), gp_Pnt(6, 0, 0), gp_Pnt(6, 0, 20), gp_Pnt(4, 0, 22),
                               gp_Pnt(4, 0, 30), gp_Pnt(0, 0, 30)})
    outline.Add(corner);
  outline.Close();
  const TopoDS_Face profile = BRepBuilderAPI_MakeFace(outline.Wire());
  return BRepPrimAPI_MakeRevol(profile, gp::OZ()).Shape();
}

TEST(ReplaySolidRebuilder, JoinsTrimmedFacesOfEveryKindOfSurface)
{
  gp_Trsf mirror;
  mirror.SetMirror(gp_Ax2(gp::Origin(), gp_Dir(1, 2, 3)));
  gp_Trsf turn;
  turn.SetRotation(gp_Ax1(gp_Pnt(1, 2, 3), gp_Dir(3, 1, 2)), 0.7);
  const TopoDS_Shape sharp = BRepPrimAPI_MakeBox(30, 20, 10).Shape();
  BRepFilletAPI_MakeFillet rounded(sharp);
  for (TopExp_Explorer at(sharp, TopAbs_EDGE); at.More(); at.Next())
    rounded.Add(2, TopoDS::Edge(at.Current()));
  const std::map<std::string, TopoDS_Shape> solids = {
    {"bracket", Bracket()},
    {"rounded box", rounded.Shape()},
    {"sphere", BRepPrimAPI_MakeSphere(gp_Pnt(7, 8, 9), 5).Shape()},
    {"torus", BRepPrimAPI_MakeTorus(10, 3).Shape()},
    {"cone to its tip", BRepPrimAPI_MakeCone(5, 0, 8).Shape()},
    {"hollow ball", Cut(BRepPrimAPI_MakeSphere(9).Shape(), BRepPrimAPI_MakeSphere(6).Shape())},
    {"turned", BRepBuilderAPI_Transform(Bracket(), turn, true).Shape()},
    {"mirrored", BRepBuilderAPI_Transform(Bracket(), mirror, true).Shape()},
    {"splines", BRepBuilderAPI_NurbsConvert(Bracket()).Shape()},
  };
  for (const auto& [name, solid] : solids) {
    SCOPED_TRACE(name);
    const ReplaySolidRebuilder rebuilder(PayloadsOf(solid));
    EXPECT_THAT(rebuilder.Failures(), IsEmpty());
    ExpectEquivalent(solid, rebuilder.FromFaces());
  }
  // The kernel's areas of splines hang on the last digits of their trims.
  const TopoDS_Shape splines =
    BRepBuilderAPI_Transform(BRepBuilderAPI_NurbsConvert(Shaft()).Shape(), mirror, true).Shape();
  ExpectEquivalent(splines, ReplaySolidRebuilder(ExactPayloadsOf(splines)).FromFaces());
}

TEST(ReplaySolidRebuilder, TakesABodyApartAtInnerLoops)
{
  const ReplayRebuild rebuilt = ReplaySolidRebuilder(PayloadsOf(Bracket())).FromFeatures();
  ExpectEquivalent(Bracket(), rebuilt);
  // The drill through boss and plate, and the pocket, are cut; the boss and the island are added.
  EXPECT_EQ(
    PartsOf(rebuilt),
    (Parts{
      {"base extrusion", 1}, {"cut extrusion", 2}, {"cut revolution", 1}, {"fuse extrusion", 2}}));
}

TEST(ReplaySolidRebuilder, FindsFormsBehindSplines)
{
  const TopoDS_Shape plate = Cut(BRepPrimAPI_MakeBox(30, 20, 5).Shape(), Drill(4, 12, 10, -1, 10));
  const TopoDS_Shape splines = BRepBuilderAPI_NurbsConvert(plate).Shape();
  const ReplayRebuild rebuilt = ReplaySolidRebuilder(PayloadsOf(splines)).FromFeatures();
  ExpectEquivalent(splines, rebuilt);
}

TEST(ReplaySolidRebuilder, RevolvesAndLofts)
{
  const ReplayRebuild shaft = ReplaySolidRebuilder(PayloadsOf(Shaft())).FromFeatures();
  ExpectEquivalent(Shaft(), shaft);
  EXPECT_EQ(PartsOf(shaft), (Parts{{"base revolution", 1}}));

  BRepOffsetAPI_ThruSections loft(true, true);
  for (const double height : {0.0, 12.0}) {
    const double side = height > 0 ? 4 : 10;
    BRepBuilderAPI_MakePolygon square;
    for (const gp_Pnt& corner : {gp_Pnt(-side, -side, height), gp_Pnt(side, -side, height),
                                 gp_Pnt(side, side, height), gp_Pnt(-side, side, height)})
      square.Add(corner);
    square.Close();
    loft.AddWire(square.Wire());
  }
  const ReplayRebuild tapered = ReplaySolidRebuilder(PayloadsOf(loft.Shape())).FromFeatures();
  ExpectEquivalent(loft.Shape(), tapered);
  EXPECT_EQ(PartsOf(tapered), (Parts{{"base loft", 1}}));

  // A quarter turn of a ring.
  BRepBuilderAPI_MakePolygon outline;
  for (const gp_Pnt& corner : {gp_Pnt(5, 0, 0), gp_Pnt(9, 0, 0), gp_Pnt(8, 0, 3), gp_Pnt(6, 0, 3)})
    outline.Add(corner);
  outline.Close();
  const TopoDS_Face section = BRepBuilderAPI_MakeFace(outline.Wire());
  const TopoDS_Shape quarter = BRepPrimAPI_MakeRevol(section, gp::OZ(), M_PI / 2).Shape();
  const ReplayRebuild sector = ReplaySolidRebuilder(PayloadsOf(quarter)).FromFeatures();
  ExpectEquivalent(quarter, sector);
  EXPECT_EQ(PartsOf(sector), (Parts{{"base revolution", 1}}));
}

TEST(ReplaySolidRebuilder, MakesPrimitivesFromTheirNumbers)
{
  const gp_Ax2 place(gp_Pnt(10, -20, 30), gp_Dir(1, 2, 2), gp_Dir(0, 1, -1));
  const std::map<std::string, TopoDS_Shape> primitives = {
    {"primitive_box", BRepPrimAPI_MakeBox(place, 3, 4, 5).Shape()},
    {"primitive_cylinder", BRepPrimAPI_MakeCylinder(place, 3, 7).Shape()},
    {"primitive_cone", BRepPrimAPI_MakeCone(place, 5, 2, 6).Shape()},
    {"primitive_sphere", BRepPrimAPI_MakeSphere(place, 4).Shape()},
    {"primitive_torus", BRepPrimAPI_MakeTorus(place, 9, 2).Shape()},
  };
  for (const auto& [kind, solid] : primitives) {
    SCOPED_TRACE(kind);
    ExpectEquivalent(solid, ReplaySolidRebuilder(PayloadsOf(solid)).FromPrimitive(kind));
  }
  const ReplaySolidRebuilder ball(PayloadsOf(primitives.at("primitive_sphere")));
  EXPECT_THAT(ball.FromPrimitive("primitive_torus").failure, HasSubstr("torus_surface"));
  EXPECT_THAT(ball.FromPrimitive("primitive_").failure, HasSubstr("is no primitive"));
  const ReplaySolidRebuilder taper(PayloadsOf(Shaft()));
  EXPECT_FALSE(taper.FromPrimitive("primitive_box").failure.empty());
}

TEST(ReplaySolidRebuilder, SaysWhyThereIsNothing)
{
  std::vector<ReplayFacePayload> faces = PayloadsOf(Bracket());
  EXPECT_THAT(ReplaySolidRebuilder({}).FromFaces().failure, HasSubstr("no faces"));

  std::vector<ReplayFacePayload> open(faces.begin(), faces.end() - 1);
  EXPECT_THAT(ReplaySolidRebuilder(open).FromFaces().failure, HasSubstr("leave an opening"));
  EXPECT_THAT(ReplaySolidRebuilder(open).FromFeatures().failure, HasSubstr("leave an opening"));

  faces[2].surface.kind = "other_surface";
  faces[2].surface.analyticParameters.clear();
  const ReplaySolidRebuilder lacking(faces);
  ASSERT_EQ(lacking.Failures().size(), 1U);
  EXPECT_EQ(lacking.Failures()[0].faceId, faces[2].faceId);
  EXPECT_TRUE(lacking.Face(faces[2].faceId).IsNull());
  EXPECT_FALSE(lacking.Face(faces[1].faceId).IsNull());
  EXPECT_THAT(lacking.FromFeatures().failure, HasSubstr("other_surface"));
}

TEST(ReplaySolidRebuilder, SurvivesNumbersThatMakeNoSense)
{
  for (const double number : {0.0, -1.0, 1e300, std::nan("")})
    for (std::size_t place = 0; place < 12; ++place) {
      std::vector<ReplayFacePayload> faces = PayloadsOf(Shaft());
      for (ReplayFacePayload& face : faces) {
        if (place < face.surface.analyticParameters.size())
          face.surface.analyticParameters[place] = number;
        face.surface.poleRows = static_cast<int>(place);
      }
      const ReplayRebuild rebuilt = ReplaySolidRebuilder(faces).FromFaces();
      EXPECT_TRUE(rebuilt.failure.empty() != rebuilt.shape.IsNull());
    }
}

// A shell whose faces name no common edges is sewn by its places.
TEST(ReplaySolidRebuilder, SewsFacesWithoutCommonEdges)
{
  std::vector<ReplayFacePayload> faces = PayloadsOf(BRepPrimAPI_MakeBox(3, 4, 5).Shape());
  ReplayId next = 1000;
  for (ReplayFacePayload& face : faces)
    for (ReplayLoopPayload& loop : face.trim.loops)
      for (ReplayCoedgePayload& coedge : loop.coedges) {
        coedge.edgeId = next++;
        coedge.startVertexId = next++;
        coedge.endVertexId = next++;
      }
  ExpectEquivalent(BRepPrimAPI_MakeBox(3, 4, 5).Shape(), ReplaySolidRebuilder(faces).FromFaces());
}

TEST(ReplayPayloadReader, ReadsWhatTheStoreWrites)
{
  StepGeometryPayloadStore store;
  store.BuildIndex(BRepBuilderAPI_NurbsConvert(Shaft()).Shape());
  ReplayFacePayload exact;
  ASSERT_TRUE(store.ExpandFacePayload(2, exact));
  std::vector<ReplayFacePayload> read;
  std::string error;
  ASSERT_TRUE(ReplayPayloadReader::ReadFaces(store.ExpandFacePayloadJson(2), read, error)) << error;
  ASSERT_EQ(read.size(), 1U);
  const ReplaySurfacePayload& surface = read[0].surface;
  EXPECT_EQ(surface.kind, exact.surface.kind);
  EXPECT_EQ(surface.degreeU, exact.surface.degreeU);
  EXPECT_EQ(surface.vMultiplicities, exact.surface.vMultiplicities);
  ASSERT_EQ(surface.controlPoints.size(), exact.surface.controlPoints.size());
  EXPECT_NEAR(surface.controlPoints.back().z, exact.surface.controlPoints.back().z, 1e-4);
  ASSERT_EQ(read[0].trim.loops.size(), exact.trim.loops.size());
  ASSERT_GT(exact.trim.loops[0].coedges.size(), 1U);
  const ReplayCoedgePayload& coedge = read[0].trim.loops[0].coedges[1];
  const ReplayCoedgePayload& told = exact.trim.loops[0].coedges[1];
  EXPECT_EQ(coedge.edgeId, told.edgeId);
  EXPECT_EQ(coedge.orientation, told.orientation);
  EXPECT_EQ(coedge.isSeam, told.isSeam);
  EXPECT_EQ(coedge.curve3d.knots.size(), told.curve3d.knots.size());
  EXPECT_NEAR(coedge.pcurve.lastParameter, told.pcurve.lastParameter, 1e-4);
}

TEST(ReplayPayloadReader, RestoresTheDigitsOfAKnownSolid)
{
  const TopoDS_Shape far = Moved(Shaft(), 123456.789, 0, 0);
  std::vector<ReplayFacePayload> faces = PayloadsOf(far);
  faces[0].faceId = 77;
  EXPECT_FALSE(ReplayPayloadReader::RestoreDigits(Bracket(), faces));
  ASSERT_TRUE(ReplayPayloadReader::RestoreDigits(far, faces));
  EXPECT_EQ(faces[0].faceId, 77U);
  EXPECT_EQ(faces[0].trim.faceId, 77U);
  EXPECT_NEAR(faces[0].surface.analyticParameters.at(0), 123456.789, 1e-9);
  ExpectEquivalent(far, ReplaySolidRebuilder(faces).FromFeatures());
}

TEST(ReplayPayloadReader, RefusesWhatIsNoPayload)
{
  std::vector<ReplayFacePayload> faces(1);
  std::string error;
  for (const char* text : {"", "nonsense", "{\"faceId\":1,\"surface\":[]}", "{\"faceId\":-1}",
                           "{\"faceId\":1,\"surface\":{\"kind\":7}}",
                           "{\"faces\":[{\"faceId\":1,\"trim\":{\"loops\":[{\"coedges\":1}]}}]}"}) {
    error.clear();
    EXPECT_FALSE(ReplayPayloadReader::ReadFaces(text, faces, error)) << text;
    EXPECT_FALSE(error.empty()) << text;
    EXPECT_EQ(faces.size(), 1U);
  }
  EXPECT_TRUE(
    ReplayPayloadReader::ReadFaces("{\"shells\":[{\"faces\":[{\"faceId\":4}]}]}", faces, error));
  EXPECT_EQ(faces.size(), 2U);
  EXPECT_EQ(faces.back().faceId, 4U);
}

} // namespace
} // namespace Orvex
