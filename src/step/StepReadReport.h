// What a STEP read found in a file, and what the translation complained of or lost.
//
// Geometry can vanish while the kernel reports success: a dangling reference turns a solid into an
// open shell with a face less, a reference of the wrong type drops a solid altogether. `losses`
// names such entities; it is empty for a read that lost nothing. The count of entities in error is
// no such sign: sound files have hundreds (annotations that the kernel does not understand, say).
#pragma once

#include <string>
#include <vector>

namespace Orvex {

// One complaint of the kernel about one entity.
struct StepMessage
{
  int entityId = 0;            // the number in "#123"; 0: about the file as a whole
  std::string entityType;      // "ADVANCED_FACE"; names of a complex entity joined with "+"
  std::string text;            // the kernel's words
  bool isFailure = false;      // else a warning
  bool duringTransfer = false; // else while loading the file
};

// One solid or face of the file that did not come out as one.
struct StepLoss
{
  int entityId = 0;
  std::string entityType;
  std::string outcome; // "nothing came out", "came out as an open shell", ...
};

// Linear RGB in 0..1.
struct StepColor
{
  double r = 0.0, g = 0.0, b = 0.0;

  bool operator==(const StepColor&) const = default;
};

struct StepReadReport
{
  // False: nothing was asked for, or the file could not be loaded. Then all else is empty, but for
  // the reasons of the parser among the messages of an isolated read.
  bool collected = false;

  std::string schema;                   // as in the file's header
  std::string lengthUnit;               // "millimetre", "inch", ...; empty: the file names none
  double lengthUnitInMillimetres = 0.0; // the factor that was applied to lengths; 0: unknown

  int roots = 0;           // entities that the kernel takes as roots of the translation
  int freeShapes = 0;      // top-level shapes that came out
  int assemblies = 0;      // products that are assemblies
  int parts = 0;           // products that are not
  int components = 0;      // occurrences as the file has them: one per product and place in it
  int namedProducts = 0;   // products with a name
  int namedComponents = 0; // occurrences with a name of their own
  std::vector<StepColor> colors; // distinct ones, in the order in which they came up

  int entities = 0;        // in the file's data section
  int entitiesInError = 0; // of these, those that the kernel could not load properly
  int solidsInFile = 0;    // solid entities that the translation should make solids of
  int solidsOut = 0;       // distinct solids that came out, however often they are placed
  int facesInFile = 0;
  int facesOut = 0;
  std::vector<StepMessage> messages; // load phase first, then transfer, each in file order
  std::vector<StepLoss> losses;      // in file order
};

} // namespace Orvex
