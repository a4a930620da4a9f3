// What a kind of parametric shape is: its code, its names, its parameters, how it is built.
//
// A kind is one description. The road from arguments to a label and back (creators/
// KindShapeParaCreator.h) works on descriptions, so that a kind states only what sets it apart;
// the same table tells a user which parameters there are, in which units and ranges.
#pragma once

#include "foundation/Export.h"

#include <TDF_Label.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>
#include <gp_Vec.hxx>

#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

class KindShapeParaCreator;

namespace Orvex {

using PointList = std::vector<gp_Pnt>;

// The value of one parameter. A direction and a vector are stored as a point with their components;
// a direction is made a unit vector when it is read, a vector is not.
using ParameterValue = std::variant<gp_Pnt, gp_Dir, gp_Vec, double, int, TopoDS_Shape, PointList>;

// Which reals are stored.
enum class StoreRule {
  Always,           // every value as given
  OnlyPositive,     // a value that is not above zero leaves the earlier one in place
  PositiveOrMessage // and tells the user "Negative Value"
};

// How a real or a point is read back.
enum class ReadRule {
  Stored,   // the value attribute as it is
  Reference // a reference on the parameter first; a real as its absolute value
};

// The unit of a number.
enum class Unit { None, Length, Degrees, Radians };

// The numbers that give a shape.
struct ValueRange
{
  double from = -std::numeric_limits<double>::infinity();
  double to = std::numeric_limits<double>::infinity();
  bool fromExcluded = false;

  // False for a NaN and for the infinities.
  ORVEX_API bool Holds(double value) const;
  // "(0, 360]"; "any" for an unlimited range.
  ORVEX_API std::string Text() const;
};

struct ParameterField
{
  // The text on the parameter's label.
  const char* name;
  // Its type, and the value that a parameter has before anything was read.
  ParameterValue initial;
  ReadRule read = ReadRule::Stored;
  StoreRule store = StoreRule::Always;
  Unit unit = Unit::None;
  ValueRange range = {};
  // What a form fills in for a new shape; none where only the user can know.
  std::optional<ParameterValue> preset = std::nullopt;
};

// One parameter as a label holds it.
struct HeldParameter
{
  const ParameterField* field;
  // As stored, whatever the parameter follows; a direction as a vector, which may be zero.
  ParameterValue value;
  // What the parameter follows: a number or the name of a global parameter. Empty for nothing.
  std::string reference;
};

// The values of one shape's parameters, in the order of the kind's fields.
using ParameterSet = std::vector<ParameterValue>;

struct ShapeKind
{
  // Word for the kind: on the command line and in messages.
  const char* word;
  // Code on the type child (Orvex::PrimitiveType).
  int typeCode;
  // The display name of a new shape: this text, and the running number if `numbered`.
  const char* namePrefix;
  bool numbered = true;
  // Type word of the feature record; null for a kind that is never registered.
  const char* featureType = nullptr;
  // Registered even while the parametric manager is switched off.
  bool alwaysRegistered = false;
  // A rebuild puts the shape on its label inside a document command.
  bool rebuildsInCommand = false;
  // A move changes the parameters, and a clone is a fresh shape of the kind; otherwise both work on
  // the stored shape.
  bool movesParameters = true;
  // Its element word is "Solid", else "Shell".
  bool isSolid = false;
  // The parameters in the order of their tags.
  std::span<const ParameterField> fields;
  // The shape from its parameters. A null shape refuses them; a failure of the kernel passes.
  TopoDS_Shape (*build)(const ParameterSet&);
  // Brings parameters that were read for a rebuild into range; null for none.
  void (*clamp)(ParameterSet&) = nullptr;
  // What must hold between the parameters, beyond their ranges; for people. Null for nothing.
  const char* condition = nullptr;
  // A creator of the kind on the heap, and a rebuild through one on the stack.
  KindShapeParaCreator* (*make)();
  void (*update)(TDF_Label&);
};

// All kinds with parameters, in the order of their codes.
ORVEX_API std::span<const ShapeKind* const> ShapeKinds();

// The kind with a type code, or with a word (ASCII letters in any case); null if there is none.
ORVEX_API const ShapeKind* KindOfCode(int typeCode);
ORVEX_API const ShapeKind* KindOfWord(const std::string& word);

// Makes the shape on a label again from the parameters there. What is called answers false, and
// changes nothing, when the label bears no shape of the kind any more; a failure of the kernel
// passes.
using RebuildFunction = std::function<bool()>;
ORVEX_API RebuildFunction RebuildOf(const ShapeKind& kind, const TDF_Label& label);

} // namespace Orvex
