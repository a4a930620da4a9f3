#include "document/ShapeLabelMgr.h"

#include "document/LabelScheme.h"
#include "foundation/MessageLog.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <TDataStd_Name.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <gtest/gtest.h>

#include <stdexcept>

using OrvexTest::TestDocument;

namespace {

ShapeLabelMgr& Registry()
{
  return *ShapeLabelMgr::GetInstance();
}

TopoDS_Shape Box(double size)
{
  return BRepPrimAPI_MakeBox(size, size, size).Shape();
}

TopoDS_Shape FirstFace(const TopoDS_Shape& shape)
{
  return TopExp_Explorer(shape, TopAbs_FACE).Current();
}

TopoDS_Shape MovedCopy(const TopoDS_Shape& shape, double dx)
{
  gp_Trsf trsf;
  trsf.SetTranslation(gp_Vec(dx, 0, 0));
  return shape.Moved(trsf);
}

// A label as the kernel alone makes it: sub-shapes take their tags from 1.
TDF_Label LabelWithUnreservedTags(const TestDocument& document, const TopoDS_Shape& shape)
{
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Doc()->Main());
  const TDF_Label label = tool->NewShape();
  tool->SetShape(label, shape);
  return label;
}

class ShapeRegistry : public testing::Test
{
protected:
  TDF_Label Add(const TopoDS_Shape& shape)
  {
    return Registry().AddNewShapeToDocAndGetLabel(document.Doc(), shape);
  }

  TestDocument document;
};

TEST(ShapeRegistryWithoutDocument, AnswersEveryQuestionWithNothing)
{
  TopoDS_Shape shape = Box(1);
  std::string name = "x";
  EXPECT_TRUE(Registry().AddNewShapeToDocAndGetLabel(nullptr, shape).IsNull());
  EXPECT_TRUE(Registry().GetShapeLabel(shape).IsNull());
  EXPECT_TRUE(Registry().GetShapeByLabel(TDF_Label()).IsNull());
  EXPECT_TRUE(Registry().GetShapeByName(name).IsNull());
  EXPECT_TRUE(ShapeLabelMgr::GetAllShapes().empty());
  EXPECT_TRUE(ShapeLabelMgr::GetAllBoundingBox().IsVoid());
  EXPECT_FALSE(Registry().SetShapeName(&shape, name));
  EXPECT_FALSE(Registry().RemoveShape(shape));
  EXPECT_EQ(Registry().GetShapeName(&shape), "Default_Name");
  EXPECT_EQ(Registry().GetShapeMaterial(shape), "Not-Found");
  EXPECT_EQ(Registry().GetPrimitiveType(shape), -1);
  EXPECT_EQ(Registry().GetShapeTransparent(shape), 1.0);
  EXPECT_FALSE(Registry().GetShapeVisibilty(shape));
  EXPECT_TRUE(Registry().GetIsShapeEnabled(shape));
}

TEST_F(ShapeRegistry, FindsLabelsOfShapesAndShapesOfLabels)
{
  TopoDS_Shape small = Box(1);
  TopoDS_Shape large = Box(2);
  TopoDS_Shape stranger = Box(3);
  const TDF_Label smallLabel = Add(small);
  const TDF_Label largeLabel = Add(large);

  EXPECT_TRUE(Registry().GetShapeLabel(small).IsEqual(smallLabel));
  EXPECT_TRUE(Registry().GetShapeByLabel(largeLabel).IsSame(large));
  EXPECT_TRUE(Registry().GetShapeByTag(largeLabel.Tag()).IsSame(large));
  EXPECT_TRUE(Registry().GetShapeByTag(77).IsNull());
  const auto labels = Registry().GetShapeLabels({large, stranger, small});
  ASSERT_EQ(labels.size(), 3U);
  EXPECT_TRUE(labels[0].IsEqual(largeLabel));
  EXPECT_TRUE(labels[1].IsNull());
  EXPECT_TRUE(labels[2].IsEqual(smallLabel));
  const auto shapes = Registry().GetShapesByLabels({smallLabel, TDF_Label()});
  ASSERT_EQ(shapes.size(), 2U);
  EXPECT_TRUE(shapes[0].IsSame(small));
  EXPECT_TRUE(shapes[1].IsNull());
  // The kernel ignores where a shape is.
  EXPECT_TRUE(Registry().GetShapeLabel(MovedCopy(small, 5)).IsEqual(smallLabel));
  EXPECT_TRUE(Registry().GetShapeLabel(static_cast<const TopoDS_Shape*>(nullptr)).IsNull());
  EXPECT_TRUE(Registry().GetShapeLabel(TopoDS_Shape()).IsNull());
  EXPECT_TRUE(Add(TopoDS_Shape()).IsNull());
}

TEST_F(ShapeRegistry, EnumeratesInDocumentOrder)
{
  Add(Box(1));
  Add(FirstFace(Box(2)));
  Add(MovedCopy(Box(1), 10));
  EXPECT_EQ(ShapeLabelMgr::GetAllShapes().size(), 3U);
  EXPECT_EQ(Registry().GetAllShapes(document.Doc()).size(), 3U);
  EXPECT_EQ(Registry().GetAllSolidShapes().size(), 2U);
  EXPECT_EQ(Registry().GetAllShapeNames().size(), 3U);

  const auto first = ShapeLabelMgr::GetAllShapesPtr();
  ShapeLabelMgr::GetAllShapesPtr();
  const auto all = ShapeLabelMgr::GetAllShapes();
  ASSERT_EQ(first.size(), all.size());
  for (std::size_t i = 0; i < all.size(); ++i)
    EXPECT_TRUE(first[i]->IsEqual(all[i]));

  double x0, y0, z0, x1, y1, z1;
  ShapeLabelMgr::GetAllBoundingBox().Get(x0, y0, z0, x1, y1, z1);
  EXPECT_NEAR(x0, 0, 1e-6);
  EXPECT_NEAR(x1, 11, 1e-6);
  EXPECT_NEAR(z1, 2, 1e-6);
}

TEST_F(ShapeRegistry, PointersStayValidWhileAWalkAsksAgain)
{
  for (int i = 1; i <= 3; ++i)
    Add(Box(i));
  int same = 0;
  for (const TopoDS_Shape* outer : ShapeLabelMgr::GetAllShapesPtr())
    for (const TopoDS_Shape* inner : ShapeLabelMgr::GetAllShapesPtr())
      same += outer->IsSame(*inner) ? 1 : 0;
  EXPECT_EQ(same, 3);
  const auto before = ShapeLabelMgr::GetAllShapesPtr();
  for (int i = 4; i <= 12; ++i) {
    Add(Box(i));
    EXPECT_EQ(ShapeLabelMgr::GetAllShapesPtr().size(), static_cast<std::size_t>(i));
  }
  EXPECT_FALSE(before[2]->IsNull());
}

TEST_F(ShapeRegistry, TextThatIsCutInsideACharacterIsKeptAsFarAsItGoes)
{
  TopoDS_Shape shape = Box(1);
  TDataStd_Name::Set(Add(shape).FindChild(Orvex::kMaterialTag), "Not Assigned");
  std::string cut = "abc\xE2";
  Registry().SetShapeMaterial(shape, cut);
  EXPECT_EQ(Registry().GetShapeMaterial(shape), "abc\xEF\xBF\xBD");
  Registry().SetShapeDisplayMode(shape, cut);
  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "abc");
}

TEST_F(ShapeRegistry, SubShapesAreFoundByTheShapeThatUndoBroughtBack)
{
  TestDocument undoable(10);
  const TopoDS_Shape first = Box(1), second = Box(2);
  const TDF_Label label = Registry().AddNewShapeToDocAndGetLabel(undoable.Doc(), first);
  TopoDS_Shape firstFace = FirstFace(first), secondFace = FirstFace(second);
  undoable.Doc()->NewCommand();
  XCAFDoc_DocumentTool::ShapeTool(label)->SetShape(label, second);
  undoable.Doc()->CommitCommand();
  undoable.Doc()->Undo();
  int shapeTag = -1, faceTag = -1;
  Registry().GetShapeLabelWithFaceTagID(secondFace, shapeTag, faceTag);
  EXPECT_EQ(shapeTag, -1);
  Registry().GetShapeLabelWithFaceTagID(firstFace, shapeTag, faceTag);
  EXPECT_EQ(shapeTag, label.Tag());
}

TEST_F(ShapeRegistry, NamesBelongToLabelsAndTheEarlierLabelWins)
{
  TopoDS_Shape first = Box(1);
  TopoDS_Shape second = Box(2);
  Add(first);
  const TDF_Label secondLabel = Add(second);
  std::string name = "Zahnrad Größe 2";
  EXPECT_EQ(Registry().GetShapeName(&first), "Default_Name");
  EXPECT_TRUE(Registry().SetShapeName(&second, name));
  EXPECT_EQ(Registry().GetShapeNameByLabel(secondLabel), name);
  EXPECT_TRUE(Registry().GetShapeByName(name).IsSame(second));
  EXPECT_TRUE(Registry().SetShapeName(&first, name));
  EXPECT_TRUE(Registry().GetShapeByName(name).IsSame(first));
  EXPECT_FALSE(Registry().SetShapeName(nullptr, name));
}

TEST_F(ShapeRegistry, ColoursAreClampedAndPureYellowBecomesAmber)
{
  TopoDS_Shape shape = Box(1);
  const TDF_Label label = Add(shape);
  double r = 9, g = 9, b = 9;
  EXPECT_TRUE(Registry().GetShapeColor(shape, r, g, b));
  EXPECT_EQ(std::vector({r, g, b}), std::vector({0.7, 0.2, 0.8}));

  struct Case
  {
    std::array<double, 3> given, kept;
  };
  for (const Case& c : {Case{{1, 1, 0}, {1, 0.85, 0}}, Case{{0.95, 0.95, 0.15}, {1, 0.85, 0}},
                        Case{{0.94, 1, 0}, {0.94, 1, 0}}, Case{{1, 1, 0.16}, {1, 1, 0.16}},
                        Case{{-3, 0.5, 7}, {0, 0.5, 1}}}) {
    auto [red, green, blue] = c.given;
    Registry().SetShapeColor(shape, red, green, blue);
    EXPECT_EQ((std::array{red, green, blue}), c.kept);
    EXPECT_TRUE(Registry().GetShapeColor(shape, r, g, b));
    EXPECT_EQ((std::array{r, g, b}), c.kept);
  }
  EXPECT_TRUE(Orvex::HasName(label.FindChild(Orvex::kColorTag), "Color"));
  // Without a label the caller's variables are clamped all the same.
  double high = 2;
  Registry().SetShapeColor(Box(9), high, g, b);
  EXPECT_EQ(high, 1.0);
  EXPECT_FALSE(Registry().GetShapeColor(Box(9), r, g, b));
}

TEST_F(ShapeRegistry, FlagsAndTransparencyAreMadeOnDemand)
{
  TopoDS_Shape shape = Box(1);
  const TDF_Label label = Add(shape);
  EXPECT_TRUE(Registry().GetShapeVisibilty(shape));
  EXPECT_TRUE(Registry().GetIsShapeEnabled(shape));
  Registry().SetShapeVisibilty(shape, false);
  Registry().SetIsShapeEnabled(shape, false);
  EXPECT_FALSE(Registry().GetShapeVisibilty(shape));
  EXPECT_FALSE(Registry().GetIsShapeEnabled(shape));
  EXPECT_TRUE(Orvex::HasName(label.FindChild(Orvex::kVisibilityTag), "Visibility"));
  EXPECT_TRUE(Orvex::HasName(label.FindChild(Orvex::kEnabledTag), "Enabled"));
  Handle(TDataStd_BooleanList) list;
  Registry().SetShapeVisibilty(shape, true);
  ASSERT_TRUE(
    label.FindChild(Orvex::kVisibilityTag).FindAttribute(TDataStd_BooleanList::GetID(), list));
  EXPECT_EQ(list->Extent(), 1);

  EXPECT_EQ(Registry().GetShapeTransparent(shape), 1.0);
  EXPECT_EQ(Orvex::RealOf(label.FindChild(Orvex::kTransparentTag)), 1.0);
  Registry().SetShapeTransparent(shape, -7.5);
  EXPECT_EQ(Registry().GetShapeTransparent(shape), -7.5);
}

TEST_F(ShapeRegistry, DisplayModeIsAWordWithTheFlagAsFallback)
{
  std::vector<std::pair<int, std::string>> log;
  const auto sink = Orvex::SetMessageSink(
    [&](int level, const std::string& text) { log.emplace_back(level, text); });
  TopoDS_Shape shape = Box(1);
  const TDF_Label child = Add(shape).FindChild(Orvex::kDisplayModeTag);

  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "surface");
  Registry().SetShapeDisplayMode(shape, "WireFrame");
  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "wireframe");
  EXPECT_TRUE(Registry().GetShapeIsWireFrameMode(shape));
  Registry().SetShapeDisplayMode(shape, "Ghost");
  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "ghost");
  EXPECT_EQ(Orvex::FlagOf(child), false);

  Registry().SetShapeIsWireFrameMode(shape, true);
  TDataStd_Name::Set(child, TCollection_ExtendedString("äö", true));
  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "wireframe");
  TopoDS_Shape stranger = Box(5);
  EXPECT_EQ(Registry().GetShapeDisplayMode(stranger), "surface");
  Registry().SetShapeDisplayMode(stranger, "wireframe");
  Orvex::SetMessageSink(sink);

  const std::vector<std::pair<int, std::string>> expected = {
    {0, "GetShapeDisplayMode: No DisplayMode attribute found, using default 'surface'"},
    {1, "GetShapeDisplayMode: modeName found but empty after conversion! ExtStr length = 2. "
        "Falling back to BooleanList."},
    {0, "GetShapeDisplayMode: Using BooleanList fallback, isWireframe=true, returning: wireframe"},
    {1, "GetShapeDisplayMode: inputLabel is null, defaulting to surface"},
    {1, "SetShapeDisplayMode: inputLabel is null, skipping update"}};
  EXPECT_EQ(log, expected);
}

TEST_F(ShapeRegistry, DisplayModeSurvivesALogThatThrows)
{
  const auto sink =
    Orvex::SetMessageSink([](int, const std::string&) { throw std::runtime_error("log is full"); });
  TopoDS_Shape shape = Box(1);
  Add(shape);
  EXPECT_EQ(Registry().GetShapeDisplayMode(shape), "surface");
  Orvex::SetMessageSink(sink);
}

TEST_F(ShapeRegistry, MaterialNeedsTheAttributeOfACreatedShape)
{
  TopoDS_Shape shape = Box(1);
  TopoDS_Shape none;
  const TDF_Label child = Add(shape).FindChild(Orvex::kMaterialTag);
  std::string steel = "Stahl übergroß";
  Registry().SetShapeMaterial(shape, steel);
  EXPECT_EQ(Registry().GetShapeMaterial(shape), "");
  EXPECT_FALSE(Registry().ShapeHasMaterial(shape));
  TDataStd_Name::Set(child, "Not Assigned");
  EXPECT_FALSE(Registry().ShapeHasMaterial(shape));
  Registry().SetShapeMaterial(shape, steel);
  EXPECT_EQ(Registry().GetShapeMaterial(shape), steel);
  EXPECT_TRUE(Registry().ShapeHasMaterial(shape));
  EXPECT_EQ(Registry().GetShapeMaterial(none), "No-Geometry");
  EXPECT_EQ(Registry().GetMaterialByLabel(child), "");
  EXPECT_EQ(Registry().GetPrimitiveType(shape), 0);
  EXPECT_EQ(Registry().GetPrimitiveType(none), -1);
  EXPECT_EQ(Registry().GetShapeElementID(none), 2);
}

TEST_F(ShapeRegistry, ConnectingGivesALabelAShapeAndATypeIfItHasNone)
{
  TopoDS_Shape first = Box(1);
  TopoDS_Shape second = Box(2);
  const TDF_Label label = Add(first);
  Registry().ConnectShapeAndLable(second, label);
  EXPECT_TRUE(Registry().GetShapeByLabel(label).IsSame(second));
  EXPECT_EQ(Registry().GetPrimitiveType(second), Orvex::kTypeCompound);
  Orvex::SetType(label, Orvex::kTypeBox);
  Registry().ConnectShapeAndLable(first, label);
  EXPECT_EQ(Registry().GetPrimitiveType(first), Orvex::kTypeBox);
}

TEST_F(ShapeRegistry, SubShapesStayClearOfTheAttributes)
{
  TopoDS_Shape shape = Box(1);
  const TDF_Label label = Add(shape);
  Orvex::SetType(label, Orvex::kTypeBox);
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Doc()->Main());
  TopoDS_Shape face = FirstFace(shape);
  const TDF_Label faceLabel = tool->AddSubShape(label, face);
  EXPECT_EQ(faceLabel.Tag(), Orvex::kFeatureMetaTag + 1);

  std::string name = "top";
  EXPECT_TRUE(Registry().SetShapeName(&face, name));
  EXPECT_EQ(Registry().GetPrimitiveType(shape), Orvex::kTypeBox);
  EXPECT_EQ(Orvex::ValidTypeOf(label), Orvex::kTypeBox);

  int shapeTag = 0, faceTag = 0;
  EXPECT_TRUE(Registry().GetShapeLabelWithFaceTagID(face, shapeTag, faceTag));
  EXPECT_EQ(shapeTag, label.Tag());
  EXPECT_EQ(faceTag, faceLabel.Tag());
  EXPECT_TRUE(Registry().GetShapeLabelWithFace(face).IsEqual(faceLabel));
  EXPECT_TRUE(Registry().GetSubShapeByTag(shapeTag, faceTag).IsSame(face));
  EXPECT_TRUE(Registry().GetSubShapeByTag(shapeTag, 1).IsNull());

  // A face that has no label of its own, and one that belongs to nothing.
  TopExp_Explorer faces(shape, TopAbs_FACE);
  faces.Next();
  TopoDS_Shape unnamed = faces.Current();
  shapeTag = faceTag = -1;
  EXPECT_FALSE(Registry().GetShapeLabelWithFaceTagID(unnamed, shapeTag, faceTag));
  EXPECT_EQ(std::pair(shapeTag, faceTag), std::pair(label.Tag(), -1));
  TopoDS_Shape stranger = FirstFace(Box(7));
  shapeTag = -1;
  EXPECT_FALSE(Registry().GetShapeLabelWithFaceTagID(stranger, shapeTag, faceTag));
  EXPECT_EQ(shapeTag, -1);
}

TEST_F(ShapeRegistry, ADocumentWithSubShapesOnAttributeTagsReadsRight)
{
  TopoDS_Shape shape = Box(1);
  const TDF_Label label = LabelWithUnreservedTags(document, shape);
  label.FindChild(Orvex::kTypeTag);
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Doc()->Main());
  const TopoDS_Shape face = FirstFace(shape);
  ASSERT_EQ(tool->AddSubShape(label, face).Tag(), Orvex::kTypeTag);

  Orvex::SetType(label, Orvex::kTypeBox);
  EXPECT_EQ(Registry().GetPrimitiveType(shape), Orvex::kTypeBox);
  EXPECT_TRUE(Registry().GetSubShapeByTag(label.Tag(), Orvex::kTypeTag).IsSame(face));
  // From now on further sub-shapes stay clear.
  TopExp_Explorer edges(shape, TopAbs_EDGE);
  EXPECT_GT(tool->AddSubShape(label, edges.Current()).Tag(), Orvex::kFeatureMetaTag);
}

TEST_F(ShapeRegistry, ReadingNeverGrowsALabelWithHighTags)
{
  TopoDS_Shape shape = Box(1);
  TDF_Label label = Add(shape);
  Orvex::SetType(label, Orvex::kTypeBox);
  const TDF_Label point = label.FindChild(9);
  Orvex::SetName(point, "Base Point");
  Orvex::SetPoint(point, gp_Pnt(1, 2, 3));
  Orvex::SetName(label.FindChild(Orvex::kFeatureMetaTag), "meta");
  for (TopExp_Explorer edges(shape, TopAbs_EDGE); edges.More(); edges.Next())
    XCAFDoc_DocumentTool::ShapeTool(document.Doc()->Main())->AddSubShape(label, edges.Current());
  const int before = label.NbChildren();
  gp_Trsf trsf;
  trsf.SetTranslation(gp_Vec(10, 0, 0));
  for (int i = 0; i < 3; ++i)
    Registry().UpdateTDFByMoveAction(label, trsf);
  EXPECT_EQ(label.NbChildren(), before);
  EXPECT_TRUE(Orvex::PointOf(point)->IsEqual(gp_Pnt(31, 2, 3), 1e-12));
  EXPECT_TRUE(Orvex::ChildByName(label, "meta").IsNull());
}

TEST_F(ShapeRegistry, SubShapeTreesAreKeyedByTheShapeTheyBelongTo)
{
  const TopoDS_Shape shape = Box(1);
  const TDF_Label label = Add(shape);
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Doc()->Main());
  const TopoDS_Shape face = FirstFace(shape);
  tool->AddSubShape(label, face);
  tool->AddSubShape(label, TopExp_Explorer(shape, TopAbs_EDGE).Current());

  ShapeLabelMgr::SubShapeMap flat;
  Registry().GetSubshapNocursive(label, flat);
  ASSERT_EQ(flat.size(), 1U);
  ASSERT_EQ(flat[shape.TShape()].size(), 2U);
  EXPECT_TRUE(flat[shape.TShape()][0].IsSame(face));
  Registry().GetSubshapNocursive(label, flat);
  EXPECT_EQ(flat[shape.TShape()].size(), 4U);

  ShapeLabelMgr::SubShapeMap deep;
  Registry().GetSubshapWithcursive(label, deep);
  EXPECT_EQ(deep[shape.TShape()].size(), 2U);
  EXPECT_TRUE(deep[face.TShape()].empty());
  Registry().GetSubshapWithcursive(TDF_Label(), deep);
  EXPECT_EQ(deep.size(), 3U);
}

TEST_F(ShapeRegistry, RemovingTakesTheLabelOutOfTheDocument)
{
  TopoDS_Shape first = Box(1);
  TopoDS_Shape second = Box(2);
  Add(first);
  TDF_Label secondLabel = Add(second);
  EXPECT_TRUE(Registry().RemoveShape(first));
  EXPECT_FALSE(Registry().RemoveShape(first));
  EXPECT_TRUE(Registry().RemoveShapeByLabel(secondLabel));
  EXPECT_TRUE(ShapeLabelMgr::GetAllShapes().empty());
  TDF_Label null;
  EXPECT_FALSE(Registry().RemoveShapeByLabel(null));
}

} // namespace
