// The operations of the command line: a table with a row for each.
//
// A row tells what an operation is called, what it takes, which options it has with their ranges
// and defaults, and how it is run. Reading the command line and the files, the checks, the
// messages, the list, writing and reporting are the same for all. To add one: a row in the table of
// its family; to add a family: a function beside those below and a call in OperationTable.cpp.
#pragma once

#include "creators/ShapeKind.h"
#include "model/FileFormat.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvex::Cli {

struct OperationOption
{
  // Name, type, unit, range, and the default, without which the option must be given. An option of
  // type shape names a file, too.
  ParameterField field;
  const char* help = "";
  // For an integer that people write as a word: the words for 0, 1, 2, ...
  std::span<const char* const> words = {};
};

// Yes or no, as an integer.
inline constexpr const char* kNoYes[] = {"no", "yes"};

struct Operation;

// One run: the shapes of the inputs in their order, and a value for each option.
struct OperationCall
{
  const Operation& operation;
  std::vector<TopoDS_Shape> inputs;
  ParameterSet values;

  // The value of an option by its name. An option without a default that is a shape may be null.
  // Errors: std::logic_error for a name or type that the table does not have.
  double Real(const char* name) const;
  int Integer(const char* name) const;
  bool Flag(const char* name) const;
  gp_Vec Vector(const char* name) const;
  gp_Dir Direction(const char* name) const;
  PointList Points(const char* name) const;
  TopoDS_Shape Shape(const char* name) const;
};

struct OperationOutcome
{
  // Null: the operation gives no shape, or failed.
  TopoDS_Shape shape;
  // What else it found: numbers, words, truths by name.
  QJsonObject facts = {};
  // What a user should know about the way to the result, such as which attempts failed and why.
  QStringList notes = {};
  // Why there is no shape, if the operation knows.
  QString reason = {};
};

struct Operation
{
  static constexpr int kAnyNumber = std::numeric_limits<int>::max();

  const char* name;
  const char* summary;
  // What the inputs are, for people, and how many of them.
  const char* inputs;
  int fewestInputs;
  int mostInputs;
  std::vector<OperationOption> options;
  // May throw: a Failure of the command line as it is, anything else is reported as the kernel's.
  OperationOutcome (*run)(const OperationCall& call);
  // Whether there must be a shape afterwards, which can be written.
  bool givesShape = true;
  // The only format that the result can be written in; none: by the ending of the name.
  std::optional<FileFormat> onlyFormat = std::nullopt;
};

// All operations, by family and in the order in which they are shown.
std::span<const Operation* const> Operations();

// Errors: a Failure (ExitCode::Usage) that names the operations there are.
const Operation& OperationNamed(const std::string& name);

// The families.
std::span<const Operation> BooleanOperations();
std::span<const Operation> SolidOperations();
std::span<const Operation> CurveOperations();
std::span<const Operation> SurfaceOperations();
std::span<const Operation> NurbsOperations();
std::span<const Operation> InspectOperations();

} // namespace Orvex::Cli
