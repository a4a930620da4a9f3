#include "features/registration/internal/PrimitiveFeature.h"

#include "creators/BoxShapeParaCreator.h"
#include "creators/CompoundShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <Standard_Failure.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

#include <memory>

using namespace OrvexTest;
using Orvex::ShapeKind;

namespace {

using Manager = ParametricFeatureManager;

class PrimitiveFeature : public testing::Test
{
protected:
  static bool Register(const TDF_Label& label)
  {
    FeatureHistoryItem item;
    item.label = label;
    return Orvex::RegisterPrimitiveFeatureFromHistory(item);
  }

  static const Manager::FeatureInfo* FeatureOn(const TDF_Label& label)
  {
    return Manager::GetInstance().FindFeature(Manager::MakeLabelKey(label));
  }

  TDF_Label AddBox() const
  {
    return ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(
      document.Doc(), BRepPrimAPI_MakeBox(1, 2, 3).Shape());
  }

  // As a loaded document has it: type and parameters stand on the label, nothing is registered. The
  // shape is a box whatever the kind, so that a rebuild shows.
  TDF_Label Loaded(const ShapeKind& kind) const
  {
    TDF_Label label = AddBox();
    const std::unique_ptr<KindShapeParaCreator> creator(kind.make());
    creator->AddCommonAttribute(label);
    creator->CreateShapeParameter(label);
    creator->StoreParameters(label, Values(kind));
    return label;
  }

  // Lengths that fall from one to the next suit every kind; sources lie beside the axis.
  static Orvex::ParameterSet Values(const ShapeKind& kind)
  {
    Orvex::ParameterSet values;
    double length = 8;
    for (const Orvex::ParameterField& field : kind.fields) {
      values.push_back(field.preset.value_or(field.initial));
      if (std::holds_alternative<TopoDS_Shape>(values.back()))
        values.back() = BRepBuilderAPI_MakeFace(gp_Pln(gp::ZOX()), 1, 2, 1, 2).Shape();
      else if (std::holds_alternative<double>(values.back()) && !field.preset)
        values.back() = length /= 2;
    }
    return values;
  }

  static void ExpectRecord(const ShapeKind& kind, const TDF_Label& label)
  {
    const Manager::FeatureInfo* info = FeatureOn(label);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->type, kind.featureType != nullptr ? kind.featureType : "ExtrudeLoop");
    EXPECT_EQ(info->key, Manager::MakeLabelKey(label));
    EXPECT_TRUE(info->featureDependencies.empty());
    std::vector<std::string> keys;
    for (const Orvex::ParameterField& field : kind.fields)
      if (!std::holds_alternative<TopoDS_Shape>(field.initial)) {
        keys.push_back(Manager::MakeLabelKey(Orvex::ChildByName(label, field.name)));
        EXPECT_EQ(info->paramLabels.at(field.name), keys.back()) << field.name;
      }
    EXPECT_EQ(info->paramDependencies, keys) << "all parameters but the sources of sweeps";
    EXPECT_EQ(info->paramLabels.size(), keys.size());
  }

  TestDocument document;
};

TEST_F(PrimitiveFeature, KindsRegisterTheirNumbersAndRebuildAsTheirCreatorsDo)
{
  const std::set<int> leftOut = {Orvex::kTypeLine, Orvex::kTypeOrthPolygon, Orvex::kTypeArc,
                                 Orvex::kTypeBSpline, Orvex::kTypeBezier};
  for (const ShapeKind* kind : Orvex::ShapeKinds()) {
    SCOPED_TRACE(kind->word);
    TDF_Label label = Loaded(*kind), twin = Loaded(*kind);
    ASSERT_EQ(FeatureOn(label), nullptr);
    EXPECT_EQ(Register(label), !leftOut.contains(kind->typeCode));
    if (leftOut.contains(kind->typeCode)) {
      EXPECT_EQ(FeatureOn(label), nullptr);
      continue;
    }
    ExpectRecord(*kind, label);

    const std::string box = BrepOf(XCAFDoc_ShapeTool::GetShape(twin));
    EXPECT_TRUE(FeatureOn(label)->rebuild());
    kind->update(twin);
    const std::string rebuilt = BrepOf(XCAFDoc_ShapeTool::GetShape(twin));
    EXPECT_FALSE(SameDump(rebuilt, box));
    EXPECT_TRUE(SameDump(BrepOf(XCAFDoc_ShapeTool::GetShape(label)), rebuilt));
  }
}

TEST_F(PrimitiveFeature, WhatHasNoKindIsNotEntered)
{
  TDF_Label compound = AddBox();
  CompoundShapeParaCreator().CreateShapeParameter(compound);
  const TDF_Label bare = document.Doc()->Main().FindChild(50), untyped = AddBox();
  for (const TDF_Label& label : {TDF_Label(), bare, untyped, compound}) {
    EXPECT_FALSE(Register(label));
    EXPECT_EQ(FeatureOn(label), nullptr);
  }
}

TEST_F(PrimitiveFeature, APrimitiveThatIsGoneDoesNotComeBack)
{
  TDF_Label label = BoxShapeParaCreator().CreateBox(gp_Pnt(), gp_Dir(), 1, 1, 1);
  ASSERT_TRUE(Register(label));
  Orvex::SetType(label, Orvex::kTypeSphere);
  EXPECT_FALSE(FeatureOn(label)->rebuild()) << "now another kind";
  ASSERT_TRUE(ShapeLabelMgr::GetInstance()->RemoveShapeByLabel(label));
  EXPECT_FALSE(FeatureOn(label)->rebuild());
  EXPECT_TRUE(XCAFDoc_ShapeTool::GetShape(label).IsNull());
}

TEST_F(PrimitiveFeature, ARebuildThrowsWhatItsCreatorThrows)
{
  const TDF_Label label = BoxShapeParaCreator().CreateBox(gp_Pnt(), gp_Dir(), 1, 1, 1);
  Orvex::SetPoint(Orvex::ChildByName(label, "Normal"), gp_Pnt(0, 0, 0));
  ASSERT_TRUE(Register(label));
  EXPECT_THROW(FeatureOn(label)->rebuild(), Standard_Failure);
}

TEST_F(PrimitiveFeature, WithoutNamesEveryNamedChildIsAParameter)
{
  const TDF_Label label = document.Doc()->Main().FindChild(60);
  Orvex::SetName(label.FindChild(1), "one");
  Orvex::SetReal(label.FindChild(2), 2.0);
  Orvex::SetName(label.FindChild(3), "three");
  Manager::FeatureInfo all, some;
  Orvex::CollectParamLabels(label, {}, all);
  Orvex::CollectParamLabels(label, {"three", "four"}, some);
  const std::string one = Manager::MakeLabelKey(label.FindChild(1));
  const std::string three = Manager::MakeLabelKey(label.FindChild(3));
  EXPECT_EQ(all.paramDependencies, (std::vector{one, three}));
  EXPECT_EQ(all.paramLabels.at("one"), one);
  EXPECT_EQ(some.paramDependencies, std::vector{three});
  EXPECT_EQ(some.paramLabels.size(), 1);
}

} // namespace
