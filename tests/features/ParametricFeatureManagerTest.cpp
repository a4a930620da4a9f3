#include "features/ParametricFeatureManager.h"

#include "creators/BoxShapeParaCreator.h"
#include "support/TestDocument.h"

#include <gp.hxx>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using Manager = ParametricFeatureManager;

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

} // namespace
