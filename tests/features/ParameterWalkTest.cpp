// One parameter change from entry to end: a number, what depends on it, one undo step, and the same
// after the document was saved and opened again.
#include "creators/BoxShapeParaCreator.h"
#include "creators/CylinderShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "features/FeatureHistoryManager.h"
#include "features/FeatureTree.h"
#include "features/ParametricFeatureManager.h"
#include "operations/OrvexGeometryOp.h"
#include "parameters/GlobalParaMeterMgr.h"
#include "support/FeatureModel.h"
#include "support/Measures.h"
#include "support/TestDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include <cmath>

namespace {

using testing::ElementsAre;

class ParameterWalk : public testing::Test
{
protected:
  ParameterWalk()
  {
    SetBore("3");
    const TDF_Label block = BoxShapeParaCreator().CreateBox(gp_Pnt(0, 0, 0), gp::DZ(), 40, 30, 20);
    const TDF_Label drill =
      CylinderShapeParaCreator().CreateCylinder(gp_Pnt(20, 15, -5), gp::DZ(), 3, 30, 360);
    TopoDS_Shape blockShape = OrvexTest::ShapeOn(block), drillShape = OrvexTest::ShapeOn(drill);
    const TDF_Label result =
      OrvexGeometryOp::PerformSubtract(blockShape, drillShape, eBOOL_KEEP_BOTH);
    FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
    history.AddFeature("Box", "Block", block, {});
    history.AddFeature("Cylinder", "Drill", drill, {});
    history.AddFeature("BooleanCut", "Drilled", result, {block, drill});
    keys = {Orvex::EntryOf(block), Orvex::EntryOf(drill), Orvex::EntryOf(result)};
  }

  static void SetBore(const char* value)
  {
    ParametersDef bore;
    bore.type = eREAL_PARAMETER;
    bore.valueText = value;
    GlobalParaMeterMgr::AddParameter("bore", bore);
  }

  TDF_Label Parameter(std::size_t feature, const char* name) const
  {
    return Orvex::ChildByName(Orvex::LabelOfEntry(document.Doc(), keys[feature]), name);
  }

  TopoDS_Shape Shape(std::size_t feature) const
  {
    return OrvexTest::ShapeOn(Orvex::LabelOfEntry(document.Doc(), keys[feature]));
  }

  void ExpectDrilled(double length, double bore) const
  {
    EXPECT_NEAR(OrvexTest::VolumeOf(Shape(2)), length * 600 - M_PI * bore * bore * 20, 1e-6);
  }

  std::string Dump() const
  {
    return OrvexTest::DumpOf(document.Doc()->Main());
  }

  // The change, checked from all sides.
  void ChangeTheLength(double from, double to)
  {
    const std::string before = Dump();
    const std::string operand = OrvexTest::BrepOf(Shape(1));
    const TopoDS_Shape oldBlock = Shape(0);
    const int undos = document.Doc()->GetAvailableUndos();
    graph.SetParamValue(Parameter(0, "Length"), to);
    EXPECT_THAT(graph.GetLastRebuiltFeatureKeys(), ElementsAre(keys[0], keys[2]));
    EXPECT_EQ(graph.GetOldTShapeHandles().at(keys[0]),
              reinterpret_cast<unsigned long long>(oldBlock.TShape().get()));
    EXPECT_EQ(graph.GetOldTShapeHandles().size(), 2U);
    EXPECT_TRUE(graph.HasPendingParametricTransaction());
    EXPECT_EQ(document.Doc()->GetAvailableUndos(), undos + 1);
    EXPECT_EQ(OrvexTest::BrepOf(Shape(1)) == operand, true) << "the tool was touched";
    ExpectDrilled(to, 3);
    const std::string after = Dump();
    document.Doc()->Undo();
    EXPECT_TRUE(OrvexTest::SameDump(Dump(), before));
    ExpectDrilled(from, 3);
    document.Doc()->Redo();
    EXPECT_TRUE(OrvexTest::SameDump(Dump(), after));
  }

  OrvexTest::TestDocument document{100};
  ParametricFeatureManager& graph = ParametricFeatureManager::GetInstance();
  std::vector<std::string> keys;
};

TEST_F(ParameterWalk, FromANumberToTheShapeBeforeAndAfterSaving)
{
  ChangeTheLength(40, 50);
  graph.SetParamExpression(Parameter(1, "Bottom Radius"), "bore");
  Orvex::StoreFeatureTree();
  const std::string sidecar = OrvexTest::TemporaryPath("walk.params.json");
  ASSERT_TRUE(GlobalParaMeterMgr::SaveToFile(QString::fromStdString(sidecar), nullptr));

  document.SaveAndReopen();
  graph.ClearRegisteredState();
  GlobalParaMeterMgr::ClearAllParameters();
  ASSERT_TRUE(GlobalParaMeterMgr::LoadFromFile(QString::fromStdString(sidecar), nullptr));
  QFile::remove(QString::fromStdString(sidecar));
  Orvex::RestoreFeatureTree();
  document.Doc()->SetUndoLimit(100);
  graph.RecomputeAllRegisteredFeatures(true);
  EXPECT_THAT(graph.GetLastRebuiltFeatureKeys(), ElementsAre(keys[0], keys[1], keys[2]));
  ExpectDrilled(50, 3);

  ChangeTheLength(50, 60);
  SetBore("5");
  graph.MarkDirty(keys[1]);
  graph.RecomputeAllDirty(true);
  EXPECT_THAT(graph.GetLastRebuiltFeatureKeys(), ElementsAre(keys[1], keys[2]));
  EXPECT_EQ(Orvex::RealOf(Parameter(1, "Bottom Radius")), 5);
  ExpectDrilled(60, 5);
  document.Doc()->Undo();
  EXPECT_EQ(Orvex::RealOf(Parameter(1, "Bottom Radius")), 3);
  ExpectDrilled(60, 3);
}

} // namespace
