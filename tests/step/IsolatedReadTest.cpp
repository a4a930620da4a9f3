// Reads in a process of their own: the same results, and an end of the worker is no end of ours.
#include "assembly/AssemblyTreeMgr.h"
#include "step/CStepFileReader.h"

#include "support/LeakCheck.h"
#include "support/StepFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <chrono>
#include <thread>

#include <sys/stat.h>

namespace {

using OrvexTest::DataFile;
using OrvexTest::ScratchFile;
using testing::StartsWith;

// The kernel's parser frees what it does not own.
const char* const kAbortingFile = "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
                                  "FILE_NAME('','',(''),(''),'','','');\n"
                                  "FILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\nENDSEC;\nDATA;\n"
                                  "#1=&SCOPE\n#2=CARTESIAN_POINT('',(0.,0.,0.));\n"
                                  "ENDSCOPE /#2/ CARTESIAN_POINT('',(1.,0.,0.));\nENDSEC;\n"
                                  "END-ISO-10303-21;\n";

Orvex::StepReadOptions Isolated()
{
  Orvex::StepReadOptions options;
  options.isolated = true;
  return options;
}

// Everything about a read that can be compared by value.
struct Result
{
  bool succeeded = false;
  QString lastError;
  std::vector<std::tuple<std::string, int, double, double, double, bool>> shapes;
  std::vector<std::string> names;
  std::vector<AssemblyTreeNode> roots;
  AssemblyTreeMgr::Definitions definitions;
  std::vector<std::string> losses;
  int distinctFaces = 0;

  bool operator==(const Result&) const = default;
};

// Apart from the rest: placements come back with other last bits.
using Areas = std::vector<double>;

double AreaOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(shape, properties);
  return properties.Mass();
}

void CollectShapes(const CStepFileReader& reader, Result& result, Areas& areas)
{
  TopTools_IndexedMapOfShape faces;
  for (const StepShapeData& item : reader.GetImportShapeDataList()) {
    areas.push_back(AreaOf(item.shape));
    result.shapes.emplace_back(item.name, item.shape.ShapeType(), item.r, item.g, item.b,
                               item.hasColor);
    for (TopExp_Explorer face(item.shape, TopAbs_FACE); face.More(); face.Next())
      faces.Add(face.Current().Located(TopLoc_Location()).Oriented(TopAbs_FORWARD));
  }
  for (const auto& [name, shape] : reader.GetImportShapesMap()) {
    result.names.push_back(name);
    for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next())
      faces.Add(face.Current().Located(TopLoc_Location()).Oriented(TopAbs_FORWARD));
  }
  result.distinctFaces = faces.Extent();
}

Result ReadWith(const QString& path, bool isolated, Areas& areas)
{
  CStepFileReader reader;
  Orvex::StepReadOptions options;
  options.isolated = isolated;
  options.collectReport = true;
  reader.SetReadOptions(options);
  reader.SetInputFileName(path);
  Result result;
  result.succeeded = reader.ReadSynchronously();
  result.lastError = reader.GetLastError();
  CollectShapes(reader, result, areas);
  result.roots = AssemblyTreeMgr::GetInstance().GetRoots();
  result.definitions = AssemblyTreeMgr::GetInstance().GetDefinitions();
  for (const Orvex::StepLoss& loss : reader.GetReadReport().losses)
    result.losses.push_back(std::to_string(loss.entityId) + loss.entityType + loss.outcome);
  return result;
}

void ExpectTheSame(const QString& path)
{
  SCOPED_TRACE(path.toStdString());
  Areas areasHere;
  Areas areasThere;
  const Result here = ReadWith(path, false, areasHere);
  const Result there = ReadWith(path, true, areasThere);
  EXPECT_FALSE(here.succeeded && here.shapes.empty());
  EXPECT_EQ(there.lastError, here.lastError);
  EXPECT_EQ(there.distinctFaces, here.distinctFaces);
  EXPECT_TRUE(there == here);
  EXPECT_THAT(areasThere, testing::Pointwise(testing::DoubleNear(1e-9), areasHere));
}

TEST(IsolatedRead, GivesWhatAReadInThisProcessGives)
{
  const ScratchFile file("bolts.step");
  OrvexTest::WriteBoltAssembly(file);
  ExpectTheSame(file.Path());
  ExpectTheSame("/nowhere/x.step");
}

TEST(IsolatedRead, GivesTheSameForRealFilesAndKeepsSharedGeometryShared)
{
  ORVEX_NEEDS_TEST_DATA();
  const OrvexTest::LeaksAreExpected leaks;
  for (const char* name : {"distribution-board-assembly.step", "derived-one-dangling-surface.stp",
                           "block-x2-escaped-name.stp", "crash-line-without-vector.stp"})
    if (!OrvexTest::IsTooLargeHere(DataFile(name)))
      ExpectTheSame(DataFile(name));
}

class IsolatedReadOf : public testing::Test
{
protected:
  IsolatedReadOf() : file("bolts.step")
  {
    OrvexTest::WriteBoltAssembly(file);
    reader.SetReadOptions(Isolated());
    reader.SetInputFileName(file.Path());
  }

  std::string ErrorOfRead()
  {
    EXPECT_FALSE(reader.ReadSynchronously());
    return reader.GetLastError().toStdString();
  }

  ScratchFile file;
  CStepFileReader reader;
};

TEST_F(IsolatedReadOf, AFileThatAbortsTheKernelSaysHowTheWorkerEnded)
{
  file.SetContent(kAbortingFile);
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_THAT(ErrorOfRead(), StartsWith("STEP worker "));
#else
  EXPECT_EQ(ErrorOfRead(), "STEP worker was ended by signal 6 (SIGABRT)");
#endif
  CStepFileReader plain;
  plain.SetReadOptions(Isolated());
  plain.SetInputFileName(file.Path());
  EXPECT_FALSE(plain.TryReadStepsMapNew());
  EXPECT_THAT(plain.GetLastError().toStdString(), StartsWith("STEP worker "));
}

TEST_F(IsolatedReadOf, PlainReadsCountTheirNamesOnFromOursAndBack)
{
  OrvexTest::WriteFreeShapes(file, {{"x", OrvexTest::Box(1)}});
  const auto numberOfNext = [this](bool isolated) {
    CStepFileReader next;
    Orvex::StepReadOptions options;
    options.isolated = isolated;
    next.SetReadOptions(options);
    next.SetInputFileName(file.Path());
    EXPECT_TRUE(next.TryReadStepsMapNew());
    return std::stoi(next.GetImportShapesMap().begin()->first.substr(6));
  };
  const int first = numberOfNext(false);
  EXPECT_EQ(numberOfNext(true), first + 1);
  EXPECT_EQ(numberOfNext(false), first + 2);
}

TEST_F(IsolatedReadOf, StagesEndWithTheHandOver)
{
  std::vector<std::string> stages;
  Orvex::StepReadOptions options = Isolated();
  options.progress = [&](const Orvex::StepProgress& progress) {
    if (stages.empty() || stages.back() != progress.stage)
      stages.push_back(progress.stage);
  };
  reader.SetReadOptions(options);
  EXPECT_TRUE(reader.ReadSynchronously());
  EXPECT_THAT(stages, testing::ElementsAre("parse", "transfer", "collect", "hand-over"));
}

TEST_F(IsolatedReadOf, TheReportSaysWhyAFileCannotBeParsed)
{
  file.SetContent(file.Content().substr(0, 5000));
  Orvex::StepReadOptions options = Isolated();
  options.collectReport = true;
  reader.SetReadOptions(options);
  EXPECT_EQ(ErrorOfRead(), "XCAF ReadFile failed");
  EXPECT_FALSE(reader.GetReadReport().collected);
  ASSERT_EQ(reader.GetReadReport().messages.size(), 1U);
  EXPECT_THAT(reader.GetReadReport().messages[0].text,
              testing::MatchesRegex(".*Line [0-9]+: Incorrect syntax: unexpected end of file.*"));
}

TEST_F(IsolatedReadOf, TheKernelsChatterStaysInTheWorker)
{
  file.SetContent(file.Content().substr(0, 5000));
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(ErrorOfRead(), "XCAF ReadFile failed");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(IsolatedReadOf, LinesOfTheDebugLogReachItsFile)
{
  const ScratchFile log("debug.log");
  setenv("ORVEX_DEBUG_LOG", log.Path().toUtf8().constData(), 1);
  EXPECT_TRUE(reader.ReadSynchronously());
  unsetenv("ORVEX_DEBUG_LOG");
  EXPECT_THAT(log.Content(), testing::HasSubstr("StepReader(XCAF): imported 3 shapes\n"));
}

// A pipe that nobody writes to: the worker hangs in opening it.
class HangingRead : public IsolatedReadOf
{
protected:
  HangingRead()
  {
    const QString pipe = file.Path() + ".pipe";
    EXPECT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    reader.SetInputFileName(pipe);
  }

  double SecondsToEnd()
  {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(reader.ReadSynchronously());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
};

TEST_F(HangingRead, EndsAtItsTimeLimit)
{
  Orvex::StepReadOptions options = Isolated();
  options.timeLimitSeconds = 0.5;
  reader.SetReadOptions(options);
  const double seconds = SecondsToEnd();
  EXPECT_GE(seconds, 0.5);
  EXPECT_LT(seconds, 10.0);
  EXPECT_TRUE(reader.TimeLimitReached());
  EXPECT_FALSE(reader.WasCancelled());
  EXPECT_EQ(reader.GetLastError(), "STEP worker reached the time limit of 0.5 s");
}

TEST_F(HangingRead, EndsWhenItIsCancelled)
{
  std::thread canceller([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    reader.RequestCancel();
  });
  EXPECT_LT(SecondsToEnd(), 10.0);
  canceller.join();
  EXPECT_TRUE(reader.WasCancelled());
  EXPECT_FALSE(reader.TimeLimitReached());
  EXPECT_EQ(reader.GetLastError(), "XCAF reader was cancelled");
}

TEST_F(IsolatedReadOf, AWorkerThatIsNoneIsToldApart)
{
  setenv("ORVEX_STEP_WORKER", "/nowhere/worker", 1);
  EXPECT_EQ(ErrorOfRead(),
            "STEP worker /nowhere/worker cannot be started: No such file or directory");
  setenv("ORVEX_STEP_WORKER", "/bin/true", 1);
  EXPECT_EQ(ErrorOfRead(), "STEP worker ended with exit code 0 and no result");
  unsetenv("ORVEX_STEP_WORKER");
  EXPECT_TRUE(reader.ReadSynchronously());
}

} // namespace
