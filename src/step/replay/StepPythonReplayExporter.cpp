#include "step/replay/StepPythonReplayExporter.h"

#include "step/replay/internal/ReplayScriptText.h"

#include <algorithm>
#include <charconv>

namespace Orvex {
namespace {

// The letter that stands for a byte behind a backslash, 0 for a byte that stands for itself.
constexpr char EscapeLetter(char c)
{
  switch (c) {
  case '\t':
    return 't';
  case '\n':
    return 'n';
  case '\r':
    return 'r';
  case '\'':
  case '\\':
    return c;
  default:
    return 0;
  }
}

std::size_t LiteralSize(std::string_view text)
{
  const auto escaped =
    std::count_if(text.begin(), text.end(), [](char c) { return EscapeLetter(c) != 0; });
  return text.size() + static_cast<std::size_t>(escaped) + 2;
}

void AppendLiteral(std::string& out, std::string_view text)
{
  out.push_back('\'');
  auto rest = text.begin();
  while (rest != text.end()) {
    const auto next = std::find_if(rest, text.end(), [](char c) { return EscapeLetter(c) != 0; });
    out.append(rest, next);
    rest = next;
    if (next != text.end()) {
      out.push_back('\\');
      out.push_back(EscapeLetter(*next));
      ++rest;
    }
  }
  out.push_back('\'');
}

} // namespace

std::string StepPythonReplayExporter::ExportReplayBundleScript(std::string_view bundleJson,
                                                               std::string_view scope,
                                                               std::uint64_t entityId) const
{
  char digits[20];
  const auto digitsEnd = std::to_chars(digits, digits + sizeof digits, entityId).ptr;
  const std::string_view id(digits, static_cast<std::size_t>(digitsEnd - digits));

  const auto& fixed = kReplayScriptText;
  std::string script;
  script.reserve(fixed.beforeScope.size() + LiteralSize(scope) + fixed.beforeEntityId.size() +
                 id.size() + fixed.beforeBundle.size() + LiteralSize(bundleJson) +
                 fixed.afterBundle.size());
  script.append(fixed.beforeScope);
  AppendLiteral(script, scope);
  script.append(fixed.beforeEntityId);
  script.append(id);
  script.append(fixed.beforeBundle);
  AppendLiteral(script, bundleJson);
  script.append(fixed.afterBundle);
  return script;
}

} // namespace Orvex
