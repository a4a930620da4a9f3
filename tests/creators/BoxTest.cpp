#include "creators/BoxShapeParaCreator.h"

#include "creators/ShapeParaCreatorTool.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "parameters/GlobalParaMeterMgr.h"
#include "support/TestDocument.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <Standard_ConstructionError.hxx>
#include <TDF_TagSource.hxx>
#include <gp.hxx>

#include <gtest/gtest.h>

using OrvexTest::DumpOf;
using OrvexTest::SameDump;
using OrvexTest::TestDocument;

namespace {

struct BoxValues
{
  gp_Pnt corner;
  gp_Dir normal;
  double length = 0, width = 0, height = 0;
};

class BoxCreation : public testing::Test
{
protected:
  TDF_Label Make(double dx = 2, double dy = 3, double dz = 4)
  {
    return box.CreateBox(gp_Pnt(1, 1, 1), gp::DZ(), dx, dy, dz);
  }

  BoxValues Read(const TDF_Label& label)
  {
    BoxValues v;
    box.GetParameter(label, v.corner, v.normal, v.length, v.width, v.height);
    return v;
  }

  void Write(TDF_Label label, BoxValues v)
  {
    box.SetShapeParameter(label, v.corner, v.normal, v.length, v.width, v.height);
  }

  static TopoDS_Shape ShapeOf(const TDF_Label& label)
  {
    return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  }

  static double VolumeOf(const TDF_Label& label)
  {
    GProp_GProps properties;
    BRepGProp::VolumeProperties(ShapeOf(label), properties);
    return properties.Mass();
  }

  static TDF_Label Parameter(const TDF_Label& label, const char* name)
  {
    return Orvex::ChildByName(label, name);
  }

  static void Bind(const TDF_Label& parameter, const char* text)
  {
    Orvex::SetName(parameter.FindChild(1), text);
  }

  static void Global(const char* name, int type, const char* value)
  {
    ParametersDef definition;
    definition.name = name;
    definition.type = type;
    definition.valueText = value;
    GlobalParaMeterMgr::AddParameter(name, definition);
  }

  TestDocument document{100};
  BoxShapeParaCreator box;
};

TEST_F(BoxCreation, WritesNameCommonAttributesAndParametersOnTheirTags)
{
  const int number = TarvelNameIndexMgr::GetGlobeIndex();
  const TDF_Label label = Make();
  TopoDS_Shape shape = ShapeOf(label);
  auto* registry = ShapeLabelMgr::GetInstance();
  EXPECT_NEAR(VolumeOf(label), 24, 1e-9);
  EXPECT_EQ(registry->GetShapeName(&shape), "Box_" + std::to_string(number + 1));
  EXPECT_EQ(registry->GetPrimitiveType(shape), 10);
  EXPECT_EQ(registry->GetShapeMaterial(shape), "Not Assigned");
  EXPECT_FALSE(registry->ShapeHasMaterial(shape));
  EXPECT_EQ(registry->GetShapeDisplayMode(shape), "surface");

  const std::vector<std::pair<int, std::string>> expected = {
    {1, "Type"},    {2, "Visibility"}, {3, "Transparent"},  {4, "Color"},      {5, "Material"},
    {6, "Enabled"}, {7, "Mesh Size"},  {8, "Display Mode"}, {9, "Base Point"}, {10, "Normal"},
    {11, "Length"}, {12, "Width"},     {13, "Height"}};
  std::vector<std::pair<int, std::string>> found;
  for (TDF_ChildIterator child(label); child.More(); child.Next())
    found.emplace_back(child.Value().Tag(), Orvex::NameOf(child.Value())->ToCString());
  EXPECT_EQ(found, expected);
  Handle(TDF_TagSource) tags;
  ASSERT_TRUE(label.FindAttribute(TDF_TagSource::GetID(), tags));
  EXPECT_GE(tags->Get(), Orvex::kFeatureMetaTag);

  bool visible = false, enabled = false;
  double transparent = 0;
  gp_Pnt color;
  int untouched = 42;
  TDF_Label target = label;
  box.GetCommonAttribute(target, visible, transparent, color, untouched, enabled);
  EXPECT_TRUE(visible && enabled);
  EXPECT_EQ(transparent, 1.0);
  EXPECT_TRUE(color.IsEqual(gp_Pnt(0.7, 0.2, 0.8), 0));
  EXPECT_EQ(untouched, 42);
  TDF_Label null;
  try {
    box.GetCommonAttribute(null, visible, transparent, color, untouched, enabled);
    FAIL() << "a null label must be refused";
  } catch (const std::exception& failure) {
    EXPECT_STREQ(failure.what(), "GetCommonAttribute: input label is null");
  }
}

TEST_F(BoxCreation, AFailedOrHomelessCreationAddsNothingAndDrawsNoNumber)
{
  const int before = TarvelNameIndexMgr::GetGlobeIndex();
  EXPECT_THROW(Make(0), Standard_Failure);
  EXPECT_TRUE(ShapeLabelMgr::GetAllShapes().empty());
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  EXPECT_TRUE(Make().IsNull());
  EXPECT_EQ(TarvelNameIndexMgr::GetGlobeIndex(), before + 1);
}

TEST_F(BoxCreation, RebuildsFromItsParametersWithinTheirClamps)
{
  TDF_Label label = Make();
  BoxValues values = Read(label);
  EXPECT_TRUE(values.corner.IsEqual(gp_Pnt(1, 1, 1), 0));
  values.length = 20;
  values.width = 0;   // refused: the old one stays
  values.height = -1; // refused as well
  values.normal = gp::DX();
  Write(label, values);
  EXPECT_NEAR(VolumeOf(label), 24, 1e-9) << "storing does not rebuild";
  box.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(label), 20 * 3 * 4, 1e-9);
  EXPECT_EQ(Read(label).width, 3);

  Orvex::SetReal(Parameter(label, "Length"), 1e-9);
  Orvex::SetReal(Parameter(label, "Width"), -3.5);
  box.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(label), 1e-6 * 3.5 * 4, 1e-12);

  Orvex::SetPoint(Parameter(label, "Normal"), gp_Pnt());
  const std::string before = DumpOf(label);
  EXPECT_THROW(box.UpdateShape(label), Standard_ConstructionError);
  EXPECT_TRUE(SameDump(DumpOf(label), before));
}

TEST_F(BoxCreation, AxesWithTheirOwnXDirectionShapeTheBoxButAreNotStored)
{
  TDF_Label label = box.CreateBox(gp_Ax2(gp::Origin(), gp::DZ(), gp::DY()), 10, 1, 1);
  const auto extent = [&](int axis) {
    Bnd_Box bounds;
    BRepBndLib::AddOptimal(ShapeOf(label), bounds, false, false);
    return bounds.CornerMax().Coord(axis) - bounds.CornerMin().Coord(axis);
  };
  EXPECT_NEAR(extent(2), 10, 1e-6);
  box.UpdateShape(label);
  EXPECT_NEAR(extent(1), 10, 1e-6);
}

TEST_F(BoxCreation, ReferencesOverrideTheStoredValues)
{
  TDF_Label label = Make();
  TDF_Label length = Parameter(label, "Length");
  Global("wide", 1, "7");
  Global("origin", 2, "5, 6, 7");

  struct Case
  {
    const char* text;
    double expected;
  };
  for (const Case& c : {Case{"12.5", 12.5}, Case{"wide", 7.0}, Case{"-3", 0.0}, Case{"", 0.0},
                        Case{"unknown", 0.0}, Case{"1.2.3", 0.0}}) {
    Bind(length, c.text);
    EXPECT_EQ(box.GetDoubleParaValue(length), c.expected) << c.text;
  }
  Bind(length, "wide");
  box.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(label), 7 * 3 * 4, 1e-9);

  // With two children there is no reference.
  Orvex::SetName(length.FindChild(2), "8");
  EXPECT_EQ(box.GetDoubleParaValue(length), 2.0);

  TDF_Label corner = Parameter(label, "Base Point");
  Bind(corner, "origin");
  EXPECT_TRUE(box.GetPointParaValue(corner).IsEqual(gp_Pnt(5, 6, 7), 0));
  for (const char* noVector : {"wide", "unknown", "123"}) {
    Bind(corner, noVector);
    EXPECT_TRUE(box.GetPointParaValue(corner).IsEqual(gp_Pnt(1, 1, 1), 0)) << noVector;
  }
  TDF_Label bare = label.FindChild(500);
  EXPECT_EQ(box.GetDoubleParaValue(bare), 0.0);
  EXPECT_TRUE(box.GetPointParaValue(bare).IsEqual(gp_Pnt(), 0));
}

TEST_F(BoxCreation, MovesItsParametersAndLeavesTheShapeToTheRebuild)
{
  TDF_Label label = Make();
  const TopoDS_Shape before = ShapeOf(label);
  gp_Trsf trsf;
  trsf.SetTranslation(gp_Vec(10, 0, 0));
  box.PerformTransform(label, trsf);
  EXPECT_TRUE(Read(label).corner.IsEqual(gp_Pnt(11, 1, 1), 1e-12));
  EXPECT_TRUE(ShapeOf(label).IsEqual(before));
  box.UpdateShape(label);
  Bnd_Box bounds;
  BRepBndLib::AddOptimal(ShapeOf(label), bounds, false, false);
  EXPECT_NEAR(bounds.CornerMin().X(), 11, 1e-6);

  box.PerformObjectTransform(label, trsf);
  EXPECT_TRUE(Read(label).corner.IsEqual(gp_Pnt(11, 1, 1), 1e-12));
  EXPECT_FALSE(ShapeOf(label).IsEqual(before));
}

TEST_F(BoxCreation, ClonesAsAFreshBoxAndThroughTheBaseAsADumbCompound)
{
  TDF_Label label = Make();
  gp_Trsf trsf;
  trsf.SetTranslation(gp_Vec(0, 0, 5));
  const TDF_Label clone = box.PerformClone(label, trsf);
  EXPECT_TRUE(Read(clone).corner.IsEqual(gp_Pnt(1, 1, 6), 1e-12));
  EXPECT_NE(*Orvex::NameOf(clone), *Orvex::NameOf(label));
  EXPECT_EQ(Orvex::ValidTypeOf(clone), Orvex::kTypeBox);

  BaseShapeParaCreator base;
  const TDF_Label dumb = base.PerformClone(label, trsf);
  EXPECT_EQ(Orvex::ValidTypeOf(dumb), Orvex::kTypeCompound);
  EXPECT_TRUE(Parameter(dumb, "Length").IsNull());
  EXPECT_NEAR(VolumeOf(dumb), 24, 1e-9);
  TDF_Label empty = document.Doc()->Main().FindChild(900);
  EXPECT_TRUE(base.PerformClone(empty, trsf).IsNull());
}

TEST_F(BoxCreation, ReadingAndRebuildingNeverGrowTheLabel)
{
  TDF_Label label = Make();
  Orvex::SetName(label.FindChild(Orvex::kFeatureMetaTag), "meta");
  const TopoDS_Shape shape = ShapeOf(label);
  for (TopExp_Explorer edges(shape, TopAbs_EDGE); edges.More(); edges.Next())
    XCAFDoc_DocumentTool::ShapeTool(label)->AddSubShape(label, edges.Current());
  const int before = label.NbChildren();
  for (int i = 0; i < 3; ++i) {
    Write(label, Read(label));
    box.UpdateShape(label);
  }
  EXPECT_EQ(label.NbChildren(), before);
}

TEST_F(BoxCreation, ElementWordNeverTouchesAParameter)
{
  TDF_Label label = Make();
  const std::string before = DumpOf(label);
  box.AddElementProperty(label);
  EXPECT_TRUE(SameDump(DumpOf(label), before));

  TDF_Label bare = document.Doc()->Main().FindChild(800);
  BaseShapeParaCreator().AddElementProperty(bare);
  Handle(TDataStd_Name) word;
  ASSERT_TRUE(bare.FindChild(9).FindAttribute(TDataStd_Name::GetID(), word));
  EXPECT_TRUE(word->Get().IsEqual("Shell"));
  box.AddElementProperty(bare);
  ASSERT_TRUE(bare.FindChild(9).FindAttribute(TDataStd_Name::GetID(), word));
  EXPECT_TRUE(word->Get().IsEqual("Solid"));
}

TEST_F(BoxCreation, RegistersAFeatureThatRebuildsTheLabel)
{
  TDF_Label label = Make();
  const auto& manager = ParametricFeatureManager::GetInstance();
  const std::string key = ParametricFeatureManager::MakeLabelKey(label);
  const auto* feature = manager.FindFeature(key);
  ASSERT_NE(feature, nullptr);
  EXPECT_EQ(feature->type, "Box");
  EXPECT_EQ(feature->key, key);
  EXPECT_TRUE(feature->featureDependencies.empty());
  const TDF_Label height = Parameter(label, "Height");
  const std::string heightKey = ParametricFeatureManager::MakeLabelKey(height);
  EXPECT_EQ(feature->paramDependencies.size(), 5U);
  EXPECT_EQ(feature->paramLabels.at("Height"), heightKey);
  EXPECT_EQ(manager.DependentsOfParameter(heightKey), std::vector{key});

  Orvex::SetReal(height, 40);
  EXPECT_TRUE(feature->rebuild());
  EXPECT_NEAR(VolumeOf(label), 240, 1e-9);
}

TEST_F(BoxCreation, OneTransactionUndoesAndRedoesTheWholeCreation)
{
  const TDF_Label main = document.Doc()->Main();
  XCAFDoc_DocumentTool::ShapeTool(main);
  ShapeDocMgr::GetInstance()->StartTransaction();
  Orvex::SetReal(main.FindChild(700), 1.0);
  ShapeDocMgr::GetInstance()->EndTransaction();
  const std::string empty = DumpOf(main);

  ShapeDocMgr::GetInstance()->StartTransaction();
  TDF_Label label = Make();
  ShapeDocMgr::GetInstance()->EndTransaction();
  const std::string created = DumpOf(main);
  ShapeDocMgr::GetInstance()->StartTransaction();
  Write(label, {gp_Pnt(1, 1, 1), gp::DZ(), 9, 9, 9});
  box.UpdateShape(label);
  ShapeDocMgr::GetInstance()->EndTransaction();
  const std::string changed = DumpOf(main);

  document.Doc()->Undo();
  EXPECT_TRUE(SameDump(DumpOf(main), created));
  document.Doc()->Undo();
  EXPECT_TRUE(SameDump(DumpOf(main), empty));
  EXPECT_TRUE(ShapeLabelMgr::GetAllShapes().empty());
  document.Doc()->Redo();
  EXPECT_TRUE(SameDump(DumpOf(main), created));
  document.Doc()->Redo();
  EXPECT_TRUE(SameDump(DumpOf(main), changed));
}

TEST_F(BoxCreation, SavedAndReopenedKeepsEveryAttributeAndRebuilds)
{
  Make();
  TDF_Label second = Make(5, 6, 7);
  TopoDS_Shape shape = ShapeOf(second);
  double r = 0.1, g = 0.2, b = 0.3;
  ShapeLabelMgr::GetInstance()->SetShapeColor(shape, r, g, b);
  ShapeLabelMgr::GetInstance()->SetIsShapeEnabled(shape, false);
  std::string name = "Gehäuse";
  ShapeLabelMgr::GetInstance()->SetShapeName(&shape, name);
  const std::string before = DumpOf(document.Doc()->Main());

  document.SaveAndReopen();
  EXPECT_TRUE(SameDump(DumpOf(document.Doc()->Main()), before));
  const TopoDS_Shape reread = ShapeLabelMgr::GetInstance()->GetShapeByName(name);
  TDF_Label label = ShapeLabelMgr::GetInstance()->GetShapeLabel(reread);
  Orvex::SetReal(Parameter(label, "Length"), 50);
  box.UpdateShape(label);
  EXPECT_NEAR(VolumeOf(label), 50 * 6 * 7, 1e-9);
}

TEST(CreatorTool, KnowsTheTypesOfParameterNames)
{
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("Number Polygon"), 1);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("Top Radius"), 2);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("End Point"), 3);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("Closed"), 4);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("Material"), 5);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("length"), 0);
  EXPECT_EQ(ShapeParaCreatorTool::GetParaType("Length "), 0);
}

TEST(CreatorTool, AddsANamedValueOnceAndReplacesItAfterwards)
{
  const TestDocument document;
  TDF_Label label = document.Doc()->Main().FindChild(50);
  for (const int value : {1, 2})
    ShapeParaCreatorTool::AddParameterByName(label, "Count", value);
  ShapeParaCreatorTool::AddParameterByName(label, "Length", 2.5);
  ShapeParaCreatorTool::AddParameterByName(label, "Base Point", gp_Pnt(1, 2, 3));
  for (const bool value : {true, false})
    ShapeParaCreatorTool::AddParameterByName(label, "Closed", value);
  EXPECT_EQ(label.NbAttributes(), 5);
  EXPECT_EQ(Orvex::IntegerOf(label), 2);
  EXPECT_EQ(Orvex::FlagOf(label), false);
  EXPECT_TRUE(Orvex::HasName(label, "Closed"));
}

TEST(CreatorBase, TellsDigitsFromNames)
{
  BaseShapeParaCreator creator;
  for (const char* digits : {"", "12.5", "0", "1.2.3", "."})
    EXPECT_TRUE(creator.isDigitStr(digits)) << digits;
  for (const char* other : {"-1", "1e5", " 1", "a", "1,5"})
    EXPECT_FALSE(creator.isDigitStr(other)) << other;
  EXPECT_FALSE(creator.isDigitStr(QString::fromUtf8("٣")));
}

TEST(CreatorBase, DeletingThroughTheBaseIsWellDefined)
{
  // The sanitizers watch: a wrong size, a second release or a leak ends the test.
  for (int i = 0; i < 3; ++i) {
    const std::unique_ptr<BaseShapeParaCreator> creator(Orvex::MakeCreator<BoxShapeParaCreator>());
    EXPECT_NE(dynamic_cast<BoxShapeParaCreator*>(creator.get()), nullptr);
  }
}

} // namespace
