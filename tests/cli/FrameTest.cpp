// The parts of the command line's frame that a call from outside reaches badly.
#include "frame/Failure.h"
#include "frame/Text.h"
#include "frame/Worker.h"
#include "info/InfoText.h"
#include "info/ShapeCounts.h"
#include "info/TreeRecord.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <Standard_DomainError.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>
#include <gtest/gtest.h>

#include <QJsonArray>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

using namespace Orvex::Cli;
using namespace std::chrono_literals;

namespace {

template <typename Thrown>
Failure TranslationOf(const Thrown& thrown)
{
  try {
    throw thrown;
  } catch (...) {
    return FailureOfCurrentException(ExitCode::KernelFailure, "a.step");
  }
}

CommonOptions Silent()
{
  CommonOptions options;
  options.quiet = true;
  return options;
}

class WorkerTest : public testing::Test
{
protected:
  WorkerReply Run(const WorkerJob& job, const WorkerOptions& options = {})
  {
    ProgressDisplay progress(console, Silent(), "a.step");
    return RunInWorker(job, options, progress);
  }

  Console console;
};

gp_Trsf Shift(double x)
{
  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(x, 0, 0));
  return shift;
}

AssemblyTreeNode Part(const std::string& id, const std::string& partId)
{
  AssemblyTreeNode node;
  node.id = id;
  node.partId = partId;
  node.name = partId;
  return node;
}

AssemblyTreeNode Assembly(const std::string& id, std::vector<AssemblyTreeNode> children)
{
  AssemblyTreeNode node;
  node.id = id;
  node.isAssembly = true;
  node.children = std::move(children);
  return node;
}

} // namespace

TEST(FailureTest, TellsWhatWasThrown)
{
  const std::pair<Failure, QString> cases[] = {
    {TranslationOf(Standard_DomainError("too small")), "Standard_DomainError: too small"},
    {TranslationOf(std::runtime_error("b\xff!")), "b\ufffd!"},
    {TranslationOf(std::string("bare text")), "bare text"},
    {TranslationOf(std::bad_alloc()), "out of memory"},
    {TranslationOf(42), "an unknown exception was thrown"}};
  for (const auto& [failure, reason] : cases) {
    EXPECT_EQ(failure.reason, reason);
    EXPECT_EQ(failure.subject, "a.step");
    EXPECT_EQ(failure.code, ExitCode::KernelFailure);
  }
  const Failure own = TranslationOf(Failure{ExitCode::TimeLimit, {}, "#1 LINE", "late", "wait"});
  EXPECT_EQ(own.code, ExitCode::TimeLimit);
  EXPECT_EQ(FailureLine(own), "a.step: #1 LINE: late (wait)");
}

TEST(TextTest, NothingThatMovesTheCursorGetsThrough)
{
  EXPECT_EQ(TerminalText(QString::fromUtf8("a\nb\tc\x1b[31m\x7f")), "a\\nb\\tc\\u001b[31m\\u007f");
  EXPECT_EQ(TerminalText(QStringLiteral("\u202eevil\u2028line\u0085")),
            "\\u202eevil\\u2028line\\u0085");
  const QString harmless = QStringLiteral("Größe Ø20 漢字 \U0001F527");
  EXPECT_EQ(TerminalText(harmless), harmless);
}

TEST(TextTest, NumbersAreTidy)
{
  EXPECT_EQ(Decimal(200.0), "200");
  EXPECT_EQ(Decimal(12.5004), "12.5");
  EXPECT_EQ(Decimal(-0.0001), "0");
  EXPECT_EQ(Decimal(1234567.125), "1234567.125");
}

TEST(PlacementTextTest, TellsMoveTurnAndMirror)
{
  const double c = std::cos(M_PI / 6), s = std::sin(M_PI / 6);
  EXPECT_EQ(PlacementText({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), "");
  EXPECT_EQ(PlacementText({c, -s, 0, 1, s, c, 0, -2, 0, 0, 1, 3.5, 0, 0, 0, 1}),
            "at (1, -2, 3.5), turned 30° about (0, 0, 1)");
  EXPECT_EQ(PlacementText({-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}),
            "turned 180° about (0, 0, 1)");
  EXPECT_TRUE(
    PlacementText({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1}).endsWith("mirrored"));
}

TEST(ShapeCountsTest, PlacementsCountAndSharedGeometryCountsOnce)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(1, 2, 3).Shape();
  const TopoDS_Shape face = TopExp_Explorer(box, TopAbs_FACE).Current();
  // The face is part of the box and must change nothing.
  const ShapeCounts counts = CountShapes({box, box.Moved(Shift(10)), face});
  EXPECT_EQ(counts.solids.expanded, 2);
  EXPECT_EQ(counts.solids.distinct, 1);
  EXPECT_EQ(counts.faces.expanded, 12);
  EXPECT_EQ(counts.faces.distinct, 6);
  EXPECT_EQ(counts.faces.free, 0);
  EXPECT_EQ(counts.shells.free, 0);
  EXPECT_EQ(counts.edges.expanded, 24);
  EXPECT_EQ(counts.vertices.distinct, 8);
  EXPECT_EQ(counts.surfaces, (std::map<std::string, int>{{"plane", 6}}));
  EXPECT_NEAR(counts.box.CornerMax().X(), 11, 1e-6);
}

TEST(ShapeCountsTest, WhatBelongsToNothingLargerIsFree)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(1, 2, 3).Shape();
  const TopoDS_Shape apart = BRepPrimAPI_MakeBox(gp_Pnt(5, 5, 5), 1, 1, 1).Shape();
  const ShapeCounts counts = CountShapes(
    {TopExp_Explorer(box, TopAbs_FACE).Current(), TopExp_Explorer(apart, TopAbs_SHELL).Current()});
  EXPECT_EQ(counts.solids.expanded, 0);
  EXPECT_EQ(counts.shells.free, 1);
  EXPECT_EQ(counts.faces.expanded, 7);
  EXPECT_EQ(counts.faces.free, 1);
  EXPECT_TRUE(CountShapes({}).box.IsVoid());
}

TEST(TreeRecordTest, KnowsRepeatedAssembliesByTheirChildren)
{
  const std::vector<AssemblyTreeNode> inner{Part("0:1:2:1", "bolt"), Part("0:1:2:2", "nut")};
  AssemblyTreeMgr tree;
  tree.SetRoots({Assembly("0:1:1", {Assembly("0:1:1:1", inner), Assembly("0:1:1:2", inner),
                                    Part("0:1:1:3", "bolt"), Assembly("0:1:1:4", {})})});
  const TreeRecord record = RecordTree(tree, {});
  EXPECT_EQ(record.occurrences, 8);
  EXPECT_EQ(record.leaves, 6);
  EXPECT_EQ(record.depth, 2);
  const QJsonArray children = record.roots[0]["children"].toArray();
  EXPECT_EQ(children[1]["occurrence"].toInt(), 2);
  EXPECT_EQ(children[1]["of"].toInt(), 2);
  EXPECT_EQ(children[2]["occurrence"].toInt(), 3);
  EXPECT_EQ(children[3]["of"].toInt(), 1);
  ASSERT_EQ(record.definitions.size(), 2);
  EXPECT_EQ(record.definitions[0]["occurrences"].toInt(), 3);
}

TEST_F(WorkerTest, HandsOverWhatTheJobGives)
{
  // Larger than the buffer of a pipe.
  const QString much(300000, QChar(u'ü'));
  const WorkerReply reply = Run([&](const ProgressSink& sink) {
    sink({"stage", 0.5});
    return QJsonObject{{"much", much}};
  });
  EXPECT_EQ(reply.end, WorkerReply::End::Replied);
  EXPECT_EQ(reply.value.value("much").toString(), much);
}

TEST_F(WorkerTest, SurvivesHoweverTheJobEnds)
{
  const std::pair<WorkerJob, int> cases[] = {
    {[](const ProgressSink&) -> QJsonObject { std::abort(); }, SIGABRT},
    {[](const ProgressSink&) -> QJsonObject { std::raise(SIGKILL), std::abort(); }, SIGKILL},
    {[](const ProgressSink&) -> QJsonObject { std::_Exit(0); }, 0}};
  for (const auto& [job, signal] : cases) {
    const WorkerReply reply = Run(job);
    EXPECT_EQ(reply.end, WorkerReply::End::Died);
    EXPECT_EQ(reply.signal, signal);
  }
}

TEST_F(WorkerTest, ProgressKeepsAStallAwayButNotTheEndOfTheTime)
{
  const WorkerJob hangs = [](const ProgressSink&) -> QJsonObject {
    std::this_thread::sleep_for(1h);
    return {};
  };
  const WorkerJob crawls = [](const ProgressSink& sink) -> QJsonObject {
    for (int step = 0; step < 36000; ++step) {
      sink({"stage", -1.0});
      std::this_thread::sleep_for(100ms);
    }
    return {};
  };
  EXPECT_EQ(Run(hangs, {0.0, 0.3, false}).end, WorkerReply::End::Stalled);
  EXPECT_EQ(Run(hangs, {0.3, 5.0, false}).end, WorkerReply::End::TimeLimit);
  EXPECT_EQ(Run(crawls, {2.0, 1.0, false}).end, WorkerReply::End::TimeLimit);
}
