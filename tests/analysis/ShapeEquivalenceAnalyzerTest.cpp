#include "analysis/ShapeEquivalenceAnalyzer.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pln.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TopoDS_Shape Box(double length, double width = 10, double height = 10, double x = 0)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, 0, 0), length, width, height).Shape();
}

ShapeEquivalenceReport Compare(const TopoDS_Shape& source, const TopoDS_Shape& candidate,
                               const ShapeEquivalenceOptions& options = {})
{
  return ShapeEquivalenceAnalyzer::Compare(source, candidate, options);
}

// A face whose outline crosses itself.
TopoDS_Face BowTie()
{
  TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln()).Face();
  BRep_Builder().Add(face, BRepBuilderAPI_MakePolygon(gp_Pnt(0, 0, 0), gp_Pnt(9, 9, 0),
                                                      gp_Pnt(9, 0, 0), gp_Pnt(0, 9, 0), true)
                             .Wire());
  return face;
}

} // namespace

TEST(ShapeEquivalence, AShapeIsItself)
{
  const ShapeEquivalenceReport report = Compare(Box(10), Box(10));
  EXPECT_TRUE(report.equivalent && report.sourceValid && report.candidateValid);
  EXPECT_THAT(report.failures, IsEmpty());
  EXPECT_EQ(report.volumeRelativeError + report.areaRelativeError + report.bboxMaxDeviation, 0);
  EXPECT_NEAR(report.source.volume, 1000, 1e-9);
  EXPECT_NEAR(report.source.area, 600, 1e-9);
  EXPECT_NEAR(report.source.xMax, 10, 1e-6);
  EXPECT_EQ(report.source.topology, (ShapeTopologyCounts{1, 1, 6, 6, 24, 48}));
}

TEST(ShapeEquivalence, ToleranceIsRelativeToTheLarger)
{
  ShapeEquivalenceOptions volumeOnly;
  volumeOnly.checkArea = volumeOnly.checkBoundingBox = false;
  EXPECT_TRUE(Compare(Box(10), Box(10.0005), volumeOnly).equivalent);
  const ShapeEquivalenceReport off = Compare(Box(10), Box(10.002), volumeOnly);
  EXPECT_THAT(off.failures, ElementsAre("volume_mismatch"));
  EXPECT_NEAR(off.volumeRelativeError, 0.002 / 10.002, 1e-9);
}

TEST(ShapeEquivalence, EachCheckHasItsCodeAndItsSwitch)
{
  const ShapeEquivalenceReport all = Compare(Box(10), BowTie());
  EXPECT_THAT(all.failures, ElementsAre("candidate_invalid", "volume_mismatch", "area_mismatch",
                                        "bbox_mismatch", "topology_mismatch"));
  // The same box elsewhere; the same volume with another area.
  EXPECT_THAT(Compare(Box(10), Box(10, 10, 10, 0.1)).failures, ElementsAre("bbox_mismatch"));
  EXPECT_NEAR(Compare(Box(10), Box(10, 10, 10, 0.1)).bboxMaxDeviation, 0.1, 1e-9);
  ShapeEquivalenceOptions options;
  options.checkBoundingBox = false;
  EXPECT_THAT(Compare(Box(10), Box(20, 5), options).failures, ElementsAre("area_mismatch"));
  options.checkArea = false;
  EXPECT_TRUE(Compare(Box(10), Box(20, 5), options).areaMatch);
  options.checkVolume = options.checkTopology = false;
  EXPECT_TRUE(Compare(Box(10), Box(3), options).equivalent);
  const ShapeEquivalenceReport invalid = Compare(BowTie(), BowTie());
  EXPECT_FALSE(invalid.equivalent);
  EXPECT_THAT(invalid.failures, ElementsAre("source_invalid", "candidate_invalid"));
}

TEST(ShapeEquivalence, NothingHasMetricsOfZero)
{
  const ShapeEquivalenceReport nothing = Compare({}, {});
  EXPECT_THAT(nothing.failures, ElementsAre("source_invalid", "candidate_invalid"));
  EXPECT_EQ(nothing.source.topology, ShapeTopologyCounts());
  EXPECT_EQ(nothing.volumeRelativeError, 0);
  // Two sheets without volume, and a box that is void.
  TopoDS_Compound empty;
  BRep_Builder().MakeCompound(empty);
  EXPECT_EQ(Compare(empty, empty).bboxMaxDeviation, 0);
  ShapeEquivalenceOptions exact;
  exact.absoluteTolerance = exact.relativeTolerance = 0;
  const TopoDS_Face sheet = BRepBuilderAPI_MakeFace(gp_Pln(), 0, 1, 0, 1).Face();
  EXPECT_TRUE(Compare(sheet, sheet, exact).equivalent);
}

// Below 1 the box tolerance does not shrink with the shape.
TEST(ShapeEquivalence, BoxesNearTheOriginHaveAScaleOfOne)
{
  ShapeEquivalenceOptions boxOnly;
  boxOnly.checkVolume = boxOnly.checkArea = boxOnly.checkTopology = false;
  EXPECT_TRUE(Compare(Box(0.01, 0.01, 0.01), Box(0.0101, 0.01, 0.01), boxOnly).equivalent);
  EXPECT_FALSE(Compare(Box(0.01, 0.01, 0.01), Box(0.01011, 0.01, 0.01), boxOnly).equivalent);
}
