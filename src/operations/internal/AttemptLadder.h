// The one loop over the attempts of an operation, and what it writes into the report.
#pragma once

#include "operations/OperationReport.h"

#include <Standard_Failure.hxx>
#include <TopoDS_Shape.hxx>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvex {

// Thrown by an attempt that comes to nothing, with the reason for the report.
class AttemptFailure : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

// One way to make a result. It gives a shape, or a null shape, AttemptFailure or Standard_Failure
// if it comes to nothing.
struct Attempt
{
  std::string description;
  std::function<TopoDS_Shape()> run;
};

// The shape of the first attempt that gives one; null after the last. Nothing is thrown.
TopoDS_Shape FirstBuilt(const std::vector<Attempt>& attempts, OperationReport& report);

// The shape of a single attempt.
TopoDS_Shape BuiltBy(const std::string& description, const std::function<TopoDS_Shape()>& run,
                     OperationReport& report);

// Records that the input is none for the operation. Returns null.
TopoDS_Shape Refused(OperationReport& report, const std::string& reason);

// Takes back that the last attempt was built.
void RejectLast(OperationReport& report, const std::string& reason);

// The name and the message of a failure.
std::string ReasonOf(const Standard_Failure& failure);

// The shape in it, with the kernel's failure for a reason if it was not done.
// Algorithm is any of the kernel's builders.
template <typename Algorithm>
TopoDS_Shape ShapeIfDone(Algorithm& algorithm)
{
  if (!algorithm.IsDone())
    throw AttemptFailure("the kernel could not do it");
  return algorithm.Shape();
}

// Runs work with a report to write on: a fresh one in place of the wanted one, which may be null.
template <typename Work>
auto Reported(OperationReport* wanted, Work&& work)
{
  OperationReport unwanted;
  OperationReport& report = wanted == nullptr ? unwanted : *wanted;
  report = {};
  return work(report);
}

} // namespace Orvex
