#include "features/FeatureHistoryManager.h"

#include "document/LabelScheme.h"
#include "support/FeatureModel.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <QVariantList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

class FeaturePersistence : public testing::Test
{
protected:
  std::vector<int> Ids()
  {
    std::vector<int> ids;
    for (const FeatureHistoryItem& item : history.GetAllFeatures())
      ids.push_back(item.id);
    return ids;
  }

  static std::string MetaOn(const TDF_Label& label, int tag)
  {
    const TDF_Label child = label.FindChild(9001, false).FindChild(tag, false);
    return Orvex::NameOf(child).value_or("").ToCString();
  }

  static void WriteMeta(const TDF_Label& label, const char* type, const std::string& parameters)
  {
    const TDF_Label meta = label.FindChild(9001);
    Orvex::SetName(meta.FindChild(1), type);
    Orvex::SetName(meta.FindChild(2), parameters.c_str());
  }

  OrvexTest::TestDocument document{100};
  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
};

TEST_F(FeaturePersistence, TypeAndParametersComeBackFromASavedDocument)
{
  const TDF_Label box = OrvexTest::NewCubeLabel(1), plain = OrvexTest::NewCubeLabel(2);
  const QVariantList specs{QVariantMap{{"edgeIndex", 3}, {"radius", 0.5}}};
  const int id = history.AddFeature(
    "Fillet ü", "Rounded", box, {plain},
    {{"sourceBrep", "shape"}, {"edgeRadiusSpecs", specs}, {"on", true}, {"word", "ü\n"}}, {});
  EXPECT_EQ(MetaOn(box, 1), "Fillet ü");
  EXPECT_EQ(MetaOn(box, 2),
            R"({"edgeRadiusSpecs":[{"edgeIndex":3,"radius":0.5}],"on":true,"word":"ü\n"})");
  history.AddFeature("Plain", "", plain, {});
  EXPECT_TRUE(plain.FindChild(9001, false).IsNull());
  EXPECT_EQ(id, 1);

  document.SaveAndReopen();
  const std::vector<TDF_Label> labels = ShapeLabelMgr::GetInstance()->GetAllShapeLabes();
  history.RebuildFromLabels(labels);
  history.ReconcileWithLabels(labels);
  EXPECT_THAT(Ids(), ElementsAre(1, 2));
  const FeatureHistoryItem rounded = *history.GetFeature(1);
  EXPECT_EQ(rounded.type, "Fillet ü");
  EXPECT_EQ(rounded.name, "Default_Name");
  EXPECT_EQ(rounded.shapeType, "Solid");
  EXPECT_TRUE(rounded.inputs.empty());
  EXPECT_EQ(rounded.parameters.value("edgeRadiusSpecs").toList(), specs);
  EXPECT_EQ(rounded.parameters.value("word").toString(), QStringLiteral("ü\n"));
  EXPECT_EQ(rounded.parameters.size(), 3);
  EXPECT_EQ(history.GetFeature(2)->type, "Solid");
}

TEST_F(FeaturePersistence, OnlyTheSettersOfParametersWriteMeta)
{
  OrvexTest::CubeFeatures cubes;
  const int id = cubes.Add({}, 1);
  const TDF_Label label = cubes.LabelOf(id);
  EXPECT_TRUE(history.RebuildFeature(id, {{"size", 2}}));
  EXPECT_EQ(MetaOn(label, 2), R"({"size":1})");
  EXPECT_TRUE(history.SetFeatureParameters(label, {{"size", 2.5}}));
  EXPECT_EQ(MetaOn(label, 2), R"({"size":2.5})");
  EXPECT_TRUE(history.SetFeatureParameters(id, {}));
  EXPECT_EQ(MetaOn(label, 2), "{}");
  EXPECT_FALSE(history.SetFeatureParameters(7, {}));
}

TEST_F(FeaturePersistence, ReconcilingDropsResetsAndAdds)
{
  const TDF_Label gone = OrvexTest::NewCubeLabel(1), changed = OrvexTest::NewCubeLabel(2),
                  kept = OrvexTest::NewCubeLabel(3), added = OrvexTest::NewCubeLabel(4);
  history.AddFeature("A", "", gone, {});
  const int reset =
    history.AddFeature("B", "", changed, {kept}, {{"size", 2}},
                       [](const TDF_Label&, const FeatureParameters&) { return true; });
  const int survivor = history.AddFeature("C", "", kept, {gone});
  history.AddFeature("None", "", TDF_Label(), {});
  history.SuppressFeature(reset);
  Orvex::SetName(changed, "Edge 7");
  TopoDS_Shape edge = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)).Shape();
  ShapeLabelMgr::GetInstance()->ConnectShapeAndLable(edge, changed);

  history.RebuildFromLabels({added, kept, changed, added});
  EXPECT_THAT(Ids(), ElementsAre(reset, survivor, 5));
  const FeatureHistoryItem* item = history.GetFeature(reset);
  EXPECT_EQ(item->type, "Edge");
  EXPECT_EQ(item->shapeType, "Edge");
  EXPECT_EQ(item->name, "Edge 7");
  EXPECT_TRUE(item->inputs.empty() && item->parameters.isEmpty() && !item->rebuildFunc);
  EXPECT_FALSE(item->suppressed);
  EXPECT_EQ(history.GetFeature(survivor)->type, "C");
  EXPECT_EQ(history.GetFeature(survivor)->inputs, std::vector{gone});
  EXPECT_EQ(history.GetFeature(5)->order, 2);
  EXPECT_EQ(history.GetFeatureByLabel(added)->id, 5);

  history.RebuildFromLabels({});
  EXPECT_TRUE(Ids().empty());
  history.RebuildFromLabels({kept});
  EXPECT_THAT(Ids(), ElementsAre(1));
}

TEST_F(FeaturePersistence, BrokenMetaRestoresWhatCanBeRead)
{
  struct Case
  {
    const char* type;
    std::string parameters;
    const char* restoredType;
    int restored;
  };
  const Case cases[] = {
    {"", R"({"a":1})", "Solid", 0},
    {"Fillet", "", "Fillet", 0},
    {"Fillet", R"({"a":1,"b":)", "Fillet", 0},
    {"Fillet", "[1,2]", "Fillet", 0},
    {"Fillet", "nonsense", "Fillet", 0},
    {"Fillet", R"({"a":1e999})", "Fillet", 0},
    {"Fillet", R"({"a":123456789012345678901234567890,"b":null})", "Fillet", 2},
    {"Fillet", R"({"edgeRadiusSpecs":"text","sourceBrep":5})", "Fillet", 2},
    {"Fillet", std::string(100000, '['), "Fillet", 0},
  };
  for (const Case& broken : cases) {
    const TDF_Label label = OrvexTest::NewCubeLabel(1);
    WriteMeta(label, broken.type, broken.parameters);
    history.RebuildFromLabels({label});
    const FeatureHistoryItem* item = history.GetFeatureByLabel(label);
    EXPECT_EQ(item->type, broken.restoredType) << broken.parameters.substr(0, 40);
    EXPECT_EQ(item->parameters.size(), broken.restored) << broken.parameters.substr(0, 40);
    EXPECT_TRUE(history.SetFeatureParameters(label, item->parameters));
  }
  const TDF_Label bare = OrvexTest::NewCubeLabel(1);
  bare.FindChild(9001);
  history.RebuildFromLabels({bare});
  EXPECT_EQ(history.GetFeatureByLabel(bare)->type, "Solid");
}

} // namespace
