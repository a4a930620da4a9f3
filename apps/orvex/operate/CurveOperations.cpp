// Extension, offset and trim of curves.
#include "operate/OperationOptions.h"

#include "operations/CurveOp.h"

namespace Orvex::Cli {

namespace {

constexpr const char* kEnds[] = {"start", "end"};

OperationOutcome Extend(const OperationCall& call)
{
  return {CurveOp::ExtendCurve(call.inputs[0], call.Real("distance"), call.Flag("at")),
          {},
          {},
          QStringLiteral("the curve has no end to go on from, such as a circle's")};
}

OperationOutcome Offset(const OperationCall& call)
{
  return {CurveOp::OffsetCurve(call.inputs[0], call.Real("distance"))};
}

OperationOutcome Trim(const OperationCall& call)
{
  return {CurveOp::TrimCurve(call.inputs[0], call.Real("first"), call.Real("last")),
          {},
          {},
          QStringLiteral("nothing of the curve lies between the parameters")};
}

} // namespace

std::span<const Operation> CurveOperations()
{
  static const std::vector<Operation> rows = {
    {"curve-extend",
     "An edge made longer along its tangent at one end",
     "an edge; of another shape its first one",
     1,
     1,
     {RealOption("distance", "to go on", Unit::Length, kAboveZero),
      WordOption("at", "which end", kEnds, 1)},
     Extend},
    {"curve-offset",
     "A plane wire at a distance in its plane, with round joins",
     "a wire or an edge",
     1,
     1,
     {RealOption("distance", "outwards; inwards if negative", Unit::Length, kAnyReal)},
     Offset},
    {"curve-trim",
     "The part of an edge between two parameters of its curve",
     "an edge; of another shape its first one",
     1,
     1,
     {RealOption("first", "one of them", Unit::None, kAnyReal),
      RealOption("last", "the other", Unit::None, kAnyReal)},
     Trim},
  };
  return rows;
}

} // namespace Orvex::Cli
