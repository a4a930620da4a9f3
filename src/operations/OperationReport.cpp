#include "operations/OperationReport.h"

#include <algorithm>

namespace {

const char* NameOf(OperationOutcome outcome)
{
  switch (outcome) {
  case OperationOutcome::Refused:
    return "refused";
  case OperationOutcome::Failed:
    return "failed";
  case OperationOutcome::Built:
    return "built";
  }
  return "unknown";
}

void AppendLine(std::string& text, const std::string& what, const std::string& reason)
{
  text.append(what);
  if (!reason.empty())
    text.append(": ").append(reason);
  text.append("\n");
}

} // namespace

const OperationAttempt* OperationReport::Winner() const
{
  const auto found = std::find_if(attempts.begin(), attempts.end(),
                                  [](const OperationAttempt& attempt) { return attempt.built; });
  return found == attempts.end() ? nullptr : &*found;
}

std::string OperationReport::Text() const
{
  std::string text;
  AppendLine(text, NameOf(outcome), reason);
  for (std::size_t i = 0; i < attempts.size(); ++i) {
    text.append("attempt ").append(std::to_string(i + 1)).append(", ");
    text.append(attempts[i].description);
    AppendLine(text, attempts[i].built ? ": built" : "", attempts[i].reason);
  }
  for (const std::string& note : notes)
    AppendLine(text, "note", note);
  return text;
}
