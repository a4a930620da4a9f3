#include "operations/AdvancedSurfaceOp.h"
#include "operations/internal/LoftLadder.h"
#include "support/Measures.h"
#include "support/SurfaceInputs.h"

#include <BRepCheck_Analyzer.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace OrvexTest;
using testing::HasSubstr;

namespace {

using Op = AdvancedSurfaceOp;
using Options = AdvancedLoftOptions;
using Shapes = std::vector<TopoDS_Shape>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Shapes Circles(int count, double radius = 5)
{
  Shapes circles;
  for (int i = 0; i < count; ++i)
    circles.push_back(CircleWire(5 * i, radius));
  return circles;
}

Options Solid(bool ruled = false)
{
  Options options;
  options.solid = true;
  options.ruled = ruled;
  return options;
}

TopoDS_Edge Upright(double x)
{
  return LineEdge(gp_Pnt(x, 0, 0), gp_Pnt(x, 0, 10));
}

void ExpectSame(const std::vector<Options>& found, const std::vector<Options>& expected)
{
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_TRUE(Orvex::IsSameLoft(found[i], expected[i]))
      << i << ": " << Orvex::TextOf(found[i]) << "\nnot " << Orvex::TextOf(expected[i]);
}

TEST(LoftLadder, WhatCountsAsComplex)
{
  struct Row
  {
    int sections, guides;
    bool solid, smoothing;
    int continuity, guideMode;
    bool complex;
  };
  const Row rows[] = {
    {7, 2, true, true, 2, 2, false},    {8, 2, true, true, 0, 0, true},
    {9, 2, true, false, 2, 2, false},   {9, 2, false, true, 2, 2, false},
    {10, 0, false, true, 1, 0, true},   {10, 1, false, true, 0, 2, false},
    {10, 0, false, false, 2, 0, true},  {10, 0, true, false, 1, 0, false},
    {10, 0, true, true, 0, 0, true},    {10, 2, false, true, 0, 0, true},
    {11, 1, false, false, 1, 2, false}, {12, 1, false, false, 1, 2, true},
    {12, 0, false, false, 1, 2, false}, {17, 5, true, false, 1, 1, false},
    {18, 0, false, false, 0, 0, true},
  };
  for (const Row& row : rows) {
    Options options;
    options.solid = row.solid;
    options.smoothing = row.smoothing;
    options.continuity = row.continuity;
    options.guideMode = row.guideMode;
    EXPECT_EQ(Orvex::IsComplexLoft({row.sections, row.guides}, options), row.complex)
      << row.sections << ' ' << row.guides;
  }
}

TEST(LoftLadder, OptionsAreBroughtIntoTheirRanges)
{
  const Options wild = {true, true, false, kNaN, true, -1, 20, 9, -3};
  const Options tame = {true, true, false, 1e-6, true, 0, 14, 2, 0};
  ExpectSame({Orvex::NormalizedLoftOptions(wild)}, {tame});
  Options negative;
  negative.tolerance = -1;
  ExpectSame({Orvex::NormalizedLoftOptions(negative)}, {Options()});

  bool isComplex = true, changed = false;
  const Options given;
  EXPECT_EQ(Op::SanitizeAdvancedLoftOptions(Circles(3), {}, given, &isComplex, &changed).guideMode,
            0);
  EXPECT_TRUE(!isComplex && changed);
  Op::SanitizeAdvancedLoftOptions(Circles(3), {Upright(0)}, given, nullptr, &changed);
  EXPECT_FALSE(changed);
}

TEST(LoftLadder, LargeJobsAreReduced)
{
  Options options = Solid();
  options.guideMode = 2;
  const Options safe = {false, false, true, 1e-5, false, 0, 6, 1, 0};
  ExpectSame({Orvex::SanitizedLoftOptions({18, 1}, options)}, {safe});
  Options guided = safe;
  guided.guideMode = 1;
  ExpectSame({Orvex::SanitizedLoftOptions({12, 1}, options)}, {guided});
  guided.solid = true;
  ExpectSame({Orvex::SanitizedLoftOptions({10, 2}, options)}, {guided});
  options.smoothing = false;
  options.continuity = 1;
  Options shell = options;
  shell.solid = false;
  shell.guideMode = 1;
  options.guideMode = 1;
  ExpectSame({Orvex::SanitizedLoftOptions({12, 1}, options)}, {shell});
}

TEST(LoftLadder, AttemptsInOrder)
{
  const Options given;
  Options position = given, loose = given, reduced = given;
  position.continuity = 0;
  loose.tolerance = 1e-5;
  reduced.tolerance = 5e-5;
  reduced.smoothing = false;
  reduced.continuity = 0;
  reduced.maxDegree = 6;
  ExpectSame(Orvex::LoftAttempts({3, 1}, given), {given, position, loose, reduced});
  // Nothing is left to lower.
  loose = reduced;
  loose.tolerance = 5e-4;
  Options last = loose;
  last.tolerance = 2.5e-3;
  ExpectSame(Orvex::LoftAttempts({3, 1}, reduced), {reduced, loose, last});

  const Options safe = {false, false, true, 1e-5, false, 0, 6, 1, 0};
  Options second = safe, ruled = safe, solid = safe;
  second.tolerance = ruled.tolerance = solid.tolerance = 5e-5;
  ruled.ruled = true;
  solid.solid = true;
  ExpectSame(Orvex::LoftAttempts({18, 0}, Solid()), {safe, second, ruled, solid});
  // What was asked for ruled is tried twice, not three times.
  Options first = safe;
  first.ruled = true;
  ExpectSame(Orvex::LoftAttempts({18, 0}, Solid(true)), {first, ruled, [&] {
                                                           Options all = ruled;
                                                           all.solid = true;
                                                           return all;
                                                         }()});
}

TEST(Loft, SolidsHaveTheVolumesOfPrismsAndCones)
{
  EXPECT_NEAR(VolumeOf(Op::BuildAdvancedLoft(Circles(3), {}, Solid())), M_PI * 250, 1e-2);
  const Shapes frustum = {CircleWire(0, 6), CircleWire(9, 3)};
  EXPECT_NEAR(VolumeOf(Op::BuildAdvancedLoft(frustum, {}, Solid(true))), M_PI * 3 * 63, 1e-3);
  const Shapes squares = {SquareWire(0, 4), SquareWire(5, 4), SquareWire(10, 4)};
  const TopoDS_Shape block = Op::BuildAdvancedLoft(squares, {}, Solid(true));
  EXPECT_NEAR(VolumeOf(block), 160, 1e-6);
  EXPECT_TRUE(BRepCheck_Analyzer(block).IsValid());
  const TopoDS_Shape tube = Op::BuildAdvancedLoft(Circles(20), {}, {});
  EXPECT_NEAR(AreaOf(tube), 2 * M_PI * 5 * 95, 1e-2);
  EXPECT_EQ(tube.ShapeType(), TopAbs_SHELL);
}

TEST(Loft, FacesAndLooseEdgesAreSectionsToo)
{
  const TopoDS_Shape face = BRepBuilderAPI_MakeFace(SquareWire(0, 4)).Shape();
  TopoDS_Compound edges;
  BRep_Builder().MakeCompound(edges);
  for (const TopoDS_Shape& edge : PartsOf(SquareWire(10, 4), TopAbs_EDGE))
    BRep_Builder().Add(edges, edge);
  EXPECT_NEAR(VolumeOf(Op::BuildAdvancedLoft({face, edges}, {}, Solid())), 160, 1e-6);
}

// Where the middle one of three circles of 5 about the Z axis lies, ruled so that it is met.
double MiddleAt(const Shapes& guides, int guideMode)
{
  Options options;
  options.ruled = true;
  options.guideMode = guideMode;
  const TopoDS_Shape shell = Op::BuildAdvancedLoft(Circles(3), guides, options);
  double middle = kNaN;
  for (const TopoDS_Shape& edge : PartsOf(shell, TopAbs_EDGE)) {
    const Bnd_Box box = BoundsOf(edge);
    const gp_XYZ centre = (box.CornerMin().XYZ() + box.CornerMax().XYZ()) / 2;
    const bool isFlat = box.CornerMax().Z() - box.CornerMin().Z() < 1e-3;
    if (isFlat && std::abs(centre.Z() - 5) < 1e-3)
      middle = centre.X();
    else if (isFlat) {
      EXPECT_NEAR(centre.X(), 0, 1e-6) << "a section at an end has moved";
    }
  }
  return middle;
}

TEST(Loft, GuidesDrawTheInnerSections)
{
  EXPECT_NEAR(MiddleAt({Upright(4)}, 0), 0, 1e-6);
  EXPECT_NEAR(MiddleAt({Upright(4)}, 1), 2, 1e-6);
  EXPECT_NEAR(MiddleAt({Upright(4), Upright(8)}, 1), 3, 1e-6);
  EXPECT_NEAR(MiddleAt({WireFrom(Upright(4))}, 1), 2, 1e-6);
  EXPECT_NEAR(MiddleAt({Upright(5.0001)}, 2), 1e-4, 1e-6);
}

TEST(Loft, StrictGuidesMustLieCloseBy)
{
  Options strict;
  strict.guideMode = 2;
  OperationReport report;
  EXPECT_TRUE(Op::BuildAdvancedLoft(Circles(3), {Upright(6)}, strict, &report).IsNull());
  EXPECT_EQ(report.outcome, OperationOutcome::Failed);
  EXPECT_EQ(report.attempts.size(), 4U);
  EXPECT_THAT(report.Text(), HasSubstr("too far from its guides"));
  // Within 50 times 5e-5 and 1e-4 only the last attempt takes it.
  EXPECT_FALSE(Op::BuildAdvancedLoft(Circles(3), {Upright(5.002)}, strict, &report).IsNull());
  ASSERT_NE(report.Winner(), nullptr);
  EXPECT_EQ(report.Winner(), &report.attempts[3]);
}

TEST(Loft, AGuideThatIsNoCurveFailsUnlessGuidesAreIgnored)
{
  const TopoDS_Shape vertex = BRepBuilderAPI_MakeVertex(gp_Pnt(5, 0, 0)).Shape();
  const Shapes guides = {vertex, Upright(5)};
  EXPECT_TRUE(Op::BuildAdvancedLoft(Circles(3), guides, {}).IsNull());
  // None that is valid switches guides off.
  EXPECT_FALSE(Op::BuildAdvancedLoft(Circles(3), {vertex, TopoDS_Shape()}, {}).IsNull());
}

TEST(Loft, WhatIsNoLoftIsRefused)
{
  const TopoDS_Shape circle = CircleWire(0, 5);
  const TopoDS_Shape nowhere = CircleWire(kNaN, 5);
  const TopoDS_Shape point = BRepBuilderAPI_MakeVertex(gp_Pnt()).Shape();
  for (const Shapes& sections :
       {Shapes{}, Shapes{circle}, Shapes{circle, circle}, Shapes{circle, circle.Reversed()},
        Shapes{circle, TopoDS_Shape()}, Shapes{circle, point}, Shapes{circle, nowhere}}) {
    OperationReport report;
    EXPECT_TRUE(Op::BuildAdvancedLoft(sections, {}, {}, &report).IsNull());
    EXPECT_FALSE(report.reason.empty());
  }
  EXPECT_FALSE(Op::BuildAdvancedLoft(Circles(3), {Upright(5), Upright(5)}, {}).IsNull());
  const TopoDS_Shape guide = Upright(5);
  EXPECT_TRUE(Op::BuildAdvancedLoft(Circles(3), {guide, guide}, {}).IsNull());
}

TEST(Loft, TheKernelsFailureToSmoothIsNoCrash)
{
  Options options;
  options.maxDegree = 3;
  options.continuity = 2;
  OperationReport report;
  const TopoDS_Shape shell = Op::BuildAdvancedLoft(Circles(3), {}, options, &report);
  EXPECT_NEAR(AreaOf(shell), 2 * M_PI * 5 * 10, 1e-2);
  EXPECT_FALSE(report.attempts.front().built);
  EXPECT_THAT(report.Text(), HasSubstr("could not do it"));
}

const TopoDS_Edge kLeftRail = LineEdge(gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 20));
const TopoDS_Edge kRightRail = LineEdge(gp_Pnt(10, 0, 0), gp_Pnt(10, 0, 20));

TEST(Loft, SmoothingNeedsContinuity)
{
  Options options;
  options.continuity = 0;
  OperationReport report;
  EXPECT_FALSE(Op::BuildAdvancedLoft(Circles(4), {}, options, &report).IsNull());
  ASSERT_EQ(report.attempts.size(), 3);
  EXPECT_EQ(report.attempts.front().reason, "smoothing without continuity");
  EXPECT_EQ(report.Winner(), &report.attempts.back());
  EXPECT_EQ(report.Winner()->description.find("smoothing"), std::string::npos);
}

TEST(Sweep2, OneSectionRunsAlongBothRails)
{
  const TopoDS_Wire roof = PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(5, 5, 0), gp_Pnt(10, 0, 0)}, false);
  const TopoDS_Shape swept = Op::BuildSweep2(kLeftRail, kRightRail, {roof}, 1);
  EXPECT_NEAR(AreaOf(swept), 2 * std::sqrt(50) * 20, 1e-3);
}

TEST(Sweep2, AClosedSectionGivesASolid)
{
  const TopoDS_Wire prism = PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(5, 5, 0), gp_Pnt(10, 0, 0)}, true);
  OperationReport report;
  const TopoDS_Shape swept = Op::BuildSweep2(kLeftRail, kRightRail, {prism}, 1, &report);
  ASSERT_FALSE(swept.IsNull()) << report.Text();
  EXPECT_EQ(swept.ShapeType(), TopAbs_SOLID);
  EXPECT_NEAR(std::abs(VolumeOf(swept)), 500, 1e-3);
}

TEST(Sweep2, SeveralSectionsAreLofted)
{
  const Shapes arcs = {ArcAt(0, 5, 0, M_PI), ArcAt(20, 5, 0, M_PI)};
  OperationReport report;
  const TopoDS_Shape swept = Op::BuildSweep2(kLeftRail, kRightRail, arcs, 7, &report);
  EXPECT_NEAR(AreaOf(swept), M_PI * 5 * 20, 1e-2);
  ASSERT_EQ(report.attempts.size(), 1U);
  EXPECT_THAT(report.attempts[0].description, HasSubstr("continuity 2"));
  Op::BuildSweep2(kLeftRail, kRightRail, arcs, -1, &report);
  EXPECT_THAT(report.attempts[0].description, HasSubstr("continuity 1"));
}

TEST(Sweep2, WhatCannotBeSweptGivesNull)
{
  const TopoDS_Shape vertex = BRepBuilderAPI_MakeVertex(gp_Pnt()).Shape();
  const TopoDS_Shape straight = LineEdge(gp_Pnt(0, 0, 0), gp_Pnt(10, 0, 0));
  const TopoDS_Shape roof =
    PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(5, 5, 0), gp_Pnt(10, 0, 0)}, false);
  EXPECT_TRUE(Op::BuildSweep2(vertex, kRightRail, {roof}, 1).IsNull());
  EXPECT_TRUE(Op::BuildSweep2(kLeftRail, {}, {roof}, 1).IsNull());
  EXPECT_TRUE(Op::BuildSweep2(kLeftRail, kRightRail, {}, 1).IsNull());
  EXPECT_TRUE(Op::BuildSweep2(kLeftRail, kRightRail, {vertex}, 1).IsNull());
  EXPECT_TRUE(Op::BuildSweep2(kLeftRail, kRightRail, {straight}, 1).IsNull())
    << "crashes the kernel";
  EXPECT_TRUE(Op::BuildSweep2(kLeftRail, PoleOfSphere(), {roof}, 1).IsNull());
}

} // namespace
