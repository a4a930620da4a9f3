// Threads, progress, cancelling and faults of the readers.
#include "step/CStepFileReader.h"
#include "step/OrvexStepReader.h"

#include "support/LeakCheck.h"
#include "support/StepFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using OrvexTest::DataFile;
using OrvexTest::ScratchFile;

class StepReadControl : public testing::Test
{
protected:
  StepReadControl() : file("bolts.step")
  {
    OrvexTest::WriteBoltAssembly(file);
    reader.SetInputFileName(file.Path());
  }

  void OnProgress(std::function<void(const Orvex::StepProgress&)> progress)
  {
    Orvex::StepReadOptions options;
    options.progress = std::move(progress);
    reader.SetReadOptions(options);
  }

  void CancelAt(const std::string& stage)
  {
    OnProgress([this, stage](const Orvex::StepProgress& progress) {
      if (progress.stage == stage)
        reader.RequestCancel();
    });
  }

  ScratchFile file;
  CStepFileReader reader;
};

TEST_F(StepReadControl, ReadsOnItsThread)
{
  std::thread::id readingThread;
  OnProgress([&](const Orvex::StepProgress&) { readingThread = std::this_thread::get_id(); });
  reader.start();
  reader.wait();
  EXPECT_TRUE(reader.ReadSucceeded());
  EXPECT_NE(readingThread, std::this_thread::get_id());
  EXPECT_TRUE(reader.ReadSynchronously()) << "reads again, here";
  EXPECT_EQ(readingThread, std::this_thread::get_id());
}

TEST_F(StepReadControl, TellsStagesInOrderAndFractionsThatGrow)
{
  std::vector<std::string> stages;
  double last = -1.0;
  OnProgress([&](const Orvex::StepProgress& progress) {
    if (stages.empty() || stages.back() != progress.stage) {
      stages.push_back(progress.stage);
      last = -1.0;
    }
    EXPECT_GE(progress.fraction, last);
    EXPECT_LE(progress.fraction, 1.0);
    last = progress.fraction;
  });
  ASSERT_TRUE(reader.ReadSynchronously());
  EXPECT_THAT(stages, testing::ElementsAre("parse", "transfer", "collect"));
}

TEST_F(StepReadControl, CanBeCancelledInEachStage)
{
  for (const char* stage : {"parse", "transfer", "collect"}) {
    CancelAt(stage);
    EXPECT_FALSE(reader.ReadSynchronously()) << stage;
    EXPECT_TRUE(reader.WasCancelled()) << stage;
    EXPECT_EQ(reader.GetLastError(), "XCAF reader was cancelled") << stage;
  }
  OnProgress({});
  EXPECT_TRUE(reader.ReadSynchronously()) << "a request counts for one read";
  EXPECT_FALSE(reader.WasCancelled());
}

TEST_F(StepReadControl, ARequestBeforeTheReadCountsUntilAnotherFileIsSet)
{
  reader.RequestCancel();
  EXPECT_FALSE(reader.ReadSynchronously());
  EXPECT_TRUE(reader.WasCancelled());
  reader.RequestCancel();
  reader.SetInputFileName(file.Path());
  EXPECT_TRUE(reader.ReadSynchronously());
}

TEST_F(StepReadControl, ThePlainReadCanBeCancelledToo)
{
  CancelAt("transfer");
  EXPECT_FALSE(reader.TryReadStepsMapNew());
  EXPECT_TRUE(reader.WasCancelled());
  EXPECT_EQ(reader.GetLastError(), "basic STEP reader was cancelled");
}

// Progress is told from inside the read, so a listener that faults is a kernel that faults.

__attribute__((noinline, no_sanitize("address", "undefined"))) int Recurse(volatile char* outer)
{
  volatile char frame[4096];
  frame[0] = outer == nullptr ? '\0' : *outer;
  return frame[0] == '\0' ? Recurse(frame) + frame[0] : 0;
}

TEST_F(StepReadControl, AStackOverflowInTheReadEndsTheReadOnly)
{
  OnProgress([](const Orvex::StepProgress& progress) {
    if (progress.stage == "collect")
      Recurse(nullptr);
  });
  const auto read = [this] {
    const OrvexTest::LeaksAreExpected leaks;
    EXPECT_FALSE(reader.ReadSynchronously());
    EXPECT_EQ(reader.GetLastError(), "XCAF reader crashed with SEH");
  };
  read();
  std::thread(read).join();
  OnProgress({});
  EXPECT_TRUE(reader.ReadSynchronously());
}

TEST_F(StepReadControl, AFileThatCrashesTheKernelLeavesTheNextReadRight)
{
  ORVEX_NEEDS_TEST_DATA();
  const OrvexTest::LeaksAreExpected leaks;
  for (int round = 0; round < 5; ++round) {
    reader.SetInputFileName(DataFile("crash-line-without-vector.stp"));
    EXPECT_FALSE(reader.ReadSynchronously());
    EXPECT_EQ(reader.GetLastError(), "XCAF reader crashed with SEH");
    EXPECT_FALSE(reader.TryReadStepsMapNew());
    EXPECT_EQ(reader.GetLastError(), "XCAF reader crashed with SEH") << "the first text stays";
    reader.SetInputFileName(file.Path());
    EXPECT_TRUE(reader.ReadSynchronously());
    EXPECT_EQ(reader.GetImportShapesMap().size(), 3U);
  }
  CStepFileReader plain;
  plain.SetInputFileName(DataFile("crash-line-without-vector.stp"));
  EXPECT_FALSE(plain.TryReadStepsMapNew());
  EXPECT_EQ(plain.GetLastError(), "basic STEP reader crashed");
}

template <typename Reader>
void DestroyWhileRunning(const QString& path)
{
  std::atomic<bool> hasCollected{false};
  {
    Reader reader;
    Orvex::StepReadOptions options;
    options.progress = [&](const Orvex::StepProgress& progress) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      hasCollected = progress.stage == "collect";
    };
    reader.SetReadOptions(options);
    reader.SetInputFileName(path);
    reader.start();
  }
  EXPECT_TRUE(hasCollected);
}

TEST_F(StepReadControl, AReaderThatIsDestroyedWaitsForItsThread)
{
  DestroyWhileRunning<CStepFileReader>(file.Path());
  DestroyWhileRunning<OrvexStepReader>(file.Path());
}

TEST_F(StepReadControl, TheSmallReaderThrowsToItsCallerAndKeepsTheTextOnItsThread)
{
  OrvexStepReader small;
  small.SetInputFileName("/nowhere/x.step");
  std::string thrown;
  try {
    small.Run();
  } catch (const std::string& text) {
    thrown = text;
  }
  EXPECT_EQ(thrown, "Error reading STEP file: Failed to read STEP file");
  small.start();
  small.wait();
  EXPECT_FALSE(small.ReadSucceeded());
  EXPECT_EQ(small.GetLastError().toStdString(), thrown);

  small.SetInputFileName(file.Path());
  small.start();
  small.wait();
  EXPECT_TRUE(small.ReadSucceeded());
  EXPECT_EQ(small.GetLastError(), "");
  ASSERT_EQ(small.GetImportShapesMap().size(), 1U);
  EXPECT_EQ(small.GetImportShapesMap().begin()->first, "top");
}

} // namespace
