#include "step/replay/StepPythonReplayExporter.h"

#include "step/replay/internal/ReplayScriptText.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Orvex {
namespace {

// The letter that stands for a byte behind a backslash, 0 for a byte that stands for itself. A
// table, because bundles have megabytes and mostly bytes of the second kind.
constexpr auto kEscapeLetters = [] {
  std::array<char, 256> letters{};
  letters['\t'] = 't';
  letters['\n'] = 'n';
  letters['\r'] = 'r';
  letters['\''] = '\'';
  letters['\\'] = '\\';
  return letters;
}();

constexpr char EscapeLetter(char c)
{
  return kEscapeLetters[static_cast<unsigned char>(c)];
}

using TextIterator = std::string_view::const_iterator;

TextIterator NextEscaped(TextIterator from, TextIterator end)
{
  return std::find_if(from, end, [](char c) { return EscapeLetter(c) != 0; });
}

std::size_t LiteralSize(std::string_view text)
{
  auto size = text.size() + 2;
  for (auto next = NextEscaped(text.begin(), text.end()); next != text.end();
       next = NextEscaped(next + 1, text.end())) {
    ++size;
  }
  return size;
}

void AppendLiteral(std::string& out, std::string_view text)
{
  out.push_back('\'');
  auto from = text.begin();
  for (auto next = NextEscaped(from, text.end()); next != text.end();
       next = NextEscaped(from, text.end())) {
    out.append(from, next);
    out.push_back('\\');
    out.push_back(EscapeLetter(*next));
    from = next + 1;
  }
  out.append(from, text.end());
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
