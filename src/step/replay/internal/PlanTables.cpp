#include "step/replay/internal/PlanTables.h"

namespace Orvex {

bool Words::Hold(std::string_view word) const
{
  for (const char* item : items)
    if (item != nullptr && word == item)
      return true;
  return false;
}

std::vector<std::string> Words::Texts() const
{
  std::vector<std::string> texts;
  for (const char* item : items)
    if (item != nullptr)
      texts.emplace_back(item);
  return texts;
}

namespace {

constexpr Words kSolidParameters{{"faces", "supportFaces", "capFaces", "trimmedFaces"}};

// clang-format off
constexpr StepRow kFaceRows[] = {
  {"define_surface",     "DefineSurface",    "surface", "surfaceDef", Needs::Nothing,     Faces::Own, kNoLists, {"defineSurfaceFromPayload"},    {"faces"},                 {}},
  {"define_trim_loops",  "DefineTrimLoops",  "trim",    "trimDef",    Needs::Previous,    Faces::Own, kNoLists, {"defineTrimLoopsFromPayload"},  {"trimmedFaces", "faces"}, {}},
  {"build_trimmed_face", "BuildTrimmedFace", "face",    "faceResult", Needs::PreviousTwo, Faces::Own, kNoLists, {"buildTrimmedFaceFromPayload"}, {"faces", "trimmedFaces"}, {}},
};

constexpr StrategyRow kStrategyRows[] = {
  {"primitive_box",      {"primitive_box_solid_candidate"}},
  {"primitive_cylinder", {"primitive_cylinder_solid_candidate"}},
  {"primitive_cone",     {"primitive_cone_solid_candidate"}},
  {"primitive_sphere",   {"primitive_sphere_solid_candidate"}},
  {"primitive_torus",    {"primitive_torus_solid_candidate"}},
  {"loft",               {"multi_section_loft_solid_candidate", "trimmed_loft_solid_candidate", "loft_like_solid_candidate"}},
  {"revolve",            {"revolved_body_solid_candidate", "revolve_like_solid_candidate"}},
  {"sweep",              {"prismatic_sweep_solid_candidate", "cut_sweep_solid_candidate", "sweep_like_solid_candidate"}},
  {"boolean",            {"boolean_cut_solid_candidate", "boolean_like_solid_candidate"}, "boolean_fuse_solid_candidate"},
  {"trimmed_freeform",   {"trimmed_freeform_solid_candidate", "trimmed_freeform_shell_candidate", "trimmed_freeform_region_candidate"}},
  {"freeform",           {"freeform_blend_solid_candidate", "freeform_shell_candidate", "freeform_region_candidate"}},
};

constexpr ChoiceRow kChoiceRows[] = {
  {"sweep",              {"prismatic_sweep_solid_candidate",    "sweep_like_solid_candidate"}},
  {"loft",               {"multi_section_loft_solid_candidate", "loft_like_solid_candidate"}},
  {"revolve",            {"revolved_body_solid_candidate",      "revolve_like_solid_candidate"}},
  {"primitive_box",      {"primitive_box_solid_candidate"}},
  {"primitive_cylinder", {"primitive_cylinder_solid_candidate"}},
  {"primitive_cone",     {"primitive_cone_solid_candidate"}},
  {"primitive_sphere",   {"primitive_sphere_solid_candidate"}},
  {"primitive_torus",    {"primitive_torus_solid_candidate"}},
  {"boolean",            {"boolean_cut_solid_candidate",        "boolean_like_solid_candidate"}},
  {"trimmed_freeform",   {"trimmed_freeform_solid_candidate",   "freeform_blend_solid_candidate"}},
  {"freeform",           {"trimmed_freeform_solid_candidate",   "freeform_blend_solid_candidate"}},
};

constexpr ExtractionRow kExtractionRows[] = {
  {{"sweep"},
   {"extract_sweep_profiles", "ExtractSweepProfiles", "section_set", "sectionsResult", Needs::Gathered, Faces::Caps, kCaps,
    {"extractSweepProfilesFromFaces"}, {"sections", "capFaces"}, {"profiles", "caps"}}},
  {{"sweep"},
   {"extract_sweep_guides", "ExtractSweepGuides", "guide_set", "guidesResult", Needs::Gathered, Faces::Supports, kSupports,
    {"extractSweepGuidesFromFaces"}, {"guides", "supportFaces"}, {"support_faces"}}},
  {{"loft"},
   {"extract_loft_sections", "ExtractLoftSections", "section_set", "sectionsResult", Needs::Gathered, Faces::Caps, kCaps,
    {"extractLoftSectionsFromFaces"}, {"sections", "capFaces"}, {"sections", "caps"}}},
  {{"loft"},
   {"extract_loft_rails", "ExtractLoftRails", "guide_set", "guidesResult", Needs::Gathered, Faces::Supports, kSupports,
    {"extractLoftRailsFromFaces"}, {"guides", "supportFaces"}, {"support_faces", "rails"}}},
  {{"revolve"},
   {"extract_revolve_axis", "ExtractRevolveAxis", "axis_set", "axisResult", Needs::Gathered, Faces::Supports, kSupports,
    {"extractRevolveAxisFromFaces"}, {"axisFaces", "guides", "supportFaces"}, {"axis", "support_faces"}}},
  {{"revolve"},
   {"extract_revolve_profile", "ExtractRevolveProfile", "profile_set", "profileResult", Needs::Previous, Faces::CapsOrSupports, kSupports | kCaps,
    {"extractRevolveProfileFromFaces"}, {"profileFaces", "capFaces", "supportFaces"}, {"profile"}}},
  {{"boolean"},
   {"partition_boolean_operands", "PartitionBooleanOperands", "operand_set", "operandsResult", Needs::Gathered, Faces::Own, kAllLists,
    {"partitionBooleanOperandsFromFaces"}, {"operands", "faces", "trimmedFaces"}, {"boolean_operands"}}},
  {{"boolean"},
   {"classify_boolean_roles", "ClassifyBooleanRoles", "cut_set", "cutsResult", Needs::Previous, Faces::Trimmed, kTrimmed,
    {"classifyBooleanRolesFromFaces"}, {"cuts", "trimmedFaces"}, {"cut_faces", "trimmed_faces"}}},
  {{"trimmed_freeform", "freeform"},
   {"extract_freeform_surface_sets", "ExtractFreeformSurfaceSets", "surface_set", "surfaceSetResult", Needs::Gathered, Faces::SupportsOrOwn, kSupports,
    {"extractFreeformSurfaceSetsFromFaces"}, {"surfaceSets", "supportFaces", "faces"}, {"freeform_faces"}}},
  {{"trimmed_freeform", "freeform"},
   {"extract_trimmed_boundaries", "ExtractTrimmedBoundaries", "trim_boundary_set", "trimBoundaryResult", Needs::Previous, Faces::Trimmed, kTrimmed,
    {"extractTrimmedBoundariesFromFaces"}, {"trimBoundaries", "trimmedFaces"}, {"trimmed_faces"}},
   true},
};

constexpr StepRow Rebuild(const char* command, Faces faces, Words api, Words parameters)
{
  return {"build_solid", command, "solid", "solidResult", Needs::Gathered, faces, kAllLists | kShells, api, parameters, {}};
}

constexpr RebuildRow kRebuildRows[] = {
  {{"sweep"},                        Rebuild("Sweep",                 Faces::Listed, {"rebuildSweepFromFaces", "ReplaySweep"},                     {"sections", "guides", "profileFaces"})},
  {{"loft"},                         Rebuild("AdvancedLoft",          Faces::Listed, {"rebuildLoftFromFaces", "ReplayLoft"},                       {"sections", "guides"})},
  {{"revolve"},                      Rebuild("Revolve",               Faces::Listed, {"rebuildRevolveFromFaces", "ReplayRevolve"},                 {"axisFaces", "profileFaces"})},
  {{"boolean"},                      Rebuild("BooleanCut",            Faces::Listed, {"rebuildBooleanFromFaces", "ReplayBoolean"},                 {"operands", "cuts"})},
  {{"trimmed_freeform", "freeform"}, Rebuild("ReplayTrimmedFreeform", Faces::Listed, {"rebuildTrimmedFreeformFromFaces", "ReplayTrimmedFreeform"}, {"surfaceSets", "trimBoundaries"})},
  {{"primitive_box", "primitive_cylinder", "primitive_cone", "primitive_sphere", "primitive_torus"},
                                     Rebuild("BuildPrimitive",        Faces::Listed,       {"buildSolidFromReplay"}, kSolidParameters)},
  {{},                               Rebuild("BuildSolid",            Faces::ListedAndOwn, {"buildSolidFromReplay"}, kSolidParameters)},
};
// clang-format on

} // namespace

const std::span<const StepRow> kFaceSteps = kFaceRows;
const std::span<const StrategyRow> kStrategies = kStrategyRows;
const std::span<const ChoiceRow> kChoices = kChoiceRows;
const std::span<const ExtractionRow> kExtractions = kExtractionRows;
const std::span<const RebuildRow> kRebuilds = kRebuildRows;

// clang-format off
const StepRow kSewStep = {"sew_shell", "Sew", "shell", "shellResult", Needs::Gathered, Faces::Own, kShells,
  {"sewFacesFromPayload", "ReplaySewShell"}, {"faces"}, {}};
const StepRow kValidateShellStep = {"validate_shell", "ValidateShell", "shell", "validationResult", Needs::Previous, Faces::None, kShells,
  {"validateShellReplay"}, {"faces"}, {}};
const StepRow kInferStep = {"infer_primary_rebuild_strategy", "InferReplayStrategy", "strategy", "strategyResult", Needs::Nothing, Faces::Own, kAllLists | kShells,
  {"inferReplayStrategy"}, kSolidParameters, {}};
const StepRow kValidateSolidStep = {"validate_solid", "ValidateSolid", "validation", "validationResult", Needs::Previous, Faces::None, kShells,
  {"validateSolidReplay"}, kSolidParameters, {"geometry_equivalence_required"}};

const ScopeRow kFaceScope =  {"face",  "ReplayFacePlanV1",  "trimmed_face"};
const ScopeRow kShellScope = {"shell", "ReplayShellPlanV1", "shell_sew"};
const ScopeRow kSolidScope = {"solid", "ReplaySolidPlanV1", "generic_brep"};
// clang-format on

} // namespace Orvex
