#include "operations/internal/AttemptLadder.h"

namespace Orvex {

namespace {

TopoDS_Shape Run(const Attempt& attempt, OperationAttempt& record)
{
  try {
    const TopoDS_Shape shape = attempt.run();
    record.built = !shape.IsNull();
    if (!record.built)
      record.reason = "no shape came out";
    return shape;
  } catch (const AttemptFailure& failure) {
    record.reason = failure.what();
  } catch (const Standard_Failure& failure) {
    record.reason = ReasonOf(failure);
  }
  return {};
}

} // namespace

TopoDS_Shape FirstBuilt(const std::vector<Attempt>& attempts, OperationReport& report)
{
  for (const Attempt& attempt : attempts) {
    OperationAttempt& record = report.attempts.emplace_back();
    record.description = attempt.description;
    const TopoDS_Shape shape = Run(attempt, record);
    report.outcome = record.built ? OperationOutcome::Built : OperationOutcome::Failed;
    report.reason = record.reason;
    if (record.built)
      return shape;
  }
  return {};
}

TopoDS_Shape BuiltBy(const std::string& description, const std::function<TopoDS_Shape()>& run,
                     OperationReport& report)
{
  return FirstBuilt({{description, run}}, report);
}

TopoDS_Shape Refused(OperationReport& report, const std::string& reason)
{
  report.outcome = OperationOutcome::Refused;
  report.reason = reason;
  return {};
}

void RejectLast(OperationReport& report, const std::string& reason)
{
  report.outcome = OperationOutcome::Failed;
  report.reason = reason;
  report.attempts.back().built = false;
  report.attempts.back().reason = reason;
}

std::string ReasonOf(const Standard_Failure& failure)
{
  std::string reason = failure.DynamicType()->Name();
  const std::string message = failure.GetMessageString();
  return message.empty() ? reason : reason.append(": ").append(message);
}

} // namespace Orvex
