#include "analysis/SurfaceQualityAnalyzer.h"

#include "support/PlainThickness.h"
#include "support/Plate.h"
#include "support/Sanitized.h"
#include "support/StepFiles.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <STEPControl_Reader.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

#include <cmath>

using Analyzer = SurfaceQualityAnalyzer;
using namespace OrvexTest;

namespace {

TopoDS_Face FirstFace(const TopoDS_Shape& shape)
{
  return TopoDS::Face(TopExp_Explorer(shape, TopAbs_FACE).Current());
}

void ExpectThicknessOfPlainForm(const TopoDS_Shape& shape, int samples)
{
  const PlainThickness plain(shape, samples);
  const auto report = Analyzer::AnalyzeThickness(shape, samples, 1 << 20);
  ASSERT_EQ(report.hotspots.size(), plain.values.size());
  for (const ThicknessHotspot& at : report.hotspots) {
    const auto expected = plain.values.find({double(at.face), at.u, at.v});
    ASSERT_NE(expected, plain.values.end()) << "face " << at.face << " at " << at.u << ", " << at.v;
    // Where the kernel approximates an intersection, it starts from the range of the line that it
    // is given.
    EXPECT_NEAR(at.value, expected->second, 1e-6);
  }
}

} // namespace

TEST(SurfaceQuality, CurvatureIsThatOfTheFormulas)
{
  const auto sphere = Analyzer::AnalyzeCurvatureMap(FirstFace(BRepPrimAPI_MakeSphere(5)), 5, 4);
  ASSERT_TRUE(sphere.valid);
  EXPECT_EQ(sphere.samples.size(), 10U) << "without those at the poles";
  EXPECT_NEAR(sphere.averageGaussianCurvature, 1 / 25.0, 1e-12);
  EXPECT_NEAR(sphere.maxMeanCurvature, 1 / 5.0, 1e-12);
  EXPECT_EQ(sphere.samples[0].zebraValue, 0);
  const auto wall = Analyzer::AnalyzeCurvatureMap(FirstFace(BRepPrimAPI_MakeCylinder(4, 9)), 2, 2);
  EXPECT_EQ(wall.samples.size(), 4U);
  EXPECT_NEAR(wall.maxGaussianCurvature, 0, 1e-15);
  EXPECT_NEAR(wall.averageMeanCurvature, 1 / 8.0, 1e-12);
  EXPECT_NEAR(wall.samples[1].v, 9, 1e-9) << "V runs first";
  // Around the tube of a torus: 1 / (r (R + r)) outside.
  const auto torus = Analyzer::AnalyzeCurvatureMap(FirstFace(BRepPrimAPI_MakeTorus(9, 2)), 2, 3);
  EXPECT_NEAR(torus.samples[0].gaussianCurvature, 1 / (2.0 * 11), 1e-12);
  EXPECT_NEAR(torus.samples[1].gaussianCurvature, -1 / (2.0 * 7), 1e-12);
}

TEST(SurfaceQuality, ZebraFollowsTheNormal)
{
  const TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln(), 0, 1, 0, 1).Face();
  for (const auto& sample : Analyzer::AnalyzeZebraMap(face, gp::DZ(), 3, 3, M_PI / 2).samples)
    EXPECT_NEAR(sample.zebraValue, 1, 1e-12);
  for (const auto& sample : Analyzer::AnalyzeZebraMap(face, gp::DX(), 3, 3, 7).samples)
    EXPECT_EQ(sample.zebraValue, 0.5) << "the light grazes";
  const TopoDS_Face ball = FirstFace(BRepPrimAPI_MakeSphere(5));
  for (const auto& sample : Analyzer::AnalyzeZebraMap(ball, gp::DZ(), 4, 4, 0).samples)
    EXPECT_EQ(sample.zebraValue, 0.5);
}

TEST(SurfaceQuality, DraftIsTheAngleAgainstThePull)
{
  // The wall of a cone leans by the arc tangent of (8 - 5) / 9.
  const TopoDS_Face wall = FirstFace(BRepPrimAPI_MakeCone(8, 5, 9));
  const double lean = std::atan2(3, 9) * 180 / M_PI;
  const auto report = Analyzer::AnalyzeDraft(wall, gp::DZ(), lean, 4, 3, 5);
  ASSERT_TRUE(report.valid);
  EXPECT_TRUE(report.passes) << "just the required angle";
  EXPECT_EQ(report.samples, 12);
  EXPECT_NEAR(report.averageAngleDegrees, lean, 1e-9);
  const auto steeper = Analyzer::AnalyzeDraft(wall, gp::DZ(), lean + 1, 4, 3, 5);
  EXPECT_FALSE(steeper.passes);
  EXPECT_EQ(steeper.violations, 12);
  ASSERT_EQ(steeper.hotspots.size(), 5U);
  EXPECT_EQ(steeper.hotspots[0].face, 1);
  EXPECT_EQ(steeper.hotspots[0].u, 0);
  EXPECT_NEAR(steeper.hotspots[4].dot, std::sin(lean * M_PI / 180), 1e-12);
  const auto under = Analyzer::AnalyzeDraft(wall, -gp::DZ(), -3, 4, 3, -1);
  EXPECT_EQ(under.requiredAngleDegrees, 0);
  EXPECT_NEAR(under.minAngleDegrees, -lean, 1e-9);
  EXPECT_EQ(under.violations, 12);
  EXPECT_TRUE(under.hotspots.empty());
  const auto box = Analyzer::AnalyzeDraft(BRepPrimAPI_MakeBox(1, 2, 3), gp::DZ(), 0, 2, 2, 9);
  EXPECT_EQ(box.samples, 24);
  EXPECT_NEAR(box.maxAngleDegrees, 90, 1e-9);
}

TEST(SurfaceQuality, ReflectionsLieOnACheckeredSphere)
{
  const TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln(), 0, 1, 0, 1).Face();
  const auto straight = Analyzer::AnalyzeEnvironmentReflection(face, gp::DZ(), 2, 2, 0.5);
  ASSERT_TRUE(straight.valid);
  EXPECT_EQ(straight.samples, 4);
  EXPECT_NEAR(straight.values[3].reflectionZ, 1, 1e-12);
  EXPECT_EQ(straight.values[3].checkerValue, 1);
  EXPECT_NEAR(straight.values[3].point.Distance(gp_Pnt(1, 1, 0)), 0, 1e-12);
  // From the side at 45 degrees: to the other side, longitude pi, polar angle pi / 4.
  const auto slanted = Analyzer::AnalyzeEnvironmentReflection(face, gp_Dir(1, 0, 1), 2, 2, 0.5);
  EXPECT_NEAR(slanted.values[0].reflectionX, -std::sqrt(0.5), 1e-12);
  EXPECT_EQ(slanted.values[0].checkerValue, (6 + 1) % 2 == 0 ? 1 : 0);
  for (const double tile : {0.0, -1.0, 1e-12, std::nan("")})
    EXPECT_FALSE(Analyzer::AnalyzeEnvironmentReflection(face, gp::DZ(), 2, 2, tile).valid);
}

TEST(SurfaceQuality, TheSmallestRadiusComesFirst)
{
  const auto ball = Analyzer::AnalyzeMinRadius(BRepPrimAPI_MakeSphere(5), 6, 3);
  ASSERT_TRUE(ball.valid);
  EXPECT_EQ(ball.faces, 1);
  EXPECT_EQ(ball.samples, 24);
  EXPECT_NEAR(ball.minValue, 5, 1e-12);
  EXPECT_NEAR(ball.maxValue, 5, 1e-12);
  EXPECT_EQ(ball.hotspots.size(), 3U);
  const auto pin = Analyzer::AnalyzeMinRadius(BRepPrimAPI_MakeCylinder(4, 9), 3, 100);
  EXPECT_EQ(pin.faces, 3);
  EXPECT_EQ(pin.samples, 9) << "the ends are flat";
  const auto flat = Analyzer::AnalyzeMinRadius(BRepPrimAPI_MakeBox(1, 2, 3), 3, 9);
  EXPECT_FALSE(flat.valid);
  EXPECT_EQ(flat.faces, 6);
  EXPECT_TRUE(flat.hotspots.empty());
  // Around its tube a torus bends by r, at the outside of its ring by R + r: the smaller counts. A
  // cone bends ever more towards its tip.
  const auto cone = Analyzer::AnalyzeMinRadius(BRepPrimAPI_MakeCone(8, 2, 9), 4, 100);
  const double lean = std::hypot(6, 9) / 9;
  EXPECT_NEAR(cone.minValue, 2 * lean, 1e-9);
  EXPECT_NEAR(cone.maxValue, 8 * lean, 1e-9);
  for (std::size_t i = 1; i < cone.hotspots.size(); ++i)
    EXPECT_LE(cone.hotspots[i - 1].value, cone.hotspots[i].value);
}

TEST(SurfaceQuality, ThicknessOfAPlateIsItsThickness)
{
  const TopoDS_Shape plate = BRepPrimAPI_MakeBox(40, 30, 2).Shape();
  const auto report = Analyzer::AnalyzeThickness(plate, 5, 10);
  ASSERT_TRUE(report.valid);
  EXPECT_EQ(report.faces, 6);
  EXPECT_NEAR(report.minValue, 2, 1e-5);
  EXPECT_NEAR(report.maxValue, 40, 1e-5);
  EXPECT_EQ(report.hotspots.size(), 10U);
  // An open shell has no inside.
  const auto sheet =
    Analyzer::AnalyzeThickness(BRepBuilderAPI_MakeFace(gp_Pln(), 0, 1, 0, 1).Face(), 3, 10);
  EXPECT_TRUE(sheet.valid);
  EXPECT_EQ(sheet.samples, 0);
}

TEST(SurfaceQuality, ThicknessIsThatOfTheKernelsPlainRays)
{
  ExpectThicknessOfPlainForm(BRepPrimAPI_MakeBox(40, 30, 2).Shape(), 4);
  ExpectThicknessOfPlainForm(BRepPrimAPI_MakeTorus(9, 2).Shape(), 7);
  ExpectThicknessOfPlainForm(BRepPrimAPI_MakeCone(8, 2, 9).Shape(), 6);
  ExpectThicknessOfPlainForm(PerforatedPlate(4), 6);
}

TEST(SurfaceQuality, ThicknessOfRealFilesIsThatOfThePlainRays)
{
  if (ReadableFiles().empty())
    GTEST_SKIP() << "ORVEX_TEST_DATA does not name the folder of real STEP files";
  constexpr int kMostFaces = FewerIfSanitized(130, 30);
  for (const FileFacts& facts : ReadableFiles()) {
    if (facts.numbers.at("faces") > kMostFaces)
      continue;
    SCOPED_TRACE(facts.file);
    STEPControl_Reader reader;
    ASSERT_EQ(reader.ReadFile(DataFile(facts.file).toStdString().c_str()), IFSelect_RetDone);
    reader.TransferRoots();
    ExpectThicknessOfPlainForm(reader.OneShape(), 3);
  }
}

TEST(SurfaceQuality, GridsForColoursHoldTheSameValues)
{
  const TopoDS_Shape plate = PerforatedPlate(2);
  const auto draft = Analyzer::SampleDraftForColoring(plate, gp::DZ(), 3, 4);
  ASSERT_EQ(draft.size(), 10U);
  const auto analysis = Analyzer::AnalyzeDraft(plate, gp::DZ(), 0, 3, 4, 0);
  double smallest = 90, largest = -90;
  for (const AnalysisColoringGrid& grid : draft) {
    EXPECT_EQ(grid.values.size(), 12U);
    smallest = std::min(smallest, grid.minValue);
    largest = std::max(largest, grid.maxValue);
  }
  EXPECT_EQ(smallest, analysis.minAngleDegrees);
  EXPECT_EQ(largest, analysis.maxAngleDegrees);
  const auto thickness = Analyzer::AnalyzeThickness(plate, 4, 1 << 20);
  int values = 0;
  for (const AnalysisColoringGrid& grid : Analyzer::SampleThicknessForColoring(plate, 4)) {
    EXPECT_EQ(grid.nu * grid.nv, 16);
    for (const double value : grid.values)
      values += value != 0;
  }
  EXPECT_EQ(values, thickness.samples);
  for (const ThicknessHotspot& hotspot : thickness.hotspots) {
    EXPECT_GE(hotspot.face, 1);
    EXPECT_LE(hotspot.face, 10);
  }
}

TEST(SurfaceQuality, ArgumentsWithoutSamplesGiveNoReport)
{
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(1, 2, 3).Shape();
  const TopoDS_Shape compound = TopoDS_Compound();
  for (const int none : {1, 0, -5}) {
    EXPECT_FALSE(Analyzer::AnalyzeCurvatureMap(FirstFace(box), none, 3).valid);
    EXPECT_FALSE(Analyzer::AnalyzeZebraMap(FirstFace(box), gp::DZ(), 3, none, 1).valid);
    EXPECT_FALSE(Analyzer::AnalyzeDraft(box, gp::DZ(), 1, none, 3, 1).valid);
    EXPECT_FALSE(Analyzer::AnalyzeEnvironmentReflection(box, gp::DZ(), 3, none, 1).valid);
    EXPECT_FALSE(Analyzer::AnalyzeMinRadius(box, none, 1).valid);
    EXPECT_FALSE(Analyzer::AnalyzeThickness(box, none, 1).valid);
    EXPECT_TRUE(Analyzer::SampleDraftForColoring(box, gp::DZ(), none, 3).empty());
    EXPECT_TRUE(Analyzer::SampleThicknessForColoring(box, none).empty());
  }
  EXPECT_FALSE(Analyzer::AnalyzeCurvatureMap({}, 3, 3).valid);
  EXPECT_FALSE(Analyzer::AnalyzeDraft({}, gp::DZ(), 1, 3, 3, 1).valid);
  EXPECT_FALSE(Analyzer::AnalyzeEnvironmentReflection({}, gp::DZ(), 3, 3, 1).valid);
  EXPECT_FALSE(Analyzer::AnalyzeMinRadius({}, 3, 1).valid);
  EXPECT_FALSE(Analyzer::AnalyzeThickness({}, 3, 1).valid);
  EXPECT_TRUE(Analyzer::EvaluateAdjacencyContinuity({}, 1e-6).empty());
  EXPECT_TRUE(Analyzer::SampleThicknessForColoring({}, 3).empty());
  // A plane without end has values, and its rays no end.
  const TopoDS_Face endless = BRepBuilderAPI_MakeFace(gp_Pln()).Face();
  EXPECT_TRUE(Analyzer::AnalyzeCurvatureMap(endless, 3, 3).valid);
  EXPECT_EQ(Analyzer::AnalyzeThickness(endless, 3, 1).samples, 0);
}
