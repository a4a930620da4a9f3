#include "creators/ShapeBuilder.h"

#include "creators/BoxShapeParaCreator.h"
#include "creators/CompoundShapeParaCreator.h"
#include "creators/GeometryTool.h"
#include "creators/LineShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace OrvexTest;

namespace {

class Factory : public testing::Test
{
protected:
  static TopoDS_Shape ShapeOn(const TDF_Label& label)
  {
    return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  }

  static double LeastX(const TDF_Label& label)
  {
    return BoundsOf(ShapeOn(label)).CornerMin().X();
  }

  TDF_Label Plain()
  {
    return ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(
      document.Doc(), BRepPrimAPI_MakeBox(1, 1, 1).Shape());
  }

  static TDF_Label Child(const TDF_Label& label, const char* name)
  {
    return Orvex::ChildByName(label, name);
  }

  TestDocument document{10};
  TDF_Label box = BoxShapeParaCreator().CreateBox(gp_Pnt(), gp_Dir(), 2, 3, 4);
  gp_Trsf move = [] {
    gp_Trsf trsf;
    trsf.SetTranslation(gp_Vec(10, 0, 0));
    return trsf;
  }();
};

TEST_F(Factory, FindsTheCreatorByTheValidTypeChildOnly)
{
  const std::unique_ptr<BaseShapeParaCreator> found(ShapeBuilder::GetShapeInstance(box));
  EXPECT_NE(dynamic_cast<BoxShapeParaCreator*>(found.get()), nullptr);
  TDF_Label plain = Plain();
  for (const int unknown : {15, 16, 19, 20, 21, 0, -3}) {
    Orvex::SetType(plain, unknown);
    EXPECT_EQ(ShapeBuilder::GetShapeInstance(plain), nullptr) << unknown;
  }
  Orvex::SetType(plain, Orvex::kTypeCompound);
  const std::unique_ptr<BaseShapeParaCreator> compound(ShapeBuilder::GetShapeInstance(plain));
  EXPECT_NE(dynamic_cast<CompoundShapeParaCreator*>(compound.get()), nullptr);
  Orvex::SetName(plain.FindChild(1), "Typo");
  EXPECT_EQ(ShapeBuilder::GetShapeType(plain), 0);
  TDF_Label null;
  EXPECT_EQ(ShapeBuilder::GetShapeType(null), 0);
  EXPECT_EQ(ShapeBuilder::GetShapeInstance(null), nullptr);
}

TEST_F(Factory, MovesByParametersByShapeOrNotAtAll)
{
  EXPECT_TRUE(ShapeBuilder::PerformMove(box, move));
  EXPECT_NEAR(LeastX(box), 0, 1e-6) << "the shape follows at the rebuild";
  ShapeBuilder::UpdateShapeByTDF(box);
  EXPECT_NEAR(LeastX(box), 10, 1e-6);

  TDF_Label plain = Plain();
  EXPECT_TRUE(ShapeBuilder::PerformScale(plain, move));
  EXPECT_EQ(ShapeBuilder::GetShapeType(plain), Orvex::kTypeCompound);
  ShapeBuilder::PerformRotate(plain, move);
  EXPECT_NEAR(LeastX(plain), 20, 1e-6);

  TDF_Label empty = document.Doc()->Main().FindChild(900), null;
  EXPECT_FALSE(ShapeBuilder::PerformMove(empty, move));
  EXPECT_FALSE(ShapeBuilder::PerformMove(null, move));
  EXPECT_TRUE(ShapeBuilder::PerformClone(empty, move).IsNull());
  const TDF_Label clone = ShapeBuilder::PerformClone(plain, move);
  EXPECT_EQ(Orvex::ValidTypeOf(clone), Orvex::kTypeCompound);
  EXPECT_NEAR(LeastX(clone), 30, 1e-6);
}

TEST_F(Factory, ACloneOfManyPartsHasTheAttributesOfANewShape)
{
  TopoDS_Compound parts;
  BRep_Builder builder;
  builder.MakeCompound(parts);
  for (int i = 1; i <= 10; ++i)
    builder.Add(parts, BRepPrimAPI_MakeBox(i, i, i).Shape());
  TDF_Label label =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), parts);
  TopoDS_Shape clone = ShapeOn(ShapeBuilder::PerformClone(label, move));
  auto* registry = ShapeLabelMgr::GetInstance();
  EXPECT_EQ(registry->GetPrimitiveType(clone), Orvex::kTypeCompound);
  EXPECT_EQ(registry->GetShapeMaterial(clone), "Not Assigned");
  EXPECT_EQ(registry->GetShapeDisplayMode(clone), "surface");
}

TEST_F(Factory, SetsValuesOfTheRightTypeOnly)
{
  ShapeBuilder::UpdateParameter(box, "Length", 20.0, true);
  ShapeBuilder::UpdateParameter(box, "Width", 30, true);
  ShapeBuilder::UpdateParameter(box, "Base Point", gp_Pnt(5, 0, 0), true);
  ShapeBuilder::UpdateParameter(box, "Visibility", false, true);
  ShapeBuilder::UpdateParameter(box, "No Such", 1.0, true);
  EXPECT_EQ(Orvex::RealOf(Child(box, "Length")), 20.0);
  EXPECT_EQ(Orvex::RealOf(Child(box, "Width")), 3.0) << "an integer is no real";
  EXPECT_EQ(Orvex::FlagOf(Child(box, "Visibility")), false);
  ShapeBuilder::UpdateAllShape();
  EXPECT_NEAR(VolumeOf(ShapeOn(box)), 20 * 3 * 4, 1e-6);
  EXPECT_NEAR(LeastX(box), 5, 1e-6);

  const TDF_Label width = Child(box, "Width");
  ShapeBuilder::UpdateParameter(box, "Width", 0.0, false);
  EXPECT_FALSE(width.HasAttribute());
}

TEST_F(Factory, BindsRenamesAndReleasesParameters)
{
  const TDF_Label length = Child(box, "Length");
  ShapeBuilder::UpdateParameter(box, "Length", "12.5", true);
  ShapeBuilder::UpdateParameter(box, "Length", std::string("15"), true);
  EXPECT_EQ(length.NbChildren(), 1);
  ShapeBuilder::UpdateShapeByTDF(box);
  EXPECT_NEAR(VolumeOf(ShapeOn(box)), 15 * 3 * 4, 1e-6);

  ShapeBuilder::RemoveParameter(box, "Length", "unused", true);
  ShapeBuilder::UpdateShapeByTDF(box);
  EXPECT_NEAR(VolumeOf(ShapeOn(box)), 2 * 3 * 4, 1e-6) << "falls back on its value";

  // A parameter without a reference gets one; with several children nothing is done.
  ShapeBuilder::RemoveParameter(box, "Width", "7", true);
  EXPECT_TRUE(Orvex::HasName(Child(box, "Width").FindChild(1), "7"));
  EXPECT_EQ(Orvex::RealOf(Child(box, "Width").FindChild(1)), 0.0);
  ShapeBuilder::RemoveParameter(box, "Height", "wall", true);
  EXPECT_FALSE(Orvex::RealOf(Child(box, "Height").FindChild(1)));
  Orvex::SetName(Child(box, "Height").FindChild(2), "second");
  const std::string before = DumpOf(box);
  ShapeBuilder::RemoveParameter(box, "Height", "x", true);
  EXPECT_TRUE(SameDump(DumpOf(box), before));

  TDF_Label own = length;
  ShapeBuilder::UpdateParameter(own, "ignored", "Long Side", false);
  EXPECT_TRUE(Orvex::HasName(length, "Long Side"));
  ShapeBuilder::RemoveParameter(own, "ignored", "ignored", false);
  EXPECT_FALSE(length.HasAttribute());
}

TEST_F(Factory, ExportsIgesInMillimetres)
{
  const std::string path = TemporaryPath("box.igs");
  GeometryTool::SaveShapeToIgsFile(path, TopoDS_Shape());
  EXPECT_FALSE(std::filesystem::exists(path));
  GeometryTool::SaveShapeToIgsFile(path, ShapeOn(box));
  std::ifstream file(path);
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NE(text.find("2HMM"), std::string::npos);
  std::filesystem::remove(path);
}

} // namespace
