#include "features/internal/SubShapeReferences.h"

#include "kernel/internal/BrepText.h"
#include "support/CommaLocale.h"
#include "support/TestDocument.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <GeomAbs_CurveType.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using testing::ElementsAre;

TopTools_IndexedMapOfShape MapOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  TopTools_IndexedMapOfShape map;
  TopExp::MapShapes(shape, type, map);
  return map;
}

TopoDS_Shape Box()
{
  return BRepPrimAPI_MakeBox(10, 20, 30).Shape();
}

FeatureParameters On(const TopoDS_Shape& shape, FeatureParameters parameters)
{
  parameters["sourceBrep"] = QString::fromStdString(Orvex::BrepText(shape));
  return parameters;
}

std::vector<int> Integers(const QVariant& list)
{
  std::vector<int> integers;
  for (const QVariant& value : list.toList())
    integers.push_back(value.toInt());
  return integers;
}

QVariantMap EdgeReference(const TopoDS_Shape& shape, int index)
{
  QVariantMap reference{{"edgeIndex", index}};
  EXPECT_TRUE(Orvex::FingerprintEdge(MapOf(shape, TopAbs_EDGE)(index + 1), reference));
  return reference;
}

QVariantMap FaceReference(const TopoDS_Shape& shape, int index)
{
  QVariantMap reference{{"faceIndex", index}};
  EXPECT_TRUE(Orvex::FingerprintFace(MapOf(shape, TopAbs_FACE)(index + 1), reference));
  return reference;
}

TEST(BrepText, ComesBackInAnyLocaleAndBrokenTextsDoNot)
{
  const std::string text = Orvex::BrepText(Box());
  {
    const OrvexTest::CommaLocale comma;
    EXPECT_EQ(Orvex::BrepText(Box()), text);
    EXPECT_EQ(Orvex::BrepText(Orvex::ShapeOfBrepText(text)),
              Orvex::BrepText(Orvex::ShapeOfBrepText(Orvex::BrepText(Box()))));
  }
  for (const std::string& broken :
       {std::string(), std::string("shape"), std::string(1 << 20, 'x'), text.substr(0, 60),
        std::string("\nCASCADE Topology V3, (c) Open Cascade\nLocations -5\n")})
    EXPECT_TRUE(Orvex::ShapeOfBrepText(broken).IsNull()) << broken.substr(0, 80);
  // What is cut off further on may leave a part; measuring it must not end badly either.
  for (std::size_t length = 100; length < text.size(); length += 101)
    Orvex::RefreshReferences("Chamfer",
                             {{"sourceBrep", QString::fromStdString(text.substr(0, length))},
                              {"edgeIndices", QVariantList{0, 5, 11}}});
}

TEST(SubShapeReferences, OtherFeaturesAndFeaturesWithoutASourceStayAsTheyAre)
{
  const FeatureParameters plain{{"edgeIndices", QVariantList{7, 3}}};
  for (const char* type : {"Box", "fillet", ""})
    EXPECT_EQ(Orvex::RefreshReferences(type, On(Box(), plain)), On(Box(), plain));
  for (const char* type : {"Fillet", "Chamfer", "Shell", "Draft"}) {
    EXPECT_EQ(Orvex::RefreshReferences(type, plain), plain);
    FeatureParameters broken = plain;
    broken["sourceBrep"] = "no shape";
    EXPECT_EQ(Orvex::RefreshReferences(type, broken), broken);
  }
}

TEST(SubShapeReferences, AnIndexListCountsAndIsTidied)
{
  const FeatureParameters refreshed = Orvex::RefreshReferences(
    "Chamfer", On(Box(), {{"edgeIndices", QVariantList{7, 3.0, 3, -1, 12, "x", QVariant(), 2.5,
                                                       1e300, std::nan(""), 4294967297LL}},
                          {"edgeRefs", QVariantList{EdgeReference(Box(), 5)}}}));
  EXPECT_THAT(Integers(refreshed["edgeIndices"]), ElementsAre(3, 7));
  const QVariantList references = refreshed["edgeRefs"].toList();
  ASSERT_EQ(references.size(), 2);
  EXPECT_EQ(references[1].toMap(), EdgeReference(Box(), 7));
  EXPECT_EQ(references[0].toMap().size(), 12);

  for (const char* type : {"Shell", "Draft"}) {
    const FeatureParameters faces = Orvex::RefreshReferences(
      type, On(Box(), {{"faceIndices", QVariant::fromValue(QList<int>{5, 99, 0})}}));
    EXPECT_THAT(Integers(faces["faceIndices"]), ElementsAre(0, 5));
    EXPECT_EQ(faces["faceRefs"].toList()[1].toMap(), FaceReference(Box(), 5));
  }
  // No list reads as an empty one; a text is no list of its characters.
  const FeatureParameters odd = Orvex::RefreshReferences(
    "Chamfer", On(Box(), {{"edgeIndices", "37"}, {"edgeRefs", QVariantMap{{"edgeIndex", 3}}}}));
  EXPECT_TRUE(odd["edgeIndices"].toList().isEmpty());
}

TEST(SubShapeReferences, AnEmptyListIsFilledFromTheFingerprints)
{
  const TopoDS_Shape other = BRepPrimAPI_MakeBox(11, 21, 31).Shape();
  const QVariantList edges{EdgeReference(other, 9), EdgeReference(other, 2), 5,
                           QVariantMap{{"edgeIndex", 4}}, QVariantMap{}};
  const FeatureParameters refreshed = Orvex::RefreshReferences(
    "Chamfer", On(Box(), {{"edgeIndices", QVariantList()}, {"edgeRefs", edges}}));
  EXPECT_THAT(Integers(refreshed["edgeIndices"]), ElementsAre(2, 4, 9));
  const FeatureParameters faces = Orvex::RefreshReferences(
    "Draft", On(Box(), {{"faceRefs", QVariantList{FaceReference(other, 4)}}}));
  EXPECT_THAT(Integers(faces["faceIndices"]), ElementsAre(4));
}

TEST(SubShapeReferences, SpecsKeepTheirOwnValuesAndTheirOrder)
{
  QVariantMap far = EdgeReference(BRepPrimAPI_MakeBox(10, 20, 33).Shape(), 8);
  far["edgeIndex"] = -1;
  far["radius"] = 2.5;
  const QVariantList specs{far, QVariantMap{{"edgeIndex", -1}, {"radius", 1}},
                           QVariantMap{{"edgeIndex", 12}}, QVariantMap{{"radius", 1}},
                           QVariantMap{{"edgeIndex", 0}, {"radius", "1"}, {"length", 99}}};
  const QVariantList refreshed =
    Orvex::RefreshReferences("Fillet", On(Box(), {{"edgeRadiusSpecs", specs}}))["edgeRadiusSpecs"]
      .toList();
  ASSERT_EQ(refreshed.size(), 2);
  QVariantMap first = EdgeReference(Box(), 8), second = EdgeReference(Box(), 0);
  first["radius"] = 2.5;
  second["radius"] = "1";
  EXPECT_EQ(refreshed[0].toMap(), first);
  EXPECT_EQ(refreshed[1].toMap(), second);
}

TEST(SubShapeReferences, ScoresPutTheNearestOfItsKindFirst)
{
  const TopoDS_Shape box = Box(), cylinder = BRepPrimAPI_MakeCylinder(5, 10).Shape();
  const TopTools_IndexedMapOfShape edges = MapOf(box, TopAbs_EDGE);
  for (int index = 0; index < edges.Extent(); ++index) {
    EXPECT_EQ(Orvex::ScoreEdge(edges(index + 1).Reversed(), EdgeReference(box, index)), 0);
    EXPECT_EQ(Orvex::ResolveEdgeRef(edges, EdgeReference(box, index)), index);
  }
  QVariantMap circle = EdgeReference(cylinder, 0);
  EXPECT_EQ(circle["curveType"].toInt(), GeomAbs_Circle);
  EXPECT_GE(Orvex::ScoreEdge(edges(1), circle), 1e9);
  EXPECT_GE(Orvex::ResolveEdgeRef(edges, circle), 0) << "no circle there: the nearest edge";
  circle.remove("curveType");
  EXPECT_GE(Orvex::ScoreEdge(MapOf(cylinder, TopAbs_EDGE)(1), circle), 1e9);
  circle.remove("startX");
  circle["edgeIndex"] = 77;
  EXPECT_EQ(Orvex::ResolveEdgeRef(edges, circle), 77);
  circle.remove("edgeIndex");
  EXPECT_EQ(Orvex::ResolveEdgeRef(edges, circle), -1);
  QVariantMap nowhere = EdgeReference(box, 3);
  nowhere["midX"] = std::nan("");
  EXPECT_EQ(Orvex::ResolveEdgeRef(edges, nowhere), 3);

  const TopTools_IndexedMapOfShape round = MapOf(cylinder, TopAbs_FACE);
  const QVariantMap side = FaceReference(cylinder, 0);
  EXPECT_FALSE(side.contains("normalX"));
  EXPECT_TRUE(FaceReference(box, 0).contains("normalX"));
  EXPECT_EQ(Orvex::ResolveFaceRef(round, side), 0);
  EXPECT_EQ(Orvex::ResolveFaceRef(round, FaceReference(cylinder, 2)), 2);
  EXPECT_EQ(Orvex::ResolveFaceRef(round, {{"faceIndex", 1}, {"area", 5.0}}), 1);
  // An edge without a curve in space, at the pole, has no fingerprint or an orderly one.
  const TopTools_IndexedMapOfShape sphere = MapOf(BRepPrimAPI_MakeSphere(1).Shape(), TopAbs_EDGE);
  for (int index = 1; index <= sphere.Extent(); ++index) {
    QVariantMap reference;
    const bool measured = Orvex::FingerprintEdge(sphere(index), reference);
    EXPECT_EQ(measured, !reference.isEmpty());
  }
  QVariantMap none;
  EXPECT_FALSE(Orvex::FingerprintEdge(TopoDS_Shape(), none));
  EXPECT_FALSE(Orvex::FingerprintFace(TopoDS_Shape(), none));
}

} // namespace
