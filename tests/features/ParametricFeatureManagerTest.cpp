#include "features/ParametricFeatureManager.h"

#include "creators/BoxShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "features/GlobalParameterChange.h"
#include "parameters/GlobalParaMeterMgr.h"
#include "support/FeatureModel.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <gp.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using Manager = ParametricFeatureManager;
using testing::ElementsAre;

Manager::FeatureInfo Feature(std::vector<std::string> parameters, std::vector<std::string> features)
{
  Manager::FeatureInfo info;
  info.type = "Test";
  info.paramDependencies = std::move(parameters);
  info.featureDependencies = std::move(features);
  return info;
}

// Each test runs in a process of its own, so that each value meets a fresh manager.
void ExpectEnabledWith(const char* value, bool expected)
{
  setenv("TARVEL_ENABLE_PARAMETRIC", value, 1);
  EXPECT_EQ(Manager::GetInstance().IsEnabled(), expected);
  setenv("TARVEL_ENABLE_PARAMETRIC", expected ? "0" : "1", 1);
  EXPECT_EQ(Manager::GetInstance().IsEnabled(), expected) << "read once only";
}

TEST(ParametricSwitch, ZeroSwitchesOff)
{
  ExpectEnabledWith("0", false);
}

TEST(ParametricSwitch, OneLeavesOn)
{
  ExpectEnabledWith("1", true);
}

TEST(ParametricSwitch, AnyOtherWordLeavesOn)
{
  ExpectEnabledWith("no", true);
}

TEST(ParametricSwitch, TheEmptyWordLeavesOn)
{
  ExpectEnabledWith("", true);
}

TEST(ParametricSwitch, BoxesRegisterWithTheSwitchOff)
{
  setenv("TARVEL_ENABLE_PARAMETRIC", "0", 1);
  const OrvexTest::TestDocument document;
  const TDF_Label label = BoxShapeParaCreator().CreateBox(gp::XOY(), 1, 1, 1);
  EXPECT_NE(Manager::GetInstance().FindFeature(Manager::MakeLabelKey(label)), nullptr);
}

TEST(FeatureRegistration, ReplacesTheRecordAndKeepsOldEdges)
{
  const OrvexTest::TestDocument document;
  const TDF_Label label = document.Doc()->Main().FindChild(5);
  const std::string key = Manager::MakeLabelKey(label);
  EXPECT_EQ(key, "0:1:5");
  auto& manager = Manager::GetInstance();
  manager.RegisterFeature(label, Feature({"p1", "p1", ""}, {"f1"}));
  manager.RegisterFeature(label, Feature({"p2"}, {}));
  EXPECT_EQ(manager.FindFeature(key)->paramDependencies, std::vector<std::string>{"p2"});
  EXPECT_EQ(manager.DependentsOfParameter("p1"), std::vector{key});
  EXPECT_EQ(manager.DependentsOfParameter("p2"), std::vector{key});
  EXPECT_EQ(manager.DependentsOfFeature("f1"), std::vector{key});
  EXPECT_TRUE(manager.DependentsOfParameter("").empty());
  EXPECT_EQ(manager.FindFeature("0:1:6"), nullptr);

  manager.RegisterFeature(TDF_Label(), Feature({}, {}));
  EXPECT_NE(manager.FindFeature("__null_label__"), nullptr);
}

// Features on labels of their own, which note that they were rebuilt.
class FeatureGraph : public testing::Test
{
protected:
  std::string Add(int tag, std::vector<std::string> consumed, bool result = true,
                  std::vector<int> parameters = {})
  {
    const TDF_Label label = document.Doc()->Main().FindChild(tag);
    Manager::FeatureInfo info = Feature({}, std::move(consumed));
    info.key = Manager::MakeLabelKey(label);
    for (const int parameter : parameters) {
      const TDF_Label child = label.FindChild(parameter);
      info.paramDependencies.push_back(Manager::MakeLabelKey(child));
      info.paramLabels[NameOfParameter(parameter)] = Manager::MakeLabelKey(child);
    }
    info.rebuild = [this, tag, result] {
      rebuilt.push_back(tag);
      return result;
    };
    manager.RegisterFeature(label, info);
    return info.key;
  }

  static std::string NameOfParameter(int tag)
  {
    return tag == 1 ? "Bottom Radius" : tag == 2 ? "Height" : "Angle";
  }

  TDF_Label Parameter(int tag, int parameter)
  {
    return document.Doc()->Main().FindChild(tag).FindChild(parameter);
  }

  OrvexTest::TestDocument document{100};
  Manager& manager = Manager::GetInstance();
  std::vector<int> rebuilt;
};

TEST_F(FeatureGraph, RebuildsWhatIsStaleByRankThenByLabel)
{
  const std::string a = Add(30, {}), b = Add(200, {a}), c = Add(4, {a}), d = Add(5, {b, c});
  Add(60, {});
  Add(1000, {a});
  manager.MarkDirty(a);
  manager.RecomputeAllDirty(true);
  EXPECT_THAT(rebuilt, ElementsAre(30, 4, 200, 1000, 5));
  EXPECT_THAT(manager.GetLastRebuiltFeatureKeys(), ElementsAre(a, c, b, "0:1:1000", d));
  EXPECT_TRUE(manager.HasPendingParametricTransaction());

  rebuilt.clear();
  manager.MarkDirty(b);
  manager.MarkDirty("no such feature");
  manager.RecomputeAllDirty(false);
  EXPECT_THAT(rebuilt, ElementsAre(200, 5));
  EXPECT_FALSE(manager.HasPendingParametricTransaction());
  manager.RecomputeAllDirty(true);
  EXPECT_TRUE(manager.GetLastRebuiltFeatureKeys().empty());
  EXPECT_FALSE(manager.HasPendingParametricTransaction());

  rebuilt.clear();
  manager.RecomputeAllRegisteredFeatures(true);
  EXPECT_THAT(rebuilt, ElementsAre(30, 60, 4, 200, 1000, 5));
  manager.ClearRegisteredState();
  manager.MarkDirty(a);
  manager.RecomputeAllDirty(true);
  EXPECT_EQ(rebuilt.size(), 6U);
}

TEST_F(FeatureGraph, CyclesAndFailuresStopNothingElse)
{
  const std::string one = "0:1:1", two = "0:1:2";
  Add(1, {two});
  Add(2, {one});
  Add(3, {one});
  const std::string failing = Add(4, {}, false), consumer = Add(5, {failing}), alone = Add(6, {});
  for (const std::string& key : {one, failing, alone})
    manager.MarkDirty(key);
  manager.RecomputeAllDirty(true);
  EXPECT_THAT(rebuilt, ElementsAre(4, 6, 5));
  EXPECT_THAT(manager.GetLastRebuiltFeatureKeys(), ElementsAre(alone, consumer));
  rebuilt.clear();
  manager.RecomputeAllDirty(true);
  EXPECT_TRUE(rebuilt.empty()) << "nothing stays dirty";
}

TEST_F(FeatureGraph, AThrowingRebuildIsReportedAndNoMore)
{
  Add(1, {});
  const TDF_Label label = document.Doc()->Main().FindChild(1);
  Add(2, {"0:1:1"});
  Manager::FeatureInfo info = *manager.FindFeature("0:1:1");
  for (const OrvexTest::Fault fault :
       {OrvexTest::Fault::Kernel, OrvexTest::Fault::Standard, OrvexTest::Fault::Number}) {
    info.rebuild = [fault] { return OrvexTest::Raise(fault); };
    manager.RegisterFeature(label, info);
    rebuilt.clear();
    manager.MarkDirty("0:1:1");
    testing::internal::CaptureStderr();
    manager.RecomputeAllDirty(true);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ParametricFeatureManager: exception during rebuild for feature 0:1:1\n");
    EXPECT_THAT(rebuilt, ElementsAre(2));
    EXPECT_FALSE(document.Doc()->HasOpenCommand());
  }
}

TEST_F(FeatureGraph, SwitchedOffItTakesRegistrationsOnly)
{
  Add(1, {}, true, {2});
  manager.SetEnabled(false);
  const TDF_Label height = Parameter(1, 2);
  manager.SetParamValue(height, 5);
  manager.SetParamExpression(height, "2*3");
  EXPECT_EQ(Orvex::RealOf(height), std::nullopt);
  EXPECT_EQ(manager.GetParamExpression(height), "");
  manager.SetParamExpressionRaw(height, "2*3");
  EXPECT_EQ(manager.GetParamExpression(height), "2*3");
  manager.SetParamExpressionRaw(height, "");
  manager.SetParamExpressionRaw(TDF_Label(), "1");
  EXPECT_EQ(manager.GetParamExpression(height), "");
  manager.MarkDirty("0:1:1");
  manager.RecomputeAllRegisteredFeatures(true);
  manager.SetEnabled(true);
  manager.RecomputeAllDirty(true);
  EXPECT_TRUE(rebuilt.empty());
  manager.SetParamValue(TDF_Label(), 5);
}

TEST_F(FeatureGraph, ExpressionsSeeOwnParametersThenGlobalOnes)
{
  Add(1, {}, true, {1, 2, 3});
  const TDF_Label radius = Parameter(1, 1), height = Parameter(1, 2), angle = Parameter(1, 3);
  const auto addGlobal = [](const char* name, const char* value) {
    ParametersDef definition;
    definition.type = eREAL_PARAMETER;
    definition.valueText = value;
    GlobalParaMeterMgr::AddParameter(name, definition);
  };
  addGlobal("wall", "3");
  addGlobal("Height", "1000");
  addGlobal("strange name", "7");
  Orvex::SetReal(height, 10);
  Orvex::SetReal(radius, 4);
  manager.SetParamExpression(angle, "Bottom_Radius*Height+wall+strange_name");
  EXPECT_EQ(Orvex::RealOf(angle), 50);
  // The new height reaches the other expression in the next pass.
  manager.SetParamExpression(height, "wall*2");
  EXPECT_EQ(Orvex::RealOf(height), 6);
  EXPECT_EQ(Orvex::RealOf(angle), 50);
  manager.RecomputeAllRegisteredFeatures(true);
  EXPECT_EQ(Orvex::RealOf(angle), 34);
  rebuilt.clear();
  for (const std::string& bad : {std::string("1/0"), std::string("unknown+1"), std::string("(("),
                                 std::string(1 << 20, '1'), std::string((1 << 20) + 1, ' ')}) {
    manager.SetParamExpression(angle, bad);
    EXPECT_EQ(Orvex::RealOf(angle), 34);
  }
  EXPECT_EQ(rebuilt.size(), 5U) << "rebuilt with the value that stood there";
  const TDF_Label bare = document.Doc()->Main().FindChild(2).FindChild(1);
  Add(2, {}, true, {1});
  manager.SetParamExpression(bare, "1/0");
  EXPECT_EQ(Orvex::RealOf(bare), 0);

  double value = 0;
  EXPECT_TRUE(manager.EvaluateExpression("0:1:1", "wall+Height", value));
  EXPECT_EQ(value, 9);
  EXPECT_FALSE(manager.EvaluateExpression("0:1:9", "wall", value));

  // What follows a global parameter is stale when its value changes, however it gets there.
  Orvex::SetName(Parameter(2, 1).FindChild(1), "twice");
  manager.SetParamExpressionRaw(bare, "");
  addGlobal("twice", "wall");
  rebuilt.clear();
  Orvex::GlobalParameterChange nothing;
  addGlobal("wall", "3.0");
  nothing.MarkDirty();
  manager.RecomputeAllDirty(true);
  EXPECT_TRUE(rebuilt.empty());
  const Orvex::GlobalParameterChange change;
  addGlobal("wall", "4");
  change.MarkDirty();
  manager.RecomputeAllDirty(true);
  EXPECT_THAT(rebuilt, ElementsAre(1, 2));
  EXPECT_EQ(Orvex::RealOf(height), 8);
}

TEST_F(FeatureGraph, AChangeIsOneUndoStepAndJoinsACommandThatIsOpen)
{
  const TDF_Label box = BoxShapeParaCreator().CreateBox(gp::XOY(), 1, 2, 3);
  const TDF_Label length = Orvex::ChildByName(box, "Length");
  const std::string key = Manager::MakeLabelKey(box);
  const std::string before = OrvexTest::DumpOf(box);
  const TopoDS_Shape shape = OrvexTest::ShapeOn(box);
  manager.SetParamValue(length, 5);
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 1);
  EXPECT_THAT(manager.GetLastRebuiltFeatureKeys(), ElementsAre(key));
  EXPECT_EQ(manager.GetOldTShapeHandles().at(key),
            reinterpret_cast<unsigned long long>(shape.TShape().get()));
  EXPECT_NEAR(OrvexTest::VolumeOf(OrvexTest::ShapeOn(box)), 30, 1e-9);
  manager.ClearLastRebuildTrace();
  EXPECT_TRUE(manager.GetOldTShapeHandles().empty());
  EXPECT_TRUE(manager.HasPendingParametricTransaction());
  document.Doc()->Undo();
  EXPECT_TRUE(OrvexTest::SameDump(OrvexTest::DumpOf(box), before));
  document.Doc()->Redo();
  EXPECT_NEAR(OrvexTest::VolumeOf(OrvexTest::ShapeOn(box)), 30, 1e-9);

  document.Doc()->NewCommand();
  manager.SetParamValue(length, 6);
  manager.SetParamValue(Orvex::ChildByName(box, "Width"), 7);
  EXPECT_TRUE(document.Doc()->HasOpenCommand());
  EXPECT_FALSE(manager.HasPendingParametricTransaction());
  document.Doc()->CommitCommand();
  document.Doc()->Undo();
  EXPECT_NEAR(OrvexTest::VolumeOf(OrvexTest::ShapeOn(box)), 30, 1e-9);

  // A parameter that drives nothing is a step as well.
  manager.SetParamValue(document.Doc()->Main().FindChild(77), 1);
  EXPECT_FALSE(manager.HasPendingParametricTransaction());
  document.Doc()->Undo();
  EXPECT_EQ(Orvex::RealOf(document.Doc()->Main().FindChild(77)), std::nullopt);
}

} // namespace
