// Plans of small models, step by step.
#include "step/replay/StepReplayPlanBuilder.h"
#include "step/replay/StepFeatureRecognizer.h"

#include "support/SummaryModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace {

using namespace Orvex;
using OrvexTest::Ids;
using OrvexTest::SummaryModel;
using testing::ElementsAre;
using testing::IsEmpty;
using Candidates = std::vector<ReplayFeatureCandidate>;
using Texts = std::vector<std::string>;

const StepReplayPlanBuilder kBuilder;

template <typename Item>
void Print(std::ostream& out, const char* name, const std::vector<Item>& items)
{
  if (items.empty())
    return;
  out << ' ' << name;
  const char* separator = "(";
  for (const Item& item : items)
    out << std::exchange(separator, " ") << item;
  out << ')';
}

// "4 sew_shell shell 1 needs(3) faces(1) shells(1)": what differs from plan to plan.
std::string Course(const ReplayPlanStep& step)
{
  std::ostringstream out;
  out << step.id << ' ' << step.kind << ' ' << step.scope << ' ' << step.entityId;
  Print(out, "needs", step.dependsOn);
  Print(out, "faces", step.faceIds);
  Print(out, "shells", step.shellIds);
  Print(out, "solids", step.solidIds);
  Print(out, "supports", step.supportFaceIds);
  Print(out, "caps", step.capFaceIds);
  Print(out, "trimmed", step.trimmedFaceIds);
  Print(out, "tags", step.tags);
  return out.str();
}

Texts Courses(const ReplayPlan& plan, std::size_t skipped = 0)
{
  Texts texts;
  for (std::size_t i = skipped; i < plan.steps.size(); ++i)
    texts.push_back(Course(plan.steps[i]));
  return texts;
}

// "Sew shell shellResult api(...) keys(...)": what a kind of step always says.
std::string Words(const ReplayPlanStep& step)
{
  std::ostringstream out;
  out << step.commandName << ' ' << step.targetKind << ' ' << step.resultKey;
  Print(out, "api", step.apiCandidates);
  Print(out, "keys", step.parameterKeys);
  return out.str();
}

std::string Strategies(const ReplayPlan& plan)
{
  return std::string().append(plan.primaryStrategy).append("/").append(plan.semanticStrategy);
}

struct Lists
{
  Ids supports, caps, trimmed;
};

ReplayFeatureCandidate OfSolid(const std::string& kind, double confidence = 0.5,
                               const Lists& lists = {}, ReplayId solid = 1)
{
  ReplayFeatureCandidate candidate;
  candidate.kind = kind;
  candidate.confidence = confidence;
  candidate.solidIds = {solid};
  candidate.supportFaceIds = lists.supports;
  candidate.capFaceIds = lists.caps;
  candidate.trimmedFaceIds = lists.trimmed;
  return candidate;
}

// Solid 1 with shell 1 (faces 4 and 2) and shell 2 (faces 2 and 7), of which the summary holds
// none.
ReplayIRSummary TwoShells()
{
  SummaryModel model;
  model.AddShell({4, 2});
  model.AddShell({2, 7}, false);
  model.AddSolid({1, 2});
  return model.summary;
}

// Behind the steps of TwoShells() that sew its shells, in 7 and 14.
constexpr std::size_t kSewn = 14;

TEST(StepReplayPlanBuilder, FacePlan)
{
  const ReplayIRSummary box = OrvexTest::HoledBox().summary;
  ReplayFeatureCandidate region;
  region.kind = "planar_region_candidate";
  region.faceIds = {5, 6};
  ReplayFeatureCandidate face = region;
  face.kind = "analytic_plane_face";
  const ReplayPlan plan = kBuilder.BuildFacePlan(box, {region, face, OfSolid("other")}, 5);
  EXPECT_EQ(plan.scope, "face");
  EXPECT_EQ(plan.entityId, 5U);
  EXPECT_EQ(plan.contractName, "ReplayFacePlanV1");
  EXPECT_EQ(Strategies(plan), "trimmed_face/trimmed_face");
  EXPECT_THAT(plan.featureHints, ElementsAre("analytic_plane_face", "planar_region_candidate"));
  const std::string hints = " tags(analytic_plane_face planar_region_candidate)";
  EXPECT_THAT(
    Courses(plan),
    ElementsAre("1 define_surface face 5 faces(5)" + hints,
                "2 define_trim_loops face 5 needs(1) faces(5) tags(has_inner_loops has_edges)",
                "3 build_trimmed_face face 5 needs(1 2) faces(5)" + hints));
  EXPECT_THAT(kBuilder.BuildFacePlan(box, {}, 1).steps[1].tags, ElementsAre("has_edges"));
}

TEST(StepReplayPlanBuilder, ShellPlan)
{
  SummaryModel model;
  model.AddShell({9, 3});
  model.AddShell({}, false);
  ReplayFeatureCandidate candidate;
  candidate.kind = "analytic_shell_candidate";
  candidate.shellIds = {1};
  ReplayPlan plan = kBuilder.BuildShellPlan(model.summary, {candidate}, 1);
  EXPECT_EQ(plan.scope, "shell");
  EXPECT_EQ(plan.contractName, "ReplayShellPlanV1");
  EXPECT_EQ(Strategies(plan), "shell_sew/shell_sew");
  EXPECT_THAT(
    Courses(plan),
    ElementsAre("1 define_surface face 9 faces(9)", "2 define_trim_loops face 9 needs(1) faces(9)",
                "3 build_trimmed_face face 9 needs(1 2) faces(9)",
                "4 define_surface face 3 faces(3)", "5 define_trim_loops face 3 needs(4) faces(3)",
                "6 build_trimmed_face face 3 needs(4 5) faces(3)",
                "7 sew_shell shell 1 needs(3 6) faces(9 3) shells(1)"
                " tags(analytic_shell_candidate closed_shell)",
                "8 validate_shell shell 1 needs(7) shells(1) tags(expect_closed)"));
  EXPECT_THAT(
    Courses(kBuilder.BuildShellPlan(model.summary, {candidate}, 2)),
    ElementsAre("1 sew_shell shell 2 shells(2)", "2 validate_shell shell 2 needs(1) shells(2)"));
}

TEST(StepReplayPlanBuilder, BoxIsAPrimitiveInTwentyTwoSteps)
{
  const ReplayIRSummary box = OrvexTest::Box().summary;
  const ReplayPlan plan =
    kBuilder.BuildSolidPlan(box, StepFeatureRecognizer().RecognizeSummaryCandidates(box), 1);
  EXPECT_EQ(plan.scope, "solid");
  EXPECT_EQ(plan.contractName, "ReplaySolidPlanV1");
  EXPECT_EQ(Strategies(plan), "primitive_box/primitive_box");
  ASSERT_EQ(plan.steps.size(), 22U);
  EXPECT_EQ(Course(plan.steps[17]), "18 build_trimmed_face face 6 needs(16 17) faces(6)");
  const std::string hints = " tags(primitive_box_solid_candidate)";
  EXPECT_THAT(
    Courses(plan, 18),
    ElementsAre("19 sew_shell shell 1 needs(3 6 9 12 15 18) faces(1 2 3 4 5 6) shells(1)",
                "20 infer_primary_rebuild_strategy solid 1 faces(1 2 3 4 5 6) shells(1) solids(1)"
                " caps(1 2 3 4 5 6)" +
                  hints,
                "21 build_solid solid 1 needs(19 20) faces(1 2 3 4 5 6) shells(1) solids(1)"
                " caps(1 2 3 4 5 6)" +
                  hints,
                "22 validate_solid solid 1 needs(21) faces(1 2 3 4 5 6) shells(1) solids(1)"
                " tags(geometry_equivalence_required)"));
  for (const ReplayPlanStep& step : plan.steps)
    EXPECT_EQ(step.contractName, "ReplayCommandV1");
}

TEST(StepReplayPlanBuilder, GenericSolidTakesAllFaces)
{
  const ReplayPlan plan = kBuilder.BuildSolidPlan(
    TwoShells(), {OfSolid("boolean_fuse_solid_candidate", 1, {{1}, {2}, {3}})}, 1);
  EXPECT_EQ(Strategies(plan), "generic_brep/boolean");
  const std::string hints = " tags(boolean_fuse_solid_candidate)";
  EXPECT_THAT(
    Courses(plan, 6),
    ElementsAre(
      "7 sew_shell shell 1 needs(3 6) faces(4 2) shells(1)", "8 define_surface face 2 faces(2)",
      "9 define_trim_loops face 2 needs(8) faces(2)",
      "10 build_trimmed_face face 2 needs(8 9) faces(2)", "11 define_surface face 7 faces(7)",
      "12 define_trim_loops face 7 needs(11) faces(7)",
      "13 build_trimmed_face face 7 needs(11 12) faces(7)",
      "14 sew_shell shell 2 needs(10 13) faces(2 7) shells(2)",
      "15 infer_primary_rebuild_strategy solid 1 faces(2 4 7) shells(1 2) solids(1)" + hints,
      "16 build_solid solid 1 needs(7 14 15) faces(2 4 7) shells(1 2) solids(1)" + hints,
      "17 validate_solid solid 1 needs(16) faces(2 4 7) shells(1 2) solids(1)"
      " tags(geometry_equivalence_required)"));
}

struct StrategyCase
{
  std::string candidate;
  std::string strategy;
  Lists lists;
  // Of the steps between the inference and the validation.
  Texts steps;
};

// clang-format off
const std::vector<StrategyCase> kSolidCases = {
  {"prismatic_sweep_solid_candidate", "sweep", {{7, 5, 7}, {2, 1}, {9}}, {
    "16 extract_sweep_profiles solid 1 needs(7 14 15) faces(1 2) solids(1) caps(1 2) tags(profiles caps)",
    "17 extract_sweep_guides solid 1 needs(7 14 15) faces(5 7) solids(1) supports(5 7) tags(support_faces)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(1 2 5 7 9) shells(1 2) solids(1) supports(5 7) caps(1 2) trimmed(9) tags(prismatic_sweep_solid_candidate)"}},
  {"multi_section_loft_solid_candidate", "loft", {{5}, {1, 2}, {}}, {
    "16 extract_loft_sections solid 1 needs(7 14 15) faces(1 2) solids(1) caps(1 2) tags(sections caps)",
    "17 extract_loft_rails solid 1 needs(7 14 15) faces(5) solids(1) supports(5) tags(support_faces rails)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(1 2 5) shells(1 2) solids(1) supports(5) caps(1 2) tags(multi_section_loft_solid_candidate)"}},
  {"revolved_body_solid_candidate", "revolve", {{5, 6}, {}, {}}, {
    "16 extract_revolve_axis solid 1 needs(7 14 15) faces(5 6) solids(1) supports(5 6) tags(axis support_faces)",
    "17 extract_revolve_profile solid 1 needs(16) faces(5 6) solids(1) supports(5 6) tags(profile)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(5 6) shells(1 2) solids(1) supports(5 6) tags(revolved_body_solid_candidate)"}},
  {"revolve_like_solid_candidate", "revolve", {{5, 6}, {1}, {}}, {
    "16 extract_revolve_axis solid 1 needs(7 14 15) faces(5 6) solids(1) supports(5 6) tags(axis support_faces)",
    "17 extract_revolve_profile solid 1 needs(16) faces(1) solids(1) supports(5 6) caps(1) tags(profile)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(1 5 6) shells(1 2) solids(1) supports(5 6) caps(1) tags(revolve_like_solid_candidate)"}},
  {"boolean_cut_solid_candidate", "boolean", {{7}, {4}, {2}}, {
    "16 partition_boolean_operands solid 1 needs(7 14 15) faces(2 4 7) solids(1) supports(7) caps(4) trimmed(2) tags(boolean_operands)",
    "17 classify_boolean_roles solid 1 needs(16) faces(2) solids(1) trimmed(2) tags(cut_faces trimmed_faces)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(2 4 7) shells(1 2) solids(1) supports(7) caps(4) trimmed(2) tags(boolean_cut_solid_candidate)"}},
  {"trimmed_freeform_solid_candidate", "trimmed_freeform", {{7}, {}, {2}}, {
    "16 extract_freeform_surface_sets solid 1 needs(7 14 15) faces(7) solids(1) supports(7) tags(freeform_faces)",
    "17 extract_trimmed_boundaries solid 1 needs(16) faces(2) solids(1) trimmed(2) tags(trimmed_faces)",
    "18 build_solid solid 1 needs(7 14 15 16 17) faces(2 7) shells(1 2) solids(1) supports(7) trimmed(2) tags(trimmed_freeform_solid_candidate)"}},
  {"freeform_blend_solid_candidate", "freeform", {}, {
    "16 extract_freeform_surface_sets solid 1 needs(7 14 15) faces(2 4 7) solids(1) tags(freeform_faces)",
    "17 build_solid solid 1 needs(7 14 15 16) shells(1 2) solids(1) tags(freeform_blend_solid_candidate)"}},
  {"primitive_torus_solid_candidate", "primitive_torus", {{7}, {}, {}}, {
    "16 build_solid solid 1 needs(7 14 15) faces(7) shells(1 2) solids(1) supports(7) tags(primitive_torus_solid_candidate)"}},
};
// clang-format on

TEST(StepReplayPlanBuilder, StepsByStrategy)
{
  for (const StrategyCase& one : kSolidCases) {
    SCOPED_TRACE(one.candidate);
    const ReplayPlan plan =
      kBuilder.BuildSolidPlan(TwoShells(), {OfSolid(one.candidate, 0.5, one.lists)}, 1);
    EXPECT_EQ(plan.primaryStrategy, one.strategy);
    ASSERT_EQ(plan.steps.size(), kSewn + 1 + one.steps.size() + 1);
    EXPECT_EQ(plan.steps[kSewn].kind, "infer_primary_rebuild_strategy");
    Texts middle = Courses(plan, kSewn + 1);
    middle.pop_back();
    EXPECT_EQ(middle, one.steps);
    const ReplayPlanStep& validation = plan.steps.back();
    EXPECT_EQ(validation.faceIds, plan.steps.end()[-2].faceIds);
    EXPECT_THAT(validation.dependsOn, ElementsAre(validation.id - 1));
    EXPECT_THAT(validation.supportFaceIds, IsEmpty());
  }
}

TEST(StepReplayPlanBuilder, WordsOfEachKindOfStep)
{
  const std::string all =
    " api(buildSolidFromReplay) keys(faces supportFaces capFaces trimmedFaces)";
  // clang-format off
  const std::map<std::string, std::string> expected = {
    {"define_surface", "DefineSurface surface surfaceDef api(defineSurfaceFromPayload) keys(faces)"},
    {"define_trim_loops", "DefineTrimLoops trim trimDef api(defineTrimLoopsFromPayload) keys(trimmedFaces faces)"},
    {"build_trimmed_face", "BuildTrimmedFace face faceResult api(buildTrimmedFaceFromPayload) keys(faces trimmedFaces)"},
    {"sew_shell", "Sew shell shellResult api(sewFacesFromPayload ReplaySewShell) keys(faces)"},
    {"validate_shell", "ValidateShell shell validationResult api(validateShellReplay) keys(faces)"},
    {"infer_primary_rebuild_strategy", "InferReplayStrategy strategy strategyResult api(inferReplayStrategy) keys(faces supportFaces capFaces trimmedFaces)"},
    {"extract_sweep_profiles", "ExtractSweepProfiles section_set sectionsResult api(extractSweepProfilesFromFaces) keys(sections capFaces)"},
    {"extract_sweep_guides", "ExtractSweepGuides guide_set guidesResult api(extractSweepGuidesFromFaces) keys(guides supportFaces)"},
    {"extract_loft_sections", "ExtractLoftSections section_set sectionsResult api(extractLoftSectionsFromFaces) keys(sections capFaces)"},
    {"extract_loft_rails", "ExtractLoftRails guide_set guidesResult api(extractLoftRailsFromFaces) keys(guides supportFaces)"},
    {"extract_revolve_axis", "ExtractRevolveAxis axis_set axisResult api(extractRevolveAxisFromFaces) keys(axisFaces guides supportFaces)"},
    {"extract_revolve_profile", "ExtractRevolveProfile profile_set profileResult api(extractRevolveProfileFromFaces) keys(profileFaces capFaces supportFaces)"},
    {"partition_boolean_operands", "PartitionBooleanOperands operand_set operandsResult api(partitionBooleanOperandsFromFaces) keys(operands faces trimmedFaces)"},
    {"classify_boolean_roles", "ClassifyBooleanRoles cut_set cutsResult api(classifyBooleanRolesFromFaces) keys(cuts trimmedFaces)"},
    {"extract_freeform_surface_sets", "ExtractFreeformSurfaceSets surface_set surfaceSetResult api(extractFreeformSurfaceSetsFromFaces) keys(surfaceSets supportFaces faces)"},
    {"extract_trimmed_boundaries", "ExtractTrimmedBoundaries trim_boundary_set trimBoundaryResult api(extractTrimmedBoundariesFromFaces) keys(trimBoundaries trimmedFaces)"},
    {"sweep build_solid", "Sweep solid solidResult api(rebuildSweepFromFaces ReplaySweep) keys(sections guides profileFaces)"},
    {"loft build_solid", "AdvancedLoft solid solidResult api(rebuildLoftFromFaces ReplayLoft) keys(sections guides)"},
    {"revolve build_solid", "Revolve solid solidResult api(rebuildRevolveFromFaces ReplayRevolve) keys(axisFaces profileFaces)"},
    {"boolean build_solid", "BooleanCut solid solidResult api(rebuildBooleanFromFaces ReplayBoolean) keys(operands cuts)"},
    {"trimmed_freeform build_solid", "ReplayTrimmedFreeform solid solidResult api(rebuildTrimmedFreeformFromFaces ReplayTrimmedFreeform) keys(surfaceSets trimBoundaries)"},
    {"freeform build_solid", "ReplayTrimmedFreeform solid solidResult api(rebuildTrimmedFreeformFromFaces ReplayTrimmedFreeform) keys(surfaceSets trimBoundaries)"},
    {"primitive_torus build_solid", "BuildPrimitive solid solidResult" + all},
    {"primitive_sphere build_solid", "BuildPrimitive solid solidResult" + all},
    {"generic_brep build_solid", "BuildSolid solid solidResult" + all},
    {"validate_solid", "ValidateSolid validation validationResult api(validateSolidReplay) keys(faces supportFaces capFaces trimmedFaces)"},
  };
  // clang-format on
  std::vector<ReplayPlan> plans = {
    kBuilder.BuildShellPlan(TwoShells(), {}, 1), kBuilder.BuildSolidPlan(TwoShells(), {}, 1),
    kBuilder.BuildSolidPlan(TwoShells(), {OfSolid("primitive_sphere_solid_candidate")}, 1)};
  for (const StrategyCase& one : kSolidCases)
    plans.push_back(
      kBuilder.BuildSolidPlan(TwoShells(), {OfSolid(one.candidate, 0.5, one.lists)}, 1));
  std::map<std::string, std::string> found;
  for (const ReplayPlan& plan : plans)
    for (const ReplayPlanStep& step : plan.steps) {
      std::string name = step.kind;
      if (step.kind == "build_solid")
        name = std::string(plan.primaryStrategy).append(" build_solid");
      EXPECT_EQ(found.emplace(name, Words(step)).first->second, Words(step)) << name;
    }
  EXPECT_EQ(found, expected);
}

// Each takes precedence over those below it.
// clang-format off
const std::vector<std::pair<std::string, Texts>> kStrategyRows = {
  {"primitive_box", {"primitive_box_solid_candidate"}},
  {"primitive_cylinder", {"primitive_cylinder_solid_candidate"}},
  {"primitive_cone", {"primitive_cone_solid_candidate"}},
  {"primitive_sphere", {"primitive_sphere_solid_candidate"}},
  {"primitive_torus", {"primitive_torus_solid_candidate"}},
  {"loft", {"multi_section_loft_solid_candidate", "trimmed_loft_solid_candidate", "loft_like_solid_candidate"}},
  {"revolve", {"revolved_body_solid_candidate", "revolve_like_solid_candidate"}},
  {"sweep", {"prismatic_sweep_solid_candidate", "cut_sweep_solid_candidate", "sweep_like_solid_candidate"}},
  {"boolean", {"boolean_cut_solid_candidate", "boolean_like_solid_candidate"}},
  {"trimmed_freeform", {"trimmed_freeform_solid_candidate", "trimmed_freeform_shell_candidate", "trimmed_freeform_region_candidate"}},
  {"freeform", {"freeform_blend_solid_candidate", "freeform_shell_candidate", "freeform_region_candidate"}},
};
// clang-format on

TEST(StepReplayPlanBuilder, StrategyIsTheFirstRowWithAHint)
{
  const auto strategies = [](const Texts& kinds) {
    Candidates candidates;
    for (const std::string& kind : kinds)
      candidates.push_back(OfSolid(kind));
    return Strategies(kBuilder.BuildSolidPlan(TwoShells(), candidates, 1));
  };
  Texts below = {"analytic_shell_candidate"};
  for (auto row = kStrategyRows.rbegin(); row != kStrategyRows.rend(); ++row) {
    for (const std::string& kind : row->second) {
      Texts hints = below;
      hints.push_back(kind);
      EXPECT_EQ(strategies(hints), std::string(row->first).append("/").append(row->first)) << kind;
    }
    below.insert(below.end(), row->second.begin(), row->second.end());
  }
  EXPECT_EQ(strategies({}), "generic_brep/generic_brep");
  const std::string fuse = "boolean_fuse_solid_candidate";
  EXPECT_EQ(strategies({fuse, "freeform_shell_candidate"}), "freeform/boolean");
  EXPECT_EQ(strategies({fuse, "revolve_like_solid_candidate"}), "revolve/revolve");
}

TEST(StepReplayPlanBuilder, BestCandidateOfTheSolidGivesTheLists)
{
  const auto capsOf = [](const Candidates& candidates) {
    return kBuilder.BuildSolidPlan(TwoShells(), candidates, 1).steps[kSewn].capFaceIds;
  };
  const auto sweep = [](const std::string& word, double confidence, ReplayId cap,
                        ReplayId solid = 1) {
    return OfSolid(word + "_sweep_solid_candidate", confidence, {{}, {cap}, {}}, solid);
  };
  const ReplayFeatureCandidate like = OfSolid("sweep_like_solid_candidate", 0.99, {{}, {8}, {}});
  EXPECT_THAT(capsOf({like, sweep("prismatic", 0.1, 1)}), ElementsAre(1)) << "kind over confidence";
  EXPECT_THAT(capsOf({sweep("prismatic", 0.4, 1), sweep("prismatic", 0.5, 2),
                      sweep("prismatic", 0.5, 3), sweep("prismatic", 0.9, 4, 2)}),
              ElementsAre(2))
    << "confidence, then order; not of another solid";
  EXPECT_THAT(capsOf({sweep("cut", 1, 1), like}), ElementsAre(8));
  EXPECT_THAT(capsOf({sweep("cut", 1, 1)}), IsEmpty()) << "gives the strategy, but no lists";
  EXPECT_THAT(capsOf({OfSolid("freeform_shell_candidate"),
                      OfSolid("trimmed_loft_solid_candidate", 1, {{}, {5}, {}}),
                      OfSolid("loft_like_solid_candidate", 0.1, {{}, {6}, {}})}),
              ElementsAre(6));
}

TEST(StepReplayPlanBuilder, IdsThatNoRecordHas)
{
  const ReplayId huge = std::numeric_limits<ReplayId>::max();
  for (const ReplayId id : {ReplayId{0}, ReplayId{2}, huge})
    for (const ReplayIRSummary& summary : {ReplayIRSummary(), TwoShells()}) {
      const ReplayPlan plan =
        kBuilder.BuildSolidPlan(summary, {OfSolid("loft_like_solid_candidate", 1, {}, id)}, id);
      EXPECT_EQ(plan.entityId, id);
      EXPECT_EQ(Strategies(plan), "loft/loft");
      EXPECT_EQ(plan.contractName, "ReplaySolidPlanV1");
      EXPECT_THAT(plan.featureHints, ElementsAre("loft_like_solid_candidate"));
      EXPECT_THAT(plan.steps, IsEmpty());
      EXPECT_THAT(kBuilder.BuildFacePlan(summary, {}, id).steps, IsEmpty());
    }
  EXPECT_THAT(kBuilder.BuildShellPlan(TwoShells(), {}, 3).steps, IsEmpty());

  ReplayIRSummary summary = TwoShells();
  summary.solids[0].shellIds = {huge, 2, 0};
  summary.shells[1].faceIds = {huge};
  const ReplayPlan plan = kBuilder.BuildSolidPlan(summary, {}, 1);
  EXPECT_EQ(plan.steps.size(), 7U) << "only the known shell is sewn";
  EXPECT_THAT(plan.steps[0].faceIds, ElementsAre(huge));
  EXPECT_THAT(plan.steps.back().shellIds, ElementsAre(huge, 2, 0));

  summary.solids[0].shellIds.clear();
  EXPECT_THAT(Courses(kBuilder.BuildSolidPlan(summary, {}, 1)),
              ElementsAre("1 infer_primary_rebuild_strategy solid 1 solids(1)",
                          "2 build_solid solid 1 needs(1) solids(1)",
                          "3 validate_solid solid 1 needs(2) solids(1)"
                          " tags(geometry_equivalence_required)"));
}

} // namespace
