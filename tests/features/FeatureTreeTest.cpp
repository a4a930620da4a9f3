#include "features/FeatureTree.h"

#include "creators/BoxShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "features/ParametricFeatureManager.h"
#include "support/FeatureModel.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <gp.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TDF_Label RecordOn(const TDF_Label& label)
{
  return label.FindChild(9001).FindChild(3);
}

class FeatureTree : public testing::Test
{
protected:
  std::vector<std::string> Names()
  {
    std::vector<std::string> names;
    for (const FeatureHistoryItem& item : history.GetAllFeatures())
      names.push_back(item.name);
    return names;
  }

  const FeatureHistoryItem* ItemOn(const std::string& entry)
  {
    return history.GetFeatureByLabel(Orvex::LabelOfEntry(document.Doc(), entry));
  }

  OrvexTest::TestDocument document{10};
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
};

TEST_F(FeatureTree, ComesBackFromASavedDocument)
{
  const TDF_Label tool = OrvexTest::NewCubeLabel(1), result = OrvexTest::NewCubeLabel(2),
                  base = BoxShapeParaCreator().CreateBox(gp::XOY(), 1, 2, 3);
  OrvexTest::NewCubeLabel(4);
  const std::string resultEntry = Orvex::EntryOf(result), baseEntry = Orvex::EntryOf(base);
  history.AddFeature("Box", "Grundkörper", base, {}, {{"note", "x"}}, {});
  history.AddFeature("Cube", "Tool", tool, {});
  const int cut = history.AddFeature("BooleanCut", "Cut", result, {base, TDF_Label(), tool});
  history.SuppressFeature(cut);
  ParametricFeatureManager::GetInstance().SetParamExpressionRaw(Orvex::ChildByName(base, "Length"),
                                                                "Width*2");
  Orvex::StoreFeatureTree();
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 1);

  document.SaveAndReopen();
  ParametricFeatureManager::GetInstance().ClearRegisteredState();
  Orvex::RestoreFeatureTree();
  EXPECT_THAT(Names(), ElementsAre("Grundkörper", "Tool", "Cut", "Default_Name"));
  const FeatureHistoryItem* item = ItemOn(resultEntry);
  EXPECT_EQ(item->type, "BooleanCut");
  EXPECT_TRUE(item->suppressed);
  ASSERT_EQ(item->inputs.size(), 3U);
  EXPECT_EQ(Orvex::EntryOf(item->inputs[0]), baseEntry);
  EXPECT_TRUE(item->inputs[1].IsNull());
  EXPECT_EQ(ItemOn(baseEntry)->parameters.value("note").toString(), "x");

  ParametricFeatureManager::GetInstance().RecomputeAllRegisteredFeatures(true);
  EXPECT_NEAR(OrvexTest::VolumeOf(OrvexTest::ShapeOn(ItemOn(baseEntry)->label)), 24, 1e-9);

  // What left the history leaves no record behind.
  history.RemoveFeature(item->id);
  Orvex::StoreFeatureTree();
  Orvex::RestoreFeatureTree();
  EXPECT_EQ(ItemOn(resultEntry)->type, "Solid");
}

TEST_F(FeatureTree, BrokenRecordsCountAsNone)
{
  const TDF_Label first = OrvexTest::NewCubeLabel(1), second = OrvexTest::NewCubeLabel(2);
  for (const char* broken :
       {"", "{", "[1]", R"({"order":"x","inputs":5,"suppressed":"yes","expressions":[1]})",
        R"({"type":5,"order":1e30,"inputs":[3,"0:9:9","x:y"],"expressions":{"Length":{}}})"}) {
    Orvex::SetName(RecordOn(first), broken);
    Orvex::RestoreFeatureTree();
    EXPECT_EQ(Names().size(), 2U) << broken;
    EXPECT_FALSE(history.GetFeatureByLabel(first)->suppressed) << broken;
  }
  // Each says that it was made of the other.
  Orvex::SetName(
    RecordOn(first),
    (R"({"type":"A","order":0,"inputs":[")" + Orvex::EntryOf(second) + R"("]})").c_str());
  Orvex::SetName(
    RecordOn(second),
    (R"({"type":"B","order":1,"inputs":[")" + Orvex::EntryOf(first) + R"("]})").c_str());
  Orvex::RestoreFeatureTree();
  EXPECT_TRUE(history.GetFeatureByLabel(first)->inputs.empty());
  EXPECT_THAT(history.GetFeatureByLabel(second)->inputs, ElementsAre(first));
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  Orvex::StoreFeatureTree();
  Orvex::RestoreFeatureTree();
  EXPECT_TRUE(Names().empty());
  ShapeDocMgr::GetInstance()->SetDoc(document.Doc());
}

} // namespace
