#include "features/internal/BooleanFeature.h"

#include "creators/BoxShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <BRepPrimAPI_MakeTorus.hxx>

#include <gtest/gtest.h>

#include <limits>

using namespace OrvexTest;
using testing::Test;

namespace {

using Manager = ParametricFeatureManager;

// Three boxes of 10 in a row, each overlapping the next by 5 along X, and a label for a result.
class BooleanFeature : public Test
{
protected:
  static TDF_Label Box(double x)
  {
    return BoxShapeParaCreator().CreateBox(gp_Pnt(x, 0, 0), gp_Dir(0, 0, 1), 10, 10, 10);
  }

  static TopoDS_Shape ShapeOn(const TDF_Label& label)
  {
    return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
  }

  FeatureHistoryItem Item(const std::string& type, std::vector<TDF_Label> inputs) const
  {
    FeatureHistoryItem item;
    item.type = type;
    item.label = result;
    item.inputs = std::move(inputs);
    return item;
  }

  bool Rebuild() const
  {
    return Manager::GetInstance().FindFeature(Manager::MakeLabelKey(result))->rebuild();
  }

  TestDocument document;
  TDF_Label a = Box(0), b = Box(5), c = Box(8);
  TDF_Label result = Box(100);
};

TEST_F(BooleanFeature, BothWordsOfEachKindRunInTheOrderOfTheInputs)
{
  struct Case
  {
    const char *word, *otherWord;
    std::vector<TDF_Label> inputs;
    double volume;
  };
  for (const Case& boolean : {Case{"Unite", "BooleanFuse", {a, b, c}, 1800},
                              Case{"Subtract", "BooleanCut", {a, b, c}, 500},
                              Case{"Subtract", "BooleanCut", {c, b, a}, 300},
                              Case{"Common", "BooleanCommon", {a, b, c}, 200}})
    for (const char* word : {boolean.word, boolean.otherWord}) {
      EXPECT_TRUE(Orvex::IsBooleanKind(word));
      ASSERT_TRUE(Orvex::RegisterBooleanFeatureFromHistory(Item(word, boolean.inputs)));
      EXPECT_TRUE(Rebuild()) << word;
      EXPECT_NEAR(VolumeOf(ShapeOn(result)), boolean.volume, 1e-6) << word;
    }
}

TEST_F(BooleanFeature, RecordsTheKeysOfTheInputsInOrder)
{
  ASSERT_TRUE(Orvex::RegisterBooleanFeatureFromHistory(Item("Common", {b, TDF_Label(), a})));
  const Manager::FeatureInfo* info =
    Manager::GetInstance().FindFeature(Manager::MakeLabelKey(result));
  EXPECT_EQ(info->type, "Common");
  EXPECT_EQ(info->key, Manager::MakeLabelKey(result));
  EXPECT_EQ(info->featureDependencies,
            (std::vector{Manager::MakeLabelKey(b), std::string("__null_label__"),
                         Manager::MakeLabelKey(a)}));
  EXPECT_TRUE(info->paramDependencies.empty());
  EXPECT_EQ(Manager::GetInstance().DependentsOfFeature(Manager::MakeLabelKey(a)),
            std::vector{info->key});
}

TEST_F(BooleanFeature, WhatIsTooLittleForABooleanIsNotEntered)
{
  const std::string key = Manager::MakeLabelKey(result);
  const Manager::FeatureInfo* ofTheBox = Manager::GetInstance().FindFeature(key);
  Orvex::RegisterBooleanFeature("Unite", result, {a});
  Orvex::RegisterBooleanFeature("Unite", TDF_Label(), {a, b});
  EXPECT_FALSE(Orvex::RegisterBooleanFeatureFromHistory(Item("Unite", {a})));
  result = TDF_Label();
  EXPECT_FALSE(Orvex::RegisterBooleanFeatureFromHistory(Item("Unite", {a, b})));
  EXPECT_EQ(Manager::GetInstance().FindFeature(key), ofTheBox);
  EXPECT_EQ(ofTheBox->type, "Box");
  EXPECT_EQ(Manager::GetInstance().FindFeature("__null_label__"), nullptr);
}

TEST_F(BooleanFeature, AFailedRebuildLeavesTheResultAsItWas)
{
  const std::string before = DumpOf(result);
  const auto key = &Manager::MakeLabelKey;
  const auto rebuilt = [&](const char* type, const std::vector<std::string>& inputs) {
    return Orvex::RebuildBoolean(type, inputs, key(result));
  };
  EXPECT_FALSE(rebuilt("Union", {key(a), key(b)}));
  EXPECT_FALSE(rebuilt("Unite", {key(a)}));
  EXPECT_FALSE(rebuilt("Unite", {key(a), key(TDF_Label())}));
  EXPECT_FALSE(rebuilt("Unite", {key(a), "0:1:1:77"}));
  EXPECT_FALSE(rebuilt("Unite", {key(a), key(a.FindChild(1))})) << "a label without a shape";
  EXPECT_FALSE(Orvex::RebuildBoolean("Unite", {key(a), key(b)}, "0:1:1:77"));

  Orvex::RegisterBooleanFeature("Unite", result, {a, b});
  ASSERT_TRUE(ShapeLabelMgr::GetInstance()->RemoveShapeByLabel(b));
  EXPECT_FALSE(Rebuild());
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  EXPECT_FALSE(Rebuild());
  EXPECT_TRUE(SameDump(DumpOf(result), before));
}

// A label that was removed, or given to another shape since.
TEST_F(BooleanFeature, AResultThatIsGoneDoesNotComeBack)
{
  Orvex::RegisterBooleanFeature("Unite", result, {a, b});
  ASSERT_TRUE(ShapeLabelMgr::GetInstance()->RemoveShapeByLabel(result));
  EXPECT_FALSE(Rebuild());
  EXPECT_TRUE(ShapeOn(result).IsNull());
  TopoDS_Shape other = ShapeOn(c);
  ShapeLabelMgr::GetInstance()->ConnectShapeAndLable(other, result);
  EXPECT_FALSE(Rebuild());
  EXPECT_TRUE(ShapeOn(result).IsSame(other));
}

// The kernel would not come back from such an operand.
TEST_F(BooleanFeature, AnOperandWithoutEndFails)
{
  Orvex::RegisterBooleanFeature("Unite", result, {a, b});
  const TopoDS_Shape before = ShapeOn(result);
  for (const double radius : {std::numeric_limits<double>::infinity(), 1e300, 1e99}) {
    TopoDS_Shape endless = BRepPrimAPI_MakeTorus(radius, 1).Shape();
    ShapeLabelMgr::GetInstance()->ConnectShapeAndLable(endless, a);
    EXPECT_FALSE(Rebuild()) << radius;
    EXPECT_TRUE(ShapeOn(result).IsSame(before));
  }
}

} // namespace
