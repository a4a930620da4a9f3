// What is recognised in models of which only the counts are known.
#include "step/replay/StepFeatureRecognizer.h"

#include "support/Random.h"
#include "support/SummaryModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

using namespace Orvex;
using OrvexTest::FaceForm;
using OrvexTest::Ids;
using OrvexTest::Strip;
using OrvexTest::SummaryModel;
using testing::ElementsAre;
using testing::IsEmpty;
using Candidates = std::vector<ReplayFeatureCandidate>;
using Texts = std::vector<std::string>;

Candidates Recognized(const ReplayIRSummary& summary)
{
  return StepFeatureRecognizer().RecognizeSummaryCandidates(summary);
}

// "planar_region_candidate 0.95", as of the `skipped`-th candidate.
Texts Found(const Candidates& candidates, std::size_t skipped = 0)
{
  Texts texts;
  for (std::size_t i = skipped; i < candidates.size(); ++i) {
    std::ostringstream text;
    text << candidates[i].kind << ' ' << candidates[i].confidence;
    texts.push_back(text.str());
  }
  return texts;
}

TEST(StepFeatureRecognizer, BoxIsARegionAShellAndAPrimitive)
{
  const Candidates found = Recognized(OrvexTest::Box().summary);
  EXPECT_THAT(Found(found),
              ElementsAre("analytic_plane_face 1", "analytic_plane_face 1", "analytic_plane_face 1",
                          "analytic_plane_face 1", "analytic_plane_face 1", "analytic_plane_face 1",
                          "planar_region_candidate 0.95", "analytic_shell_candidate 0.75",
                          "primitive_box_solid_candidate 0.99"));
  EXPECT_EQ(ToJson(Candidates(found.end() - 1, found.end())),
            R"([{"kind":"primitive_box_solid_candidate","confidence":0.99,)"
            R"("faceIds":[1,2,3,4,5,6],"surfaceIds":[1,2,3,4,5,6],"shellIds":[1],"solidIds":[1],)"
            R"("supportFaceIds":[],"capFaceIds":[1,2,3,4,5,6],"trimmedFaceIds":[]}])");
  EXPECT_EQ(ToJson(Candidates(found.begin() + 6, found.begin() + 8)),
            R"([{"kind":"planar_region_candidate","confidence":0.95,)"
            R"("faceIds":[1,2,3,4,5,6],"surfaceIds":[1,2,3,4,5,6],"shellIds":[],"solidIds":[],)"
            R"("supportFaceIds":[],"capFaceIds":[],"trimmedFaceIds":[]},)"
            R"({"kind":"analytic_shell_candidate","confidence":0.75,)"
            R"("faceIds":[1,2,3,4,5,6],"surfaceIds":[],"shellIds":[1],"solidIds":[],)"
            R"("supportFaceIds":[],"capFaceIds":[],"trimmedFaceIds":[]}])");
}

TEST(StepFeatureRecognizer, HoleMakesABoxACut)
{
  const Candidates found = Recognized(OrvexTest::HoledBox().summary);
  EXPECT_THAT(Found(found, 7),
              ElementsAre("planar_region_candidate 0.95", "analytic_shell_candidate 0.75",
                          "boolean_cut_solid_candidate 0.77"));
  EXPECT_THAT(found.back().supportFaceIds, ElementsAre(7));
  EXPECT_THAT(found.back().capFaceIds, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(found.back().trimmedFaceIds, ElementsAre(5, 6, 7)) << "holes, and p-curves";
  EXPECT_THAT(
    Found(Recognized(OrvexTest::Cylinder().summary), 3),
    ElementsAre("analytic_shell_candidate 0.75", "primitive_cylinder_solid_candidate 0.99"))
    << "one turned face is no revolve, planes that do not touch no region";
}

struct KindRow
{
  ReplaySurfaceKind kind;
  std::string face;
  std::string ofThree;
  std::string ofFour;
};

TEST(StepFeatureRecognizer, FacesAndRegionsByKind)
{
  // clang-format off
  const std::vector<KindRow> rows = {
    {kPlaneSurface,      "analytic_plane_face 1",           "planar_region_candidate 0.9",       "planar_region_candidate 0.95"},
    {kCylinderSurface,   "analytic_cylinder_face 1",        "cylindrical_region_candidate 0.9",  "cylindrical_region_candidate 0.95"},
    {kConeSurface,       "analytic_cone_face 1",            "conical_region_candidate 0.9",      "conical_region_candidate 0.95"},
    {kSphereSurface,     "analytic_sphere_face 1",          "spherical_region_candidate 0.9",    "spherical_region_candidate 0.95"},
    {kTorusSurface,      "analytic_torus_face 1",           "toroidal_region_candidate 0.9",     "toroidal_region_candidate 0.95"},
    {kBezierSurface,     "bezier_face_candidate 0.6",       "bezier_region_candidate 0.65",      "bezier_region_candidate 0.7"},
    {kBSplineSurface,    "freeform_face_candidate 0.6",     "freeform_region_candidate 0.65",    "freeform_region_candidate 0.7"},
    {kRevolutionSurface, "revolve_region_candidate 0.85",   "revolve_region_candidate 0.82",     "revolve_region_candidate 0.87"},
    {kExtrusionSurface,  "extrusion_region_candidate 0.85", "extrusion_region_candidate 0.82",   "extrusion_region_candidate 0.87"},
    {kOffsetSurface,     "offset_region_candidate 0.75",    "offset_region_candidate 0.75",      "offset_region_candidate 0.8"},
  };
  // clang-format on
  for (const KindRow& row : rows) {
    const FaceForm form{.kind = row.kind};
    EXPECT_THAT(Found(Recognized(Strip(form, 1).summary)), ElementsAre(row.face));
    EXPECT_THAT(Found(Recognized(Strip(form, 3).summary), 3), ElementsAre(row.ofThree));
    EXPECT_THAT(Found(Recognized(Strip(form, 4).summary), 4), ElementsAre(row.ofFour));
    EXPECT_THAT(Found(Recognized(Strip(form, 10).summary), 10), ElementsAre(row.ofFour));
  }
  EXPECT_THAT(Recognized(Strip({.kind = kOtherSurface}, 4).summary), IsEmpty());
  EXPECT_THAT(Recognized(Strip({.kind = kUnknownSurface}, 4).summary), IsEmpty());
}

TEST(StepFeatureRecognizer, TrimmedRegionNeedsPcurvesOnHalfOfTheCoedges)
{
  const auto isTrimmed = [](const FaceForm& form, ReplayId count) {
    return Found(Recognized(Strip(form, count).summary)).back() ==
           "trimmed_freeform_region_candidate 0.8";
  };
  EXPECT_TRUE(isTrimmed({.kind = kBSplineSurface, .pcurves = 2, .coedgesWithout = 2}, 2));
  EXPECT_FALSE(isTrimmed({.kind = kBSplineSurface, .pcurves = 2, .coedgesWithout = 3}, 2));
  EXPECT_FALSE(isTrimmed({.kind = kBSplineSurface, .pcurves = 1}, 3)) << "four at least";
  EXPECT_TRUE(isTrimmed({.kind = kBezierSurface, .pcurves = 1, .coedgesWithout = 1}, 5));
  EXPECT_FALSE(isTrimmed({.kind = kBezierSurface, .pcurves = 4}, 1)) << "no region";
  EXPECT_FALSE(isTrimmed({.kind = kPlaneSurface, .pcurves = 4}, 2));
  const Candidates found = Recognized(Strip({.kind = kBSplineSurface, .pcurves = 2}, 2).summary);
  EXPECT_THAT(found.back().faceIds, ElementsAre(1, 2));
  EXPECT_THAT(found.back().surfaceIds, ElementsAre(1, 2));
  EXPECT_THAT(found.back().trimmedFaceIds, ElementsAre(1, 2));
}

// Faces reached from a face over pairs of neighbours, one region after the other.
std::vector<Ids> SlowRegions(const ReplayIRSummary& summary)
{
  const std::size_t count = summary.faces.size();
  const auto areNeighbours = [&](std::size_t a, std::size_t b) {
    if (summary.surfaces[a].kind != summary.surfaces[b].kind)
      return false;
    for (const ReplayId edge : summary.faces[a].edgeIds)
      if (std::ranges::count(summary.faces[b].edgeIds, edge) > 0)
        return true;
    return false;
  };
  std::set<ReplayId> visited;
  std::vector<Ids> regions;
  for (std::size_t seed = 0; seed < count; ++seed) {
    if (summary.surfaces[seed].kind == kOtherSurface || !visited.insert(seed + 1).second)
      continue;
    Ids region{seed + 1};
    for (std::size_t i = 0; i < region.size(); ++i)
      for (std::size_t next = 0; next < count; ++next)
        if (areNeighbours(region[i] - 1, next) && visited.insert(next + 1).second)
          region.push_back(next + 1);
    std::ranges::sort(region);
    if (region.size() > 1)
      regions.push_back(region);
  }
  return regions;
}

SummaryModel RandomFaces(OrvexTest::Random& random)
{
  const std::vector<ReplaySurfaceKind> kinds = {kPlaneSurface, kBSplineSurface, kOtherSurface};
  SummaryModel model;
  for (int face = 0; face < 40; ++face) {
    FaceForm form{.kind = kinds[static_cast<std::size_t>(random.Index(3))]};
    for (int edge = random.Index(4); edge > 0; --edge)
      form.edges.push_back(static_cast<ReplayId>(1 + random.Index(50)));
    model.AddFace(form);
  }
  return model;
}

TEST(StepFeatureRecognizer, RegionsAreThoseOfNeighboursPairByPair)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  OrvexTest::Random random{OrvexTest::Seed()};
  std::size_t regions = 0;
  for (int round = 0; round < 50; ++round) {
    const ReplayIRSummary summary = RandomFaces(random).summary;
    std::vector<Ids> found;
    for (const ReplayFeatureCandidate& candidate : Recognized(summary))
      if (candidate.kind.ends_with("region_candidate"))
        found.push_back(candidate.faceIds);
    ASSERT_EQ(found, SlowRegions(summary));
    regions += found.size();
  }
  EXPECT_GT(regions, 100U);
}

// What is recognised in a shell of these faces, without its faces and regions.
Candidates OfShell(const std::vector<FaceForm>& faces)
{
  SummaryModel model;
  for (const FaceForm& face : faces)
    model.AddFace(face);
  model.Close();
  model.summary.solids.clear();
  Candidates found = Recognized(model.summary);
  std::erase_if(found, [](const ReplayFeatureCandidate& one) { return one.shellIds.empty(); });
  return found;
}

TEST(StepFeatureRecognizer, ShellClasses)
{
  const FaceForm plane{.pcurves = 3};
  const FaceForm unknown{.kind = kUnknownSurface};
  const FaceForm untouched{.kind = kBezierSurface};
  const FaceForm holed{.bounds = 2};
  const auto spline = [](int pcurves) {
    return FaceForm{.kind = kBSplineSurface, .pcurves = pcurves};
  };
  const std::string freeform = "freeform_shell_candidate 0.75";
  const std::string hybrid = "hybrid_shell_candidate 0.7";
  const std::string trimmed = "trimmed_freeform_shell_candidate 0.79";
  EXPECT_THAT(Found(OfShell({plane, plane})), ElementsAre("analytic_shell_candidate 0.75"));
  EXPECT_THAT(Found(OfShell({spline(9)})), ElementsAre(freeform)) << "one face";
  EXPECT_THAT(Found(OfShell({untouched, unknown})), ElementsAre(hybrid));
  EXPECT_THAT(Found(OfShell({spline(3), spline(2)})), ElementsAre(freeform));
  EXPECT_THAT(Found(OfShell({spline(3), spline(3)})), ElementsAre(freeform, trimmed));
  EXPECT_THAT(Found(OfShell({spline(7), spline(0), spline(0), spline(0)})), ElementsAre(freeform));
  EXPECT_THAT(Found(OfShell({spline(8), spline(0), spline(0), spline(0)})),
              ElementsAre(freeform, trimmed));

  const Candidates found = OfShell({spline(3), untouched, holed, plane});
  EXPECT_THAT(Found(found), ElementsAre(hybrid, trimmed));
  EXPECT_THAT(found[1].trimmedFaceIds, ElementsAre(1, 3, 4));
  EXPECT_THAT(found[1].faceIds, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(found[0].trimmedFaceIds, IsEmpty());
}

struct SolidRow
{
  std::vector<std::pair<ReplaySurfaceKind, int>> faces;
  Texts candidates;
  // Of the faces, from the first on.
  int multiBound = 0;
  // All on the first face.
  int pcurves = 0;
  // One with all faces, further ones empty.
  int shells = 1;
};

// What is recognised in the solid itself.
Texts OfSolid(const SolidRow& row)
{
  SummaryModel model;
  for (const auto& [kind, count] : row.faces)
    for (int i = 0; i < count; ++i) {
      const int earlier = static_cast<int>(model.summary.faces.size());
      model.AddFace({.kind = kind,
                     .bounds = earlier < row.multiBound ? 2 : 1,
                     .pcurves = earlier == 0 ? row.pcurves : 0});
    }
  model.Close();
  for (int shell = 1; shell < row.shells; ++shell)
    model.summary.solids[0].shellIds.push_back(model.AddShell({}));
  Candidates found = Recognized(model.summary);
  std::erase_if(found, [](const ReplayFeatureCandidate& one) { return one.solidIds.empty(); });
  return Found(found);
}

constexpr auto kPlane = kPlaneSurface;
constexpr auto kCylinder = kCylinderSurface;
constexpr auto kCone = kConeSurface;
constexpr auto kSphere = kSphereSurface;
constexpr auto kTorus = kTorusSurface;
constexpr auto kSpline = kBSplineSurface;
constexpr auto kTurned = kRevolutionSurface;
constexpr auto kExtruded = kExtrusionSurface;
constexpr auto kOffset = kOffsetSurface;

// clang-format off
const std::vector<SolidRow> kSolids = {
  {{{kPlane, 6}}, {"primitive_box_solid_candidate 0.99"}},
  {{{kPlane, 5}}, {}},
  {{{kPlane, 7}}, {}},
  {{{kPlane, 6}}, {}, 1},
  {{{kPlane, 6}}, {"boolean_like_solid_candidate 0.84"}, 0, 0, 2},

  {{{kCylinder, 1}, {kPlane, 2}}, {"primitive_cylinder_solid_candidate 0.99"}},
  {{{kCylinder, 1}, {kPlane, 1}}, {}},
  {{{kCylinder, 1}, {kPlane, 2}}, {}, 1},
  {{{kCylinder, 1}, {kPlane, 2}, {kOffset, 1}}, {}},
  {{{kCone, 1}, {kPlane, 1}}, {"primitive_cone_solid_candidate 0.99"}},
  {{{kCone, 1}}, {}},
  {{{kCone, 1}, {kPlane, 1}}, {}, 1},
  {{{kSphere, 1}}, {"primitive_sphere_solid_candidate 0.99"}},
  {{{kSphere, 1}, {kPlane, 1}}, {}},
  {{{kSphere, 1}}, {}, 1},
  {{{kTorus, 1}}, {"primitive_torus_solid_candidate 0.99"}},
  {{{kTorus, 1}, {kPlane, 1}}, {}},
  {{{kTorus, 1}}, {}, 1},

  {{{kExtruded, 1}, {kPlane, 1}}, {"sweep_like_solid_candidate 0.78"}},
  {{{kExtruded, 1}, {kPlane, 2}}, {"sweep_like_solid_candidate 0.86", "prismatic_sweep_solid_candidate 0.9"}},
  {{{kExtruded, 1}, {kPlane, 2}, {kSpline, 1}}, {"sweep_like_solid_candidate 0.86", "boolean_like_solid_candidate 0.74"}},
  {{{kExtruded, 1}, {kPlane, 1}}, {"sweep_like_solid_candidate 0.78", "cut_sweep_solid_candidate 0.8"}, 1},

  {{{kTurned, 2}}, {"revolve_like_solid_candidate 0.84", "revolved_body_solid_candidate 0.87"}},
  {{{kTurned, 1}}, {}},
  {{{kTurned, 4}, {kPlane, 5}}, {"revolve_like_solid_candidate 0.78", "revolved_body_solid_candidate 0.87"}},
  {{{kTurned, 3}, {kPlane, 5}}, {}},
  {{{kTurned, 2}, {kSpline, 2}}, {"revolve_like_solid_candidate 0.84"}},
  {{{kCone, 1}, {kSphere, 1}}, {"revolve_like_solid_candidate 0.84", "revolved_body_solid_candidate 0.87"}},

  {{{kSpline, 2}, {kPlane, 2}}, {"loft_like_solid_candidate 0.76", "multi_section_loft_solid_candidate 0.82"}},
  {{{kSpline, 2}, {kPlane, 1}}, {}},
  {{{kSpline, 1}, {kPlane, 2}}, {}},
  {{{kSpline, 3}, {kPlane, 2}}, {"loft_like_solid_candidate 0.76", "multi_section_loft_solid_candidate 0.82"}},
  {{{kSpline, 3}, {kPlane, 2}, {kExtruded, 1}}, {"sweep_like_solid_candidate 0.86", "freeform_blend_solid_candidate 0.72", "boolean_like_solid_candidate 0.74"}},
  {{{kSpline, 3}, {kPlane, 1}}, {"freeform_blend_solid_candidate 0.72"}},
  {{{kSpline, 3}}, {}},
  {{{kSpline, 2}, {kBezierSurface, 1}}, {"freeform_blend_solid_candidate 0.72"}},
  {{{kSpline, 4}, {kOffset, 4}}, {"freeform_blend_solid_candidate 0.72"}},
  {{{kSpline, 3}, {kOffset, 5}}, {}},
  {{{kSpline, 2}}, {"trimmed_freeform_solid_candidate 0.81"}, 0, 8},
  {{{kSpline, 2}}, {}, 0, 7},
  {{{kSpline, 1}}, {}, 0, 8},
  {{{kSpline, 5}}, {"trimmed_freeform_solid_candidate 0.81"}, 0, 10},
  {{{kSpline, 5}}, {}, 0, 9},
  {{{kSpline, 2}}, {"trimmed_loft_solid_candidate 0.79"}, 1},
  {{{kSpline, 1}}, {}, 1},

  {{{kSpline, 1}, {kPlane, 1}, {kCone, 1}}, {"boolean_like_solid_candidate 0.74"}},
  {{{kSpline, 1}, {kOtherSurface, 1}, {kUnknownSurface, 1}}, {"boolean_like_solid_candidate 0.74"}},
  {{{kSpline, 1}, {kPlane, 1}}, {}},
  {{{kOffset, 1}, {kPlane, 1}, {kTurned, 1}}, {}},
  {{{kCylinder, 1}, {kPlane, 4}, {kOffset, 2}}, {"boolean_fuse_solid_candidate 0.72"}},
  {{{kCylinder, 1}, {kPlane, 3}, {kOffset, 3}}, {}},
  {{{kCylinder, 1}, {kPlane, 4}, {kOffset, 1}}, {}},
  {{{kCone, 1}, {kPlane, 4}, {kOffset, 2}}, {}},
  {{{kCylinder, 1}, {kPlane, 4}, {kOffset, 2}}, {}, 1},
  {{{kCylinder, 1}, {kPlane, 6}}, {"primitive_cylinder_solid_candidate 0.99", "boolean_fuse_solid_candidate 0.72"}},
  {{{kCylinder, 1}, {kPlane, 6}}, {"boolean_cut_solid_candidate 0.77"}, 2},
  {{{kCylinder, 1}, {kPlane, 6}}, {"boolean_like_solid_candidate 0.84", "boolean_cut_solid_candidate 0.86"}, 2, 0, 2},
  {{{kPlane, 6}}, {}, 2},
};
// clang-format on

TEST(StepFeatureRecognizer, SolidRulesAtTheirThresholdsAndJustBelow)
{
  for (std::size_t i = 0; i < kSolids.size(); ++i)
    EXPECT_EQ(OfSolid(kSolids[i]), kSolids[i].candidates) << "row " << i;
}

TEST(StepFeatureRecognizer, IdsThatNoRecordHasCountAsAbsent)
{
  EXPECT_THAT(Recognized({}), IsEmpty());
  EXPECT_EQ(ToJson(Candidates()), "[]");

  const ReplayId huge = std::numeric_limits<ReplayId>::max();
  SummaryModel model = OrvexTest::Box();
  ReplayIRSummary& summary = model.summary;
  summary.faces[0].surfaceId = huge;
  summary.faces[1].loopIds = {0, huge};
  summary.loops[2].coedgeIds = {0, 7, huge};
  summary.faces[3].boundCount = std::numeric_limits<std::int32_t>::max();
  summary.faces[3].edgeIds.push_back(huge);
  summary.faces[4].edgeIds.push_back(huge);
  summary.shells[0].faceIds.push_back(huge);
  model.AddSolid({0, huge});
  summary.solids[0].shellIds.push_back(huge);
  const Candidates found = Recognized(summary);
  EXPECT_THAT(Found(found, 5),
              ElementsAre("planar_region_candidate 0.95", "analytic_shell_candidate 0.75",
                          "boolean_like_solid_candidate 0.84"));
  EXPECT_THAT(found.back().faceIds, ElementsAre(1, 2, 3, 4, 5, 6, huge));
  EXPECT_THAT(found.back().surfaceIds, ElementsAre(2, 3, 4, 5, 6, huge));
  EXPECT_THAT(found.back().shellIds, ElementsAre(1, huge));
  EXPECT_THAT(found.back().capFaceIds, ElementsAre(2, 3, 4, 5, 6));
  EXPECT_THAT(found.back().trimmedFaceIds, ElementsAre(4));
}

TEST(StepFeatureRecognizer, IdsNeedNotBePositions)
{
  ReplayIRSummary summary = OrvexTest::HoledBox().summary;
  const Candidates expected = Recognized(summary);
  std::ranges::reverse(summary.surfaces);
  std::ranges::reverse(summary.faces);
  std::ranges::reverse(summary.loops);
  std::ranges::reverse(summary.coedges);
  const Candidates found = Recognized(summary);
  EXPECT_THAT(found.front().faceIds, ElementsAre(7)) << "faces in the order of the summary";
  EXPECT_EQ(ToJson(Candidates(found.begin() + 7, found.end())),
            ToJson(Candidates(expected.begin() + 7, expected.end())));
}

TEST(StepFeatureRecognizer, JsonIsReadByOthers)
{
  ReplayFeatureCandidate odd;
  odd.kind = "\"quoted\"\n";
  odd.confidence = 1.0 / 3;
  const auto json = QByteArray::fromStdString(ToJson({odd, {}}));
  const QJsonArray read = QJsonDocument::fromJson(json).array();
  EXPECT_EQ(read[0].toObject()["kind"].toString(), "\"quoted\"\n");
  EXPECT_EQ(read[0].toObject()["confidence"].toDouble(), 0.333333);
  EXPECT_EQ(read[1].toObject().size(), 9) << "empty lists are printed";
}

} // namespace
