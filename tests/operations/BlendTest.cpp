#include "operations/AdvancedSurfaceOp.h"
#include "support/Measures.h"
#include "support/SurfaceInputs.h"

#include <BRepCheck_Analyzer.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

using Op = AdvancedSurfaceOp;
using Status = BlendSurfaceInputStatus;
using BuildOptions = BlendSurfaceBuildOptions;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLength = 6, kGap = 10;

TopoDS_Edge Near()
{
  return LineEdge(gp_Pnt(0, 0, 0), gp_Pnt(kLength, 0, 0));
}

TopoDS_Edge Far()
{
  return LineEdge(gp_Pnt(0, kGap, 0), gp_Pnt(kLength, kGap, 0));
}

TopoDS_Edge FarBackwards()
{
  return LineEdge(gp_Pnt(kLength, kGap, 0), gp_Pnt(0, kGap, 0));
}

BuildOptions Between(const TopoDS_Edge& first, const TopoDS_Edge& second)
{
  BuildOptions options;
  options.first.edge = first;
  options.second.edge = second;
  return options;
}

// Two flat strips between the lines, whose common edge stands off by a fraction of the gap.
double AreaWithBulge(double factor)
{
  const double lift = (1 - (0.6 + 0.1 * factor)) * 0.04 * kGap;
  return 2 * kLength * std::hypot(kGap / 2, lift);
}

TEST(Blend, InputIsCheckedInOrder)
{
  const TopoDS_Edge none, line = Near(), other = Far();
  const TopoDS_Edge circle = BRepBuilderAPI_MakeEdge(gp_Circ(gp::XOY(), 5));
  const TopoDS_Face sphere =
    TopoDS::Face(PartsOf(BRepPrimAPI_MakeSphere(5).Shape(), TopAbs_FACE).front());
  const auto status = [](BuildOptions options, int first = 0, int second = 0,
                         const TopoDS_Face& firstFace = {}, const TopoDS_Face& secondFace = {}) {
    options.first.continuity = first;
    options.second.continuity = second;
    options.first.supportFace = firstFace;
    options.second.supportFace = secondFace;
    return Op::ValidateBlendSurfaceInput(options);
  };
  EXPECT_EQ(status(Between(none, none)), Status::MissingFirstEdge);
  EXPECT_EQ(status(Between(circle, none)), Status::MissingSecondEdge);
  EXPECT_EQ(status(Between(circle, circle)), Status::SameEdge);
  EXPECT_EQ(status(Between(line, TopoDS::Edge(line.Reversed()))), Status::SameEdge);
  EXPECT_EQ(status(Between(circle, line)), Status::FirstEdgeDegenerate);
  EXPECT_EQ(status(Between(line, circle)), Status::SecondEdgeDegenerate);
  EXPECT_EQ(status(Between(line, other), 1, 1), Status::FirstSupportMissing);
  EXPECT_EQ(status(Between(line, other), 0, -1), Status::SecondSupportMissing);
  EXPECT_EQ(status(Between(line, other), 0, 0, sphere, sphere), Status::FirstEdgeNotOnSupport);
  EXPECT_EQ(status(Between(line, other), 0, 0, {}, sphere), Status::SecondEdgeNotOnSupport);
  EXPECT_EQ(status(Between(line, other)), Status::Valid);
}

TEST(Blend, FramesGoRoundBothEdges)
{
  for (const TopoDS_Edge& far : {Far(), FarBackwards()}) {
    const TopoDS_Wire frame = Op::BuildBlendBoundaryFrame(Between(Near(), far));
    EXPECT_TRUE(BRep_Tool::IsClosed(frame));
    EXPECT_NEAR(LengthOf(frame), 2 * (kLength + kGap), 1e-9) << "crossed";
    EXPECT_NEAR(AreaOf(Op::BuildBlendBoundarySeedSurface(Between(Near(), far))), kLength * kGap,
                1e-6);
  }
  const TopoDS_Edge touching = LineEdge(gp_Pnt(kLength, 0, 0), gp_Pnt(kLength, 5, 0));
  EXPECT_TRUE(Op::BuildBlendBoundaryFrame(Between(Near(), touching)).IsNull());
}

TEST(Blend, WithoutConstraintsItBulgesByTheFactor)
{
  struct Row
  {
    double given, effective;
  };
  for (const Row& row :
       {Row{1, 1}, Row{0, 0}, Row{2, 2}, Row{5, 2}, Row{-3, 0}, Row{kNaN, 1}, Row{kInfinity, 1}}) {
    const TopoDS_Face blend = Op::BuildBlendSurface(Near(), Far(), 0, row.given);
    EXPECT_NEAR(AreaOf(blend), AreaWithBulge(row.effective), 1e-9) << row.given;
    EXPECT_TRUE(BRepCheck_Analyzer(blend).IsValid());
  }
  const TopoDS_Face arcs =
    Op::BuildBlendSurface(ArcAt(0, 5, 0, 2), ArcAt(10, 5, 0, 2), BlendSurfaceOptions());
  EXPECT_NEAR(AreaOf(arcs), 2 * 5 * 10, 1) << "nearly a piece of a cylinder";
}

TEST(Blend, ConstraintsTakeTheFilledFrame)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(gp_Pnt(0, -3, 0), kLength, 3, 3).Shape();
  BlendSurfaceOptions options;
  options.firstSupport = TopoDS::Face(PartsOf(box, TopAbs_FACE).front());
  options.secondSupport = options.firstSupport;
  options.continuity = 9;
  OperationReport report;
  const TopoDS_Face blend = Op::BuildBlendSurface(Near(), Far(), options, &report);
  EXPECT_NEAR(AreaOf(blend), kLength * kGap, 1e-6);
  EXPECT_EQ(report.attempts.size(), 1U);
  EXPECT_FALSE(report.notes.empty()) << "that levels have no effect";
  EXPECT_NEAR(AreaOf(BuildBlendSurfaceWithOptions(Near(), Far(), options)), AreaOf(blend), 1e-12);
}

TEST(Blend, WithoutAFrameConstraintsFallBack)
{
  const TopoDS_Edge touching = LineEdge(gp_Pnt(0, 0, 0), gp_Pnt(0, 5, 0));
  BuildOptions options = Between(Near(), touching);
  options.first.supportFace = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()));
  OperationReport report;
  EXPECT_FALSE(Op::BuildBlendSurface(options, &report).IsNull());
  ASSERT_EQ(report.attempts.size(), 2U);
  EXPECT_EQ(report.Winner(), &report.attempts[1]);
}

TEST(Blend, WhatIsNotValidGivesNullAndSaysWhy)
{
  OperationReport report;
  BlendSurfaceOptions tangent;
  tangent.continuity = 1;
  EXPECT_TRUE(Op::BuildBlendSurface(Near(), Far(), tangent, &report).IsNull());
  EXPECT_EQ(report.outcome, OperationOutcome::Refused);
  EXPECT_EQ(report.reason, "the first side has a level and no support face");
  EXPECT_TRUE(Op::BuildBlendSurface(Near(), {}, BlendSurfaceOptions()).IsNull());
  const TopoDS_Edge infinite = BRepBuilderAPI_MakeEdge(gp_Lin(gp::OX()));
  EXPECT_TRUE(Op::BuildBlendSurface(infinite, Far(), 0, 1).IsNull());
}

} // namespace
