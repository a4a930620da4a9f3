#include "operations/OrvexGeometryOp.h"

#include "creators/BoxShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/TestDocument.h"

#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

using namespace OrvexTest;

namespace {

using Manager = ParametricFeatureManager;

const Manager::FeatureInfo* FeatureOn(const TDF_Label& label)
{
  return Manager::GetInstance().FindFeature(Manager::MakeLabelKey(label));
}

int CountOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  TopTools_IndexedMapOfShape found;
  TopExp::MapShapes(shape, type, found);
  return found.Extent();
}

// Two boxes of 10 that have an eighth in common.
class GeometryOp : public testing::Test
{
protected:
  static TDF_Label AddBox(double corner)
  {
    return BoxShapeParaCreator().CreateBox(gp_Pnt(corner, corner, corner), gp_Dir(0, 0, 1), 10, 10,
                                           10);
  }

  static TopoDS_Shape ShapeOn(const TDF_Label& label)
  {
    return XCAFDoc_ShapeTool::GetShape(label);
  }

  std::string Dump() const
  {
    return DumpOf(document.Doc()->Main());
  }

  bool IsThere(const TopoDS_Shape& shape) const
  {
    return !ShapeLabelMgr::GetInstance()->GetShapeLabel(shape).IsNull();
  }

  TestDocument document{10};
  TDF_Label labelA = AddBox(0), labelB = AddBox(5);
  TopoDS_Shape a = ShapeOn(labelA), b = ShapeOn(labelB), none;
};

// The manager reads its switch when it is first asked, which making a box does.
class GeometryOpUnparametric : public testing::Test
{
protected:
  GeometryOpUnparametric()
  {
    setenv("TARVEL_ENABLE_PARAMETRIC", "0", 1);
    EXPECT_FALSE(Manager::GetInstance().IsEnabled());
  }

  static TopoDS_Shape Add(const TestDocument& document, const TopoDS_Shape& shape)
  {
    ShapeLabelMgr::GetInstance()->AddNewShapeToDoc(document.Doc(), shape);
    return shape;
  }

  static std::size_t ShapeCount()
  {
    return ShapeLabelMgr::GetAllShapes().size();
  }
};

TEST_F(GeometryOp, ResultsAreCompoundsByTypeWithNumbersThatGoUp)
{
  TopoDS_Shape stray = BoxAt(2, 2, 2);
  std::vector<TopoDS_Shape> single = {a};
  const TDF_Label results[] = {OrvexGeometryOp::PerformUnite(single, true),
                               OrvexGeometryOp::PerformSew(a, b),
                               OrvexGeometryOp::PerformSubtract(a, stray, eBOOL_KEEP_BOTH)};
  int number = 2; // after the two boxes
  for (const TDF_Label& result : results) {
    ASSERT_FALSE(result.IsNull());
    EXPECT_EQ(*Orvex::NameOf(result), TCollection_AsciiString("compound") + number++);
    EXPECT_EQ(Orvex::ValidTypeOf(result), Orvex::kTypeCompound);
    for (int tag = Orvex::kTypeTag; tag <= Orvex::kDisplayModeTag; ++tag)
      EXPECT_TRUE(Orvex::NameOf(result.FindChild(tag, false)).has_value()) << tag;
    EXPECT_EQ(FeatureOn(result), nullptr) << "sewn, or made of one shape with a label";
  }
}

TEST_F(GeometryOp, VolumesObeyTheLawsOfSets)
{
  for (OperandPair& pair : SolidPairs()) {
    SCOPED_TRACE(pair.name);
    const double first = VolumeOf(pair.first), second = VolumeOf(pair.second);
    const double common = VolumeOf(OrvexGeometryOp::PerformIneersect(pair.first, pair.second));
    const double united = VolumeOf(OrvexGeometryOp::PerformUnite(pair.first, pair.second));
    const double cut = VolumeOf(OrvexGeometryOp::PerformSubtract(pair.first, pair.second, true));
    const double tolerance = 0.5; // the loose vertex stands half a thousandth off a face of 1000
    EXPECT_NEAR(united, first + second - common, tolerance);
    EXPECT_NEAR(cut, first - common, tolerance);
    EXPECT_EQ(VolumeOf(OrvexGeometryOp::PerformSubtract(pair.first, pair.second, false)), cut);

    TopoDS_Shape chopped;
    EXPECT_TRUE(OrvexGeometryOp::PerformChop(pair.first, pair.second, chopped, true));
    EXPECT_NEAR(VolumeOf(chopped), cut, tolerance);
    std::vector<TopoDS_Shape> both = {pair.first, pair.second};
    EXPECT_EQ(VolumeOf(ShapeOn(OrvexGeometryOp::PerformUnite(both, true))), united);
    const TDF_Label difference =
      OrvexGeometryOp::PerformSubtract(pair.first, pair.second, eBOOL_KEEP_BOTH);
    EXPECT_EQ(VolumeOf(ShapeOn(difference)), cut);
  }
}

// All operations, on the shapes of two labels.
void RunEverything(TopoDS_Shape& first, TopoDS_Shape& second)
{
  std::vector<TopoDS_Shape> both = {first, second};
  OrvexGeometryOp::PerformUnite(both, false);
  OrvexGeometryOp::PerformUnite(first, second);
  OrvexGeometryOp::PerformSubtract(first, second, eBOOL_REMOVE_BOTH);
  OrvexGeometryOp::PerformSubtract(first, second, true);
  OrvexGeometryOp::PerformIneersect(first, second);
  OrvexGeometryOp::PerformSew(first, second);
  TopoDS_Shape chopped;
  OrvexGeometryOp::PerformChop(first, second, chopped, true);
  for (const bool nonDestructive : {false, true}) {
    BooleanSettings settings;
    settings.nonDestructive = nonDestructive;
    settings.fuzzyValue = 1e-3;
    OrvexGeometryOp::PerformChopEnhanced(first, second, settings);
  }
}

TEST_F(GeometryOp, OperandsOnTheirLabelsStayBitForBit)
{
  std::vector<OperandPair> pairs = SolidPairs();
  pairs.push_back(SolidAndFace());
  for (OperandPair& pair : pairs) {
    SCOPED_TRACE(pair.name);
    auto* registry = ShapeLabelMgr::GetInstance();
    const TDF_Label first = registry->AddNewShapeToDocAndGetLabel(document.Doc(), pair.first);
    const TDF_Label second = registry->AddNewShapeToDocAndGetLabel(document.Doc(), pair.second);
    const std::string before = DumpOf(first) + DumpOf(second);
    RunEverything(pair.first, pair.second);
    EXPECT_TRUE(SameDump(DumpOf(first) + DumpOf(second), before));
  }
}

TEST_F(GeometryOp, EachIsOneUndoStep)
{
  std::vector<TopoDS_Shape> shapes = {a, b};
  TopoDS_Shape chopped;
  const std::vector<std::function<void()>> operations = {
    [&] { OrvexGeometryOp::PerformUnite(shapes, true); },
    [&] { OrvexGeometryOp::PerformSubtract(a, b, eBOOL_REMOVE_BOTH); },
    [&] { OrvexGeometryOp::PerformSew(a, b); },
    [&] { OrvexGeometryOp::PerformChop(a, b, chopped, false); },
  };
  for (const auto& operation : operations) {
    const std::string before = Dump();
    operation();
    const std::string after = Dump();
    EXPECT_NE(after, before);
    EXPECT_EQ(document.Doc()->GetAvailableUndos(), 1);
    document.Doc()->Undo();
    EXPECT_TRUE(SameDump(Dump(), before));
    document.Doc()->Redo();
    EXPECT_TRUE(SameDump(Dump(), after));
    document.Doc()->Undo();
  }
}

TEST_F(GeometryOp, AnOpenCommandIsJoined)
{
  const std::string before = Dump();
  document.Doc()->NewCommand();
  OrvexGeometryOp::PerformSubtract(a, b, eBOOL_KEEP_BOTH);
  TopoDS_Shape result;
  EXPECT_FALSE(OrvexGeometryOp::PerformChop(a, none, result, false));
  EXPECT_TRUE(document.Doc()->HasOpenCommand());
  EXPECT_NE(Dump(), before);
  document.Doc()->AbortCommand();
  EXPECT_TRUE(SameDump(Dump(), before));
}

TEST_F(GeometryOp, ResultsAreRegisteredAndFollowTheirOperands)
{
  std::vector<TopoDS_Shape> shapes = {a, b};
  const TDF_Label cut = OrvexGeometryOp::PerformSubtract(a, b, eBOOL_REMOVE_BOTH);
  const TDF_Label fuse = OrvexGeometryOp::PerformUnite(shapes, false);
  EXPECT_TRUE(IsThere(a) && IsThere(b)) << "kept for the rebuild";
  const std::vector inputs = {Manager::MakeLabelKey(labelA), Manager::MakeLabelKey(labelB)};
  ASSERT_NE(FeatureOn(cut), nullptr);
  ASSERT_NE(FeatureOn(fuse), nullptr);
  EXPECT_EQ(FeatureOn(cut)->type, "BooleanCut");
  EXPECT_EQ(FeatureOn(fuse)->type, "BooleanFuse");
  EXPECT_EQ(FeatureOn(cut)->featureDependencies, inputs);
  EXPECT_EQ(FeatureOn(fuse)->featureDependencies, inputs);

  Orvex::SetReal(Orvex::ChildByName(labelB, "Height"), 2);
  BoxShapeParaCreator().UpdateShape(labelB);
  EXPECT_TRUE(FeatureOn(cut)->rebuild() && FeatureOn(fuse)->rebuild());
  EXPECT_NEAR(VolumeOf(ShapeOn(cut)), 1000 - 5 * 5 * 2, 1e-6);
  EXPECT_NEAR(VolumeOf(ShapeOn(fuse)), 1000 + 200 - 5 * 5 * 2, 1e-6);
}

TEST_F(GeometryOpUnparametric, TheOptionTellsWhatIsRemoved)
{
  struct Case
  {
    eBOOL_Option option;
    bool firstStays, secondStays;
  };
  for (const Case& row :
       {Case{eBOOL_KEEP_BOTH, true, true}, Case{eBOOL_REMOVE_BOTH, false, false},
        Case{eBOOL_REMOVE_SECOND, true, false}, Case{eBOOL_REMOVE_FIRST, false, true}}) {
    SCOPED_TRACE(row.option);
    const TestDocument document;
    TopoDS_Shape a = Add(document, BoxAt(0, 0, 0)), b = Add(document, BoxAt(5, 5, 5));
    const TDF_Label result = OrvexGeometryOp::PerformSubtract(a, b, row.option);
    auto* registry = ShapeLabelMgr::GetInstance();
    EXPECT_NE(registry->GetShapeLabel(a).IsNull(), row.firstStays);
    EXPECT_NE(registry->GetShapeLabel(b).IsNull(), row.secondStays);
    EXPECT_FALSE(result.IsNull());
    EXPECT_EQ(FeatureOn(result), nullptr);
  }
}

TEST_F(GeometryOpUnparametric, AUnionRemovesItsOriginalsOrRegistersThem)
{
  const TestDocument document;
  std::vector<TopoDS_Shape> shapes;
  for (int i = 0; i < 3; ++i)
    shapes.push_back(Add(document, BoxAt(5.0 * i, 0, 0)));
  const TDF_Label kept = OrvexGeometryOp::PerformUnite(shapes, true);
  ASSERT_NE(FeatureOn(kept), nullptr);
  EXPECT_EQ(FeatureOn(kept)->featureDependencies.size(), 3);
  EXPECT_EQ(ShapeCount(), 4);
  const TDF_Label alone = OrvexGeometryOp::PerformUnite(shapes, false);
  EXPECT_EQ(FeatureOn(alone), nullptr);
  EXPECT_EQ(ShapeCount(), 2);
  EXPECT_NEAR(VolumeOf(XCAFDoc_ShapeTool::GetShape(alone)), 2000, 1e-6);
}

TEST_F(GeometryOpUnparametric, WhatFailsLeavesTheOperandsAndNoUndoStep)
{
  for (const int undoLimit : {0, 10}) {
    const TestDocument document(undoLimit);
    TopoDS_Shape solid = Add(document, BoxAt(0, 0, 0)), none;
    TopoDS_Shape square = Add(document, SquareAt(2, 2, 5));
    const std::string before = DumpOf(document.Doc()->Main());
    std::vector<TopoDS_Shape> nulls = {none, none, solid}, empty;
    EXPECT_TRUE(OrvexGeometryOp::PerformUnite(nulls, false).IsNull());
    EXPECT_TRUE(OrvexGeometryOp::PerformUnite(empty, false).IsNull());
    // The kernel does not cut a solid with a face.
    EXPECT_TRUE(OrvexGeometryOp::PerformSubtract(solid, square, eBOOL_REMOVE_BOTH).IsNull());
    EXPECT_TRUE(OrvexGeometryOp::PerformSubtract(solid, none, eBOOL_REMOVE_FIRST).IsNull());
    TopoDS_Shape result = square;
    EXPECT_FALSE(OrvexGeometryOp::PerformChop(none, solid, result, false));
    EXPECT_FALSE(OrvexGeometryOp::PerformChop(solid, none, result, false));
    EXPECT_FALSE(OrvexGeometryOp::PerformChop(solid, square, result, false));
    EXPECT_TRUE(result.IsEqual(square));
    EXPECT_ANY_THROW(OrvexGeometryOp::PerformSew(solid, none));
    EXPECT_FALSE(document.Doc()->HasOpenCommand());
    EXPECT_EQ(document.Doc()->GetAvailableUndos(), 0);
    EXPECT_TRUE(SameDump(DumpOf(document.Doc()->Main()), before));
  }
}

TEST_F(GeometryOp, APairThatCannotBeFusedBecomesACompoundAndTheUnionGoesOn)
{
  TopoDS_Shape square = SquareAt(2, 2, 5);
  std::vector<TopoDS_Shape> shapes = {a, square};
  const TopoDS_Shape pair = ShapeOn(OrvexGeometryOp::PerformUnite(shapes, true));
  EXPECT_EQ(pair.NbChildren(), 2);
  EXPECT_EQ(CountOf(pair, TopAbs_FACE), 7);
  EXPECT_TRUE(OrvexGeometryOp::PerformUnite(a, square).IsNull()) << "two shapes have no fallback";

  shapes = {a, none, b, square};
  const TopoDS_Shape all = ShapeOn(OrvexGeometryOp::PerformUnite(shapes, true));
  EXPECT_EQ(CountOf(all, TopAbs_SOLID), 1);
  EXPECT_NEAR(VolumeOf(TopExp_Explorer(all, TopAbs_SOLID).Current()), 1875, 1e-6);
}

TEST_F(GeometryOp, SewingJoinsCopiesAlongTheirCommonEdge)
{
  TopoDS_Shape left = SquareAt(0, 0, 40), right = SquareAt(10, 0, 40);
  const TopoDS_Shape sewn = ShapeOn(OrvexGeometryOp::PerformSew(left, right));
  EXPECT_EQ(CountOf(sewn, TopAbs_SHELL), 1);
  EXPECT_EQ(CountOf(sewn, TopAbs_FACE), 2);
  EXPECT_EQ(CountOf(sewn, TopAbs_EDGE), 7);
  TopTools_IndexedMapOfShape parts;
  TopExp::MapShapes(sewn, parts);
  EXPECT_FALSE(parts.Contains(left) || parts.Contains(right));
}

TEST_F(GeometryOp, AChopTakesTheFirstShapeFromTheDocumentIfAsked)
{
  TopoDS_Shape result;
  EXPECT_TRUE(OrvexGeometryOp::PerformChop(a, b, result, true));
  EXPECT_TRUE(IsThere(a));
  EXPECT_TRUE(OrvexGeometryOp::PerformChop(a, b, result, false));
  EXPECT_FALSE(IsThere(a) || IsThere(result));
  EXPECT_TRUE(IsThere(b));
  EXPECT_NEAR(VolumeOf(result), 875, 1e-6);
}

TEST_F(GeometryOp, WithoutADocumentShapesAreMadeAndLabelsAreNot)
{
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  std::vector<TopoDS_Shape> shapes = {a, b};
  EXPECT_TRUE(OrvexGeometryOp::PerformUnite(shapes, false).IsNull());
  EXPECT_TRUE(OrvexGeometryOp::PerformSubtract(a, b, eBOOL_REMOVE_BOTH).IsNull());
  EXPECT_TRUE(OrvexGeometryOp::PerformSew(a, b).IsNull());
  TopoDS_Shape result;
  EXPECT_TRUE(OrvexGeometryOp::PerformChop(a, b, result, false));
  EXPECT_NEAR(VolumeOf(result), 875, 1e-6);
  EXPECT_NEAR(VolumeOf(OrvexGeometryOp::PerformIneersect(a, b)), 125, 1e-6);
}

// --- The chop for a dialog ---

TEST(BooleanSettings, DefaultsAreThoseOfTheConstructor)
{
  for (const BooleanSettings& settings : {BooleanSettings(), BooleanSettings::Default()}) {
    EXPECT_EQ(settings.fuzzyValue, 1e-7);
    EXPECT_TRUE(settings.runParallel);
    EXPECT_FALSE(settings.nonDestructive);
    EXPECT_EQ(settings.glue, BOPAlgo_GlueOff);
  }
}

void ExpectRefused(const ChopResult& result, const std::string& message)
{
  EXPECT_FALSE(result.success);
  EXPECT_EQ(result.modifiedIndex, -1);
  EXPECT_TRUE(result.choppedShape.IsNull() && result.keptShape.IsNull());
  EXPECT_EQ(result.message, message);
}

TEST_F(GeometryOp, TheEnhancedChopCutsTheSecondShapeAndKeepsTheFirst)
{
  const std::string before = Dump();
  const ChopResult result = OrvexGeometryOp::PerformChopEnhanced(a, b, BooleanSettings());
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.modifiedIndex, 1);
  EXPECT_EQ(result.message, "");
  EXPECT_NEAR(result.overlapVolume, 125, 1e-6);
  EXPECT_NEAR(VolumeOf(result.choppedShape), 1000 - result.overlapVolume, 1e-6);
  EXPECT_TRUE(BoundsOf(result.choppedShape).CornerMax().IsEqual(gp_Pnt(15, 15, 15), 1e-5));
  EXPECT_TRUE(result.keptShape.IsEqual(a));
  EXPECT_TRUE(SameDump(Dump(), before));
}

TEST_F(GeometryOp, TheEnhancedChopTellsWhyItFailed)
{
  const BooleanSettings settings;
  for (const OperandPair& pair : {DisjointBoxes(), TouchingBoxes()}) {
    const ChopResult result =
      OrvexGeometryOp::PerformChopEnhanced(pair.first, pair.second, settings);
    ExpectRefused(result, "Shapes have no measurable overlap.");
    EXPECT_NEAR(result.overlapVolume, 0, 1e-9);
  }
  // The side of a drill has a part in common with the box, and a volume since it is curved; but no
  // solid can be cut with a face.
  const TopoDS_Shape side = TopExp_Explorer(Drill(), TopAbs_FACE).Current();
  ExpectRefused(OrvexGeometryOp::PerformChopEnhanced(side, a, settings),
                "Chop operation failed. Try adjusting Fuzzy Tolerance.");
  const ChopResult thrown = OrvexGeometryOp::PerformChopEnhanced(a, none, settings);
  ExpectRefused(thrown, thrown.message);
  EXPECT_TRUE(thrown.message.starts_with("Boolean operation failed: ")) << thrown.message;
}

TEST_F(GeometryOp, TheEnhancedChopTakesTheFuzzyValueOfTheUser)
{
  // An overlap of a thousandth: more than the default tolerance, less than the larger one.
  const TopoDS_Shape low = BoxAt(0, 0, 0), high = BoxAt(0, 0, 10 - 1e-3);
  BooleanSettings settings;
  EXPECT_TRUE(OrvexGeometryOp::PerformChopEnhanced(low, high, settings).success);
  settings.fuzzyValue = 5e-3;
  EXPECT_FALSE(OrvexGeometryOp::PerformChopEnhanced(low, high, settings).success);
}

} // namespace
