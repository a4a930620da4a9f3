#include "features/FeatureHistoryManager.h"

#include "document/LabelScheme.h"
#include "support/FeatureModel.h"
#include "support/TestDocument.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace {

using OrvexTest::Fault;
using testing::ElementsAre;

class FeatureHistory : public testing::Test
{
protected:
  OrvexTest::TestDocument document{100};
  OrvexTest::CubeFeatures cubes;
  FeatureHistoryManager& history = cubes.history;

  // A of 1, B of A and 2, C of B and 3.
  int a = cubes.Add({}, 1);
  int b = cubes.Add({cubes.LabelOf(a)}, 2);
  int c = cubes.Add({cubes.LabelOf(b)}, 3);

  std::vector<int> Ids()
  {
    std::vector<int> ids;
    for (const FeatureHistoryItem& item : history.GetAllFeatures()) {
      EXPECT_EQ(item.order, static_cast<int>(ids.size()));
      ids.push_back(item.id);
    }
    return ids;
  }

  bool IsVisible(int id)
  {
    TopoDS_Shape shape = OrvexTest::ShapeOn(cubes.LabelOf(id));
    return ShapeLabelMgr::GetInstance()->GetShapeVisibilty(shape);
  }

  // Flags, parameters and shapes of all items, each as text.
  std::string State()
  {
    std::ostringstream state;
    for (const FeatureHistoryItem& item : history.GetAllFeatures())
      state << item.id << item.suppressed << history.IsFeatureDirectlySuppressed(item.id)
            << item.shapeType << item.parameters.value("size").toDouble()
            << item.parameters.value("sourceBrep").toString().toStdString()
            << OrvexTest::ReadBrepOf(OrvexTest::ShapeOn(item.label)) << "\n";
    return state.str();
  }
};

TEST_F(FeatureHistory, AddsOncePerFeatureAndTheLastItemOfALabelAnswers)
{
  history.SuppressFeature(a);
  EXPECT_EQ(cubes.AddOn(cubes.LabelOf(a), {}, 1), a);
  EXPECT_FALSE(history.IsFeatureDirectlySuppressed(a));
  EXPECT_THAT(Ids(), ElementsAre(a, b, c));

  const TDF_Label label = cubes.LabelOf(a);
  const int other = history.AddFeature("Fillet", "Round", label, {});
  EXPECT_EQ(history.GetFeatureByLabel(label)->id, other);
  EXPECT_EQ(history.GetFeature(a)->type, "Cube");
  EXPECT_TRUE(history.GetFeatureParameters(label).isEmpty());
  EXPECT_EQ(history.GetFeatureParameters(a).value("size").toDouble(), 1);
  EXPECT_EQ(history.AddFeature("Fillet", "Round", label, {}), other);
  EXPECT_NE(history.AddFeature("Fillet", "Round", label, {TDF_Label()}), other);

  EXPECT_EQ(history.GetFeature(99), nullptr);
  EXPECT_EQ(history.GetFeatureByLabel(TDF_Label()), nullptr);
  EXPECT_EQ(history.GetFeatureByLabel(document.Doc()->Main()), nullptr);
  EXPECT_TRUE(history.IsInputOfAnyFeature(label));
  EXPECT_FALSE(history.IsInputOfAnyFeature(TDF_Label()));
  EXPECT_EQ(history.GetFeature(a)->shapeType, "Solid");
  EXPECT_EQ(history.GetFeature(history.AddFeature("X", "", TDF_Label(), {}))->shapeType,
            "Imported");
}

TEST_F(FeatureHistory, UpsertAndSettersKeepProvidersAhead)
{
  const TDF_Label labelA = cubes.LabelOf(a), labelB = cubes.LabelOf(b), labelC = cubes.LabelOf(c);
  EXPECT_FALSE(history.UpsertFeature("X", "x", labelA, {labelC}));
  EXPECT_FALSE(history.UpsertFeature("X", "x", TDF_Label(), {}));
  EXPECT_EQ(history.GetFeature(a)->type, "Cube");
  history.SuppressFeature(b);
  EXPECT_TRUE(
    history.UpsertFeature("X", "x", labelB, {labelA, TDF_Label(), document.Doc()->Main()}));
  EXPECT_EQ(history.GetFeature(b)->name, "x");
  EXPECT_FALSE(history.IsFeatureDirectlySuppressed(b));
  EXPECT_EQ(history.GetFeature(b)->parameters.value("size").toDouble(), 2);

  // Inputs that got out of order some other way.
  history.GetFeature(a)->inputs = {labelC};
  EXPECT_FALSE(history.SetFeatureParameters(a, {{"size", 5}}));
  EXPECT_FALSE(history.SetFeatureRebuildFunc(labelA, {}));
  EXPECT_EQ(history.GetFeatureParameters(a).value("size").toDouble(), 1);
  EXPECT_TRUE(history.SetFeatureRebuildFunc(c, {}));
  EXPECT_FALSE(history.RebuildFeature(c, {}));
}

TEST_F(FeatureHistory, RemovingTakesDependentsAlong)
{
  const int alone = history.AddFeature("Cube", "", OrvexTest::NewCubeLabel(1), {});
  const int inPlace = cubes.AddInPlace(cubes.LabelOf(b), 4);
  EXPECT_FALSE(history.RemoveFeature(99));
  EXPECT_FALSE(history.RemoveFeaturesByLabel(TDF_Label()));
  EXPECT_TRUE(history.RemoveFeature(b));
  EXPECT_THAT(Ids(), ElementsAre(a, alone)) << inPlace;
  EXPECT_EQ(history.GetFeatureByLabel(cubes.LabelOf(a))->id, a);

  EXPECT_TRUE(history.RemoveFeaturesByLabel(cubes.LabelOf(a)));
  EXPECT_THAT(Ids(), ElementsAre(alone));
  EXPECT_EQ(cubes.Add({}, 1), inPlace + 1) << "ids are not given again";
}

TEST_F(FeatureHistory, ReorderKeepsEveryProvider)
{
  EXPECT_TRUE(history.ReorderFeature(b, 1));
  EXPECT_FALSE(history.ReorderFeature(b, 0));
  EXPECT_FALSE(history.ReorderFeature(b, 2));
  EXPECT_FALSE(history.ReorderFeature(b, 3));
  EXPECT_FALSE(history.ReorderFeature(b, -1));
  EXPECT_FALSE(history.ReorderFeature(99, 0));
  const int second = cubes.AddInPlace(cubes.LabelOf(a), 4);
  EXPECT_FALSE(history.ReorderFeature(second, 1)) << "would come between A and its consumer";
  const int alone = cubes.Add({}, 1);
  EXPECT_TRUE(history.ReorderFeature(alone, 0));
  EXPECT_THAT(Ids(), ElementsAre(alone, a, b, c, second));
  EXPECT_TRUE(history.ReorderFeature(alone, 3));
  EXPECT_THAT(Ids(), ElementsAre(a, b, c, alone, second));
  EXPECT_EQ(history.GetFeatureByLabel(cubes.LabelOf(alone))->id, alone);
}

TEST_F(FeatureHistory, SuppressionFlowsDownAndHides)
{
  EXPECT_TRUE(history.SuppressFeature(b));
  EXPECT_TRUE(history.SuppressFeature(b));
  EXPECT_FALSE(history.SuppressFeature(99));
  EXPECT_TRUE(IsVisible(a));
  EXPECT_FALSE(IsVisible(b));
  EXPECT_FALSE(IsVisible(c));
  EXPECT_FALSE(history.IsFeatureDirectlySuppressed(c));
  EXPECT_TRUE(history.IsFeatureEffectivelySuppressed(c));
  EXPECT_TRUE(history.GetAllFeatures()[2].suppressed);
  EXPECT_TRUE(cubes.rebuilt.empty());
  EXPECT_FALSE(history.RebuildFeature(c, {{"size", 1}}));

  history.SuppressFeature(c);
  EXPECT_FALSE(history.UnsuppressFeature(c)) << "B is suppressed";
  EXPECT_TRUE(history.IsFeatureDirectlySuppressed(c));
  EXPECT_TRUE(history.UnsuppressFeature(b));
  EXPECT_THAT(cubes.rebuilt, ElementsAre(b)) << "C has a flag of its own";
  EXPECT_TRUE(IsVisible(b));
  EXPECT_FALSE(IsVisible(c));
  EXPECT_TRUE(history.UnsuppressFeature(c));
  EXPECT_TRUE(IsVisible(c));
  EXPECT_TRUE(history.UnsuppressFeature(c));
  EXPECT_FALSE(history.UnsuppressFeature(99));
}

TEST_F(FeatureHistory, ARebuildReplaysWhatDependsOnIt)
{
  const int inPlace = cubes.AddInPlace(cubes.LabelOf(c), 7);
  const int aside = cubes.Add({}, 9);
  EXPECT_TRUE(history.RebuildFeature(cubes.LabelOf(a), {{"size", 10}}));
  EXPECT_THAT(cubes.rebuilt, ElementsAre(a, b, c, inPlace));
  EXPECT_EQ(OrvexTest::EdgeOn(cubes.LabelOf(b)), 12);
  EXPECT_EQ(OrvexTest::EdgeOn(cubes.LabelOf(inPlace)), 7);
  EXPECT_EQ(history.GetFeatureParameters(a).value("size").toDouble(), 10);
  // Its source is what stood on the label when its turn came.
  std::istringstream source(
    history.GetFeatureParameters(inPlace).value("sourceBrep").toString().toStdString());
  TopoDS_Shape read;
  BRepTools::Read(read, source, BRep_Builder());
  EXPECT_EQ(OrvexTest::EdgeOf(read), 15);
  EXPECT_EQ(OrvexTest::EdgeOn(cubes.LabelOf(aside)), 9);
}

TEST_F(FeatureHistory, TheItemUnderRebuildIsFoundOnItsThreadOnly)
{
  int current = 0, resolved = 0, elsewhere = 0;
  const TDF_Label label = cubes.LabelOf(a);
  history.SetFeatureRebuildFunc(a, [&](const TDF_Label&, const FeatureParameters&) {
    current = history.GetCurrentRebuildFeature()->id;
    resolved = history.ResolveFeatureForRebuild(label)->id;
    std::thread([&] { elsewhere = history.GetCurrentRebuildFeature() == nullptr ? -1 : 1; }).join();
    return true;
  });
  const int later = history.AddFeature("Paint", "", label, {});
  EXPECT_TRUE(history.RebuildFeature(a, {}));
  EXPECT_EQ(current, a);
  EXPECT_EQ(resolved, a);
  EXPECT_EQ(elsewhere, -1);
  EXPECT_EQ(history.GetCurrentRebuildFeature(), nullptr);
  EXPECT_EQ(history.ResolveFeatureForRebuild(label)->id, later);
}

// A failure at each place of a chain, in each way: all is as before. Only an exception out of
// RebuildFeature leaves what was rebuilt by then.
TEST_F(FeatureHistory, AFailureBringsEverythingBack)
{
  cubes.AddInPlace(cubes.LabelOf(c), 7);
  history.RebuildFeature(a, {{"size", 1}});
  for (const Fault fault : {Fault::False, Fault::Kernel, Fault::Standard, Fault::Number}) {
    for (const FeatureHistoryItem& item : history.GetAllFeatures()) {
      cubes.faultyId = item.id;
      cubes.fault = fault;
      history.SuppressFeature(a);
      const std::string before = State();
      if (fault == Fault::False)
        EXPECT_FALSE(history.UnsuppressFeature(a));
      else
        EXPECT_ANY_THROW(history.UnsuppressFeature(a));
      EXPECT_EQ(State() == before, true) << item.id;
      EXPECT_FALSE(IsVisible(b));
      EXPECT_EQ(history.GetCurrentRebuildFeature(), nullptr);

      cubes.fault = Fault::None;
      EXPECT_TRUE(history.UnsuppressFeature(a));
      const std::string sound = State();
      cubes.fault = fault;
      if (fault == Fault::False) {
        EXPECT_FALSE(history.RebuildFeature(a, {{"size", 50}}));
        EXPECT_EQ(State() == sound, true) << item.id;
      } else {
        EXPECT_ANY_THROW(history.RebuildFeature(a, {{"size", 50}}));
        cubes.fault = Fault::None;
        EXPECT_TRUE(history.RebuildFeature(a, {{"size", 1}}));
      }
      EXPECT_EQ(history.GetCurrentRebuildFeature(), nullptr);
    }
  }
}

// The first shape of a feature whose dependent fails stays, and with it what the history says of
// it.
TEST_F(FeatureHistory, AfterAFailureTheHistoryKnowsTheShapesThatStayed)
{
  const TDF_Label bare = document.Doc()->Main().FindChild(70);
  const int id = history.AddFeature("Cube", "bare", bare, {}, {{"size", 4}}, cubes.Rebuild());
  cubes.faultyId = id;
  cubes.fault = Fault::False;
  EXPECT_FALSE(history.RebuildFeature(id, {{"size", 5}}));
  EXPECT_EQ(history.GetFeature(id)->shapeType, "Solid");
  EXPECT_EQ(history.GetFeature(id)->parameters.value("size"), 4);
}

TEST_F(FeatureHistory, ARebuildFunctionKeepsWhatItChangesInItself)
{
  std::vector<int> counts;
  const auto count = [&counts, calls = 0](const TDF_Label&, const FeatureParameters&) mutable {
    counts.push_back(++calls);
    return true;
  };
  history.SetFeatureRebuildFunc(c, count);
  EXPECT_TRUE(history.RebuildFeature(c, {}));
  EXPECT_TRUE(history.RebuildFeature(c, {}));
  EXPECT_EQ(counts, (std::vector{1, 2}));
}

// Against the rules, but no reason to fall over.
TEST_F(FeatureHistory, AFunctionThatRemovesFeaturesFails)
{
  history.SetFeatureRebuildFunc(
    b, [this](const TDF_Label&, const FeatureParameters&) { return history.RemoveFeature(a); });
  EXPECT_FALSE(history.RebuildFeature(b, {}));
  EXPECT_TRUE(Ids().empty());
}

TEST_F(FeatureHistory, DeletingAResultTakesItsHiddenOperandsUnlessTheyAreNeeded)
{
  ShapeLabelMgr* registry = ShapeLabelMgr::GetInstance();
  const auto hide = [&](int id, bool visible) {
    TopoDS_Shape shape = OrvexTest::ShapeOn(cubes.LabelOf(id));
    registry->SetShapeVisibilty(shape, visible);
  };
  const TDF_Label labelA = cubes.LabelOf(a), labelB = cubes.LabelOf(b), labelC = cubes.LabelOf(c);
  EXPECT_THAT(history.CollectDeleteClosureLabels({labelC, TDF_Label(), labelC}),
              ElementsAre(labelC));
  EXPECT_THAT(history.CollectDeleteClosureLabels({labelA}), ElementsAre(labelA, labelB, labelC));
  hide(a, false);
  hide(b, false);
  EXPECT_THAT(history.CollectDeleteClosureLabels({labelC}), ElementsAre(labelC, labelB, labelA));
  const int survivor = cubes.Add({labelA}, 1);
  EXPECT_THAT(history.CollectDeleteClosureLabels({labelC}), ElementsAre(labelC, labelB))
    << survivor;
  EXPECT_TRUE(history.CollectDeleteClosureLabels({TDF_Label()}).empty());
}

TEST_F(FeatureHistory, AnotherDocumentStartsEmpty)
{
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  EXPECT_TRUE(Ids().empty());
  ShapeDocMgr::GetInstance()->SetDoc(document.Doc());
  EXPECT_EQ(history.AddFeature("X", "", TDF_Label(), {}), 1);
}

} // namespace
