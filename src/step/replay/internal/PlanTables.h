// What plans are made of: every step there is, which candidates give which strategy, and what a
// strategy asks for on the way to its solid. Rows only; StepReplayPlanBuilder reads them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvex {

// A few words; null ends them.
struct Words
{
  const char* items[6];

  bool Hold(std::string_view word) const;
  std::vector<std::string> Texts() const;
};

// The steps that a step depends on.
enum class Needs {
  Nothing,
  Previous,    // the step before it
  PreviousTwo, // the two steps before it
  Gathered     // those that were gathered for it: faces to sew, or shells and what was inferred
};

// The faces that a step works on; "own" are those of its face, shell or solid.
enum class Faces {
  None,
  Own,
  Caps,
  Supports,
  Trimmed,
  CapsOrSupports, // supports when there are no caps
  SupportsOrOwn,  // its own when there are no supports
  Listed,         // supports, caps and trimmed faces together
  ListedAndOwn
};

// The further lists that a step is given; add them.
enum Lists : unsigned {
  kNoLists = 0,
  kSupports = 1,
  kCaps = 2,
  kTrimmed = 4,
  kAllLists = kSupports | kCaps | kTrimmed,
  kShells = 8
};

struct StepRow
{
  const char* kind;
  const char* commandName;
  const char* targetKind;
  const char* resultKey;
  Needs needs;
  Faces faces;
  unsigned lists;
  Words apiCandidates;
  Words parameterKeys;
  Words tags;
};

// The three steps of one face.
extern const std::span<const StepRow> kFaceSteps;
extern const StepRow kSewStep;
extern const StepRow kValidateShellStep;
extern const StepRow kInferStep;
extern const StepRow kValidateSolidStep;

struct StrategyRow
{
  const char* strategy;
  // Any of them among the hints.
  Words candidateKinds;
  // Speaks for the semantic strategy alone; null for none.
  const char* semanticKind = nullptr;
};
// The first row that fits counts.
extern const std::span<const StrategyRow> kStrategies;

struct ScopeRow
{
  const char* scope;
  const char* contractName;
  // Where no candidate speaks for another.
  const char* strategy;
};
extern const ScopeRow kFaceScope;
extern const ScopeRow kShellScope;
extern const ScopeRow kSolidScope;

// Whose lists of faces a strategy works with.
struct ChoiceRow
{
  const char* strategy;
  // The best one first.
  Words candidateKinds;
};
extern const std::span<const ChoiceRow> kChoices;

// A step between the shells and the solid.
struct ExtractionRow
{
  Words strategies;
  StepRow step;
  bool onlyWithTrimmedFaces = false;
};
extern const std::span<const ExtractionRow> kExtractions;

struct RebuildRow
{
  // None in the last row: any other strategy.
  Words strategies;
  StepRow step;
};
extern const std::span<const RebuildRow> kRebuilds;

} // namespace Orvex
