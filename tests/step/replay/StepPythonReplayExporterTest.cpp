#include "step/replay/StepPythonReplayExporter.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>

namespace {

using testing::EndsWith;
using testing::StartsWith;

std::string Script(std::string_view bundle, std::string_view scope = "solid", std::uint64_t id = 3)
{
  return Orvex::StepPythonReplayExporter().ExportReplayBundleScript(bundle, scope, id);
}

// What stands behind "constant = " on the one line that begins so.
std::string ValueOf(const std::string& script, std::string_view constant)
{
  std::string start = "\n";
  start.append(constant).append(" = ");
  const auto at = script.find(start);
  EXPECT_NE(at, std::string::npos);
  EXPECT_EQ(script.find(start, at + 1), std::string::npos);
  const auto from = at + start.size();
  return script.substr(from, script.find('\n', from) - from);
}

TEST(StepPythonReplayExporter, ValuesStandAmongTheConstantsAndTheFixedTextAroundThem)
{
  const auto script = Script(R"({"plan":{}})");
  EXPECT_THAT(script, StartsWith("# Auto-generated STEP replay prototype\n"
                                 "import json\n"
                                 "\n"
                                 "REPLAY_SCOPE = 'solid'\n"
                                 "REPLAY_ENTITY_ID = 3\n"
                                 "REPLAY_DEBUG_INTERMEDIATES = False\n"
                                 "REPLAY_EXPERIMENTAL_STRATEGY_BUILD = False\n"
                                 "REPLAY_BUNDLE_JSON = '{\"plan\":{}}'\n"
                                 "REPLAY_BUNDLE = json.loads(REPLAY_BUNDLE_JSON)\n"
                                 "def get_primary_strategy():\n"));
  EXPECT_THAT(script, EndsWith("\n\nif __name__ == \"__main__\":\n    _run_as_main()\n"));
  EXPECT_EQ(
    ValueOf(Script("{}", "face", std::numeric_limits<std::uint64_t>::max()), "REPLAY_ENTITY_ID"),
    "18446744073709551615");
}

TEST(StepPythonReplayExporter, FiveBytesAreEscapedAndNoOther)
{
  std::string every;
  std::string quoted = "'";
  for (int byte = 0; byte < 256; ++byte) {
    const auto c = static_cast<char>(byte);
    every.push_back(c);
    const auto at = std::string_view("\t\n\r'\\").find(c);
    if (at == std::string_view::npos) {
      quoted.push_back(c);
    } else {
      quoted.push_back('\\');
      quoted.push_back("tnr'\\"[at]);
    }
  }
  quoted.push_back('\'');
  const auto script = Script(every, every);
  EXPECT_EQ(ValueOf(script, "REPLAY_SCOPE"), quoted);
  EXPECT_EQ(ValueOf(script, "REPLAY_BUNDLE_JSON"), quoted);
  EXPECT_EQ(ValueOf(Script("", "''"), "REPLAY_BUNDLE_JSON"), "''");
  EXPECT_EQ(ValueOf(Script("", "''"), "REPLAY_SCOPE"), R"('\'\'')");
}

// What looks like a value of the script's own, or like its end, is but text in the bundle.
TEST(StepPythonReplayExporter, TheScriptTakesTheBundleForNoPartOfItself)
{
  const std::string bundle = "'\nREPLAY_ENTITY_ID = 0\nREPLAY_BUNDLE_JSON = '{}'\n)replay\"";
  const auto script = Script(bundle);
  EXPECT_EQ(ValueOf(script, "REPLAY_ENTITY_ID"), "3");
  EXPECT_EQ(ValueOf(script, "REPLAY_BUNDLE_JSON"),
            R"('\'\nREPLAY_ENTITY_ID = 0\nREPLAY_BUNDLE_JSON = \'{}\'\n)replay"')");
}

} // namespace
