#include "foundation/MessageLog.h"
#include "foundation/OrvexDebugLogFile.h"
#include "foundation/OrvexEnvVariableSet.h"
#include "foundation/OrvexPTimer.h"
#include "foundation/ScopedNumericLocale.h"
#include "foundation/UserMessage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

namespace {

std::vector<std::string> LinesOf(const std::filesystem::path& path)
{
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);)
    lines.push_back(line);
  return lines;
}

TEST(MessageLog, GoesToTheSinkInPlaceWithLevelAndExpandedText)
{
  std::vector<std::pair<int, std::string>> seen;
  const auto earlier = Orvex::SetMessageSink(
    [&](int level, const std::string& text) { seen.emplace_back(level, text); });
  const std::string longText(5000, 'x');
  MessageLog(0, "%s", longText.c_str());
  MessageLog(1, "a %d b", 7);
  Orvex::SetMessageSink(earlier);
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0], std::pair(0, longText));
  EXPECT_EQ(seen[1], std::pair(1, std::string("a 7 b")));
}

TEST(MessageLog, DefaultSinkShowsWarningsOnStandardErrorOnly)
{
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  MessageLog(0, "quiet");
  MessageLog(1, "loud");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvex: loud\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(UserMessage, HandlerCanBeReplacedAndMaySwitchItselfOff)
{
  std::string shown;
  Orvex::SetUserMessageHandler([&](const std::string& title, const std::string& text) {
    shown += title + "/" + text;
    Orvex::SetUserMessageHandler({});
  });
  Orvex::ShowUserMessage("Error", "first");
  Orvex::ShowUserMessage("Error", "second");
  EXPECT_EQ(shown, "Error/first");
}

TEST(DebugLog, KeepsTheLastLinesInMemoryAndWritesNoFileUninvited)
{
  OrvexDebugLogFile log("");
  for (std::size_t i = 0; i < OrvexDebugLogFile::kRingCapacity + 10; ++i)
    log.dumpToFile(std::to_string(i));
  const auto lines = log.Lines();
  ASSERT_EQ(lines.size(), OrvexDebugLogFile::kRingCapacity);
  EXPECT_EQ(lines.front(), "10");
  EXPECT_EQ(lines.back(), std::to_string(OrvexDebugLogFile::kRingCapacity + 9));
}

TEST(DebugLog, ManyThreadsAppendWholeLinesToTheFile)
{
  const auto path = std::filesystem::path(testing::TempDir()) / "orvex-debug.log";
  std::filesystem::remove(path);
  {
    OrvexDebugLogFile log(path.string());
    std::vector<std::thread> writers;
    for (int t = 0; t < 4; ++t)
      writers.emplace_back([&log, t] {
        for (int i = 0; i < 2000; ++i)
          log.dumpToFile("thread " + std::to_string(t) + " line " + std::to_string(i));
      });
    for (auto& writer : writers)
      writer.join();
    log.Flush();
    EXPECT_EQ(LinesOf(path).size(), 8000U);
  }
  const std::regex form(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z thread [0-3] line \d+)");
  for (const auto& line : LinesOf(path))
    ASSERT_TRUE(std::regex_match(line, form)) << line;
}

TEST(DebugLog, AFileThatCannotBeWrittenIsGivenUpSilently)
{
  testing::internal::CaptureStderr();
  OrvexDebugLogFile log("/nonexistent-folder/orvex.log");
  log.dumpToFile("kept");
  log.Flush();
  EXPECT_EQ(log.Lines(), std::vector<std::string>{"kept"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(EnvironmentSwitches, WordsSwitchAndOtherValuesLeaveTheDefault)
{
  struct Case
  {
    const char* value;
    bool whenDefaultIsOff;
    bool whenDefaultIsOn;
  };
  for (const Case& c : {Case{"1", true, true}, Case{"TRUE", true, true}, Case{"On", true, true},
                        Case{"0", false, false}, Case{"no", false, false}, Case{"", false, true},
                        Case{"2", false, true}}) {
    setenv("ORVEX_STEP_DUMP_MESSAGES", c.value, 1);
    setenv("ORVEX_STEP_READ_SUBGROUPS", c.value, 1);
    setenv("ORVEX_STEP_READ_OBJECT_NAMES", c.value, 1);
    EXPECT_EQ(OrvexEnvVariableSet::isDumpMessageToFile(), c.whenDefaultIsOff) << c.value;
    EXPECT_EQ(OrvexEnvVariableSet::isReadSTEPSubgroup(), c.whenDefaultIsOff) << c.value;
    EXPECT_EQ(OrvexEnvVariableSet::isReadSTEPObjectName(), c.whenDefaultIsOn) << c.value;
  }
}

TEST(Timer, MeasuresBetweenStartAndStopAndSaysSoInMilliseconds)
{
  OrvexPTimer timer;
  EXPECT_EQ(timer.elapsedMilliseconds(), 0.0);
  timer.start();
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  timer.stop();
  const double first = timer.elapsedMilliseconds();
  EXPECT_GE(first, 5.0);
  EXPECT_EQ(timer.elapsedMilliseconds(), first);
  EXPECT_TRUE(std::regex_match(timer.elapsedTimeAsString(), std::regex(R"(\d+\.\d{3} ms)")));
}

} // namespace
