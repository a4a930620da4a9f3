#include "document/OrvexShapeMapper.h"

#include "document/OrvexDocShapesInformation.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "support/CommaLocale.h"
#include "support/TestDocument.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <TDataStd_Name.hxx>
#include <TopExp_Explorer.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

using OrvexTest::TestDocument;

namespace {

OrvexShapeMapper& Mapper()
{
  return *OrvexShapeMapper::GetInstance();
}

TopoDS_Shape Box(double size)
{
  return BRepPrimAPI_MakeBox(size, size, size).Shape();
}

TopoDS_Shape Moved(const TopoDS_Shape& shape)
{
  gp_Trsf trsf;
  trsf.SetTranslation(gp_Vec(3, 0, 0));
  return shape.Moved(trsf);
}

TEST(ShapeIdentity, IsARandomUuidPerShapeAndPlace)
{
  const TestDocument document;
  const TopoDS_Shape shape = Box(1);
  const auto id = Mapper().RegisterShape(shape);
  EXPECT_TRUE(std::regex_match(
    id.ToCString(),
    std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")))
    << id.ToCString();
  const int labels = document.Doc()->Main().FindChild(1).NbChildren();
  EXPECT_EQ(Mapper().RegisterShape(shape), id);
  EXPECT_EQ(Mapper().RegisterShape(shape.Reversed()), id);
  EXPECT_EQ(document.Doc()->Main().FindChild(1).NbChildren(), labels);
  EXPECT_NE(Mapper().RegisterShape(Moved(shape)), id);
  EXPECT_TRUE(Mapper().FindShape(id).IsSame(shape));
  EXPECT_TRUE(Mapper().FindID(Box(1)).IsEmpty());
  EXPECT_TRUE(Mapper().FindShape("00000000-0000-4000-8000-000000000000").IsNull());

  std::set<std::string> ids;
  for (int i = 0; i < 200; ++i)
    ids.insert(Mapper().RegisterShape(Box(1)).ToCString());
  EXPECT_EQ(ids.size(), 200U);
}

TEST(ShapeIdentity, NamesOfShapesAreNoIds)
{
  const TestDocument document;
  TopoDS_Shape shape = Box(1);
  ShapeLabelMgr::GetInstance()->AddNewShapeToDoc(document.Doc(), shape);
  std::string name = "Box_7";
  ShapeLabelMgr::GetInstance()->SetShapeName(&shape, name);
  EXPECT_TRUE(Mapper().FindID(shape).IsEmpty());
  EXPECT_TRUE(Mapper().FindShape("Box_7").IsNull());
  const auto id = Mapper().RegisterShape(shape);
  EXPECT_NE(id, "Box_7");
  Mapper().RebuildMappings();
  EXPECT_EQ(Mapper().FindID(shape), id);
}

// What the class tells its users about the registry's own queries.
TEST(ShapeIdentity, ARegisteredShapeIsOneMoreTopLevelShape)
{
  const TestDocument document;
  auto* registry = ShapeLabelMgr::GetInstance();
  const TopoDS_Shape shape = Box(1);
  const TDF_Label label = registry->AddNewShapeToDocAndGetLabel(document.Doc(), shape);
  const auto id = Mapper().RegisterShape(shape);
  EXPECT_EQ(ShapeLabelMgr::GetAllShapes().size(), 2U);
  EXPECT_EQ(registry->GetShapeNameByLabel(registry->GetAllShapeLabes()[1]), id.ToCString());
  EXPECT_TRUE(registry->GetShapeLabel(shape).IsEqual(label));
}

TEST(ShapeIdentity, SurvivesSavingAndFollowsTheDocument)
{
  TestDocument document;
  EXPECT_TRUE(Mapper().FindID(Box(1)).IsEmpty());
  std::vector<TCollection_AsciiString> ids;
  for (int i = 1; i <= 20; ++i)
    ids.push_back(Mapper().RegisterShape(Box(i)));
  document.SaveAndReopen();
  for (int i = 20; i >= 1; --i) {
    const TopoDS_Shape again = Mapper().FindShape(ids[static_cast<std::size_t>(i) - 1]);
    ASSERT_FALSE(again.IsNull());
    EXPECT_EQ(Mapper().FindID(again), ids[static_cast<std::size_t>(i) - 1]);
  }
  const TopoDS_Shape first = Mapper().FindShape(ids[0]);
  {
    const TestDocument other;
    EXPECT_TRUE(Mapper().FindID(first).IsEmpty());
    EXPECT_TRUE(Mapper().FindShape(ids[0]).IsNull());
  }
  EXPECT_TRUE(Mapper().RegisterShape(first).IsEmpty()) << "no document";
  ShapeDocMgr::GetInstance()->SetDoc(document.Doc());
  EXPECT_EQ(Mapper().FindID(first), ids[0]);
  EXPECT_TRUE(Mapper().RegisterShape(TopoDS_Shape()).IsEmpty());
}

TEST(ShapeIdentity, AfterUndoAnIdNamesNoShapeAndAfterRedoItDoesAgain)
{
  const TestDocument document(10);
  const TopoDS_Shape first = Box(1), second = Box(2);
  document.Doc()->NewCommand();
  const auto firstId = Mapper().RegisterShape(first);
  document.Doc()->CommitCommand();
  document.Doc()->Undo();
  EXPECT_TRUE(Mapper().FindShape(firstId).IsNull());
  EXPECT_TRUE(Mapper().FindID(first).IsEmpty());
  document.Doc()->Redo();
  EXPECT_TRUE(Mapper().FindShape(firstId).IsSame(first));
  document.Doc()->Undo();
  document.Doc()->NewCommand();
  const auto secondId = Mapper().RegisterShape(second);
  document.Doc()->CommitCommand();
  EXPECT_TRUE(Mapper().FindShape(secondId).IsSame(second));
  EXPECT_TRUE(Mapper().FindShape(firstId).IsNull()) << "the label's tag serves another id now";
}

TEST(ModelInformation, CountsAndDumpsIndependentOfTheLocale)
{
  const TestDocument document;
  EXPECT_EQ(OrvexDocShapesInformation::DumpModelInformation(),
            "Total number of main shapes in the model is: 0<br>Face  number:0<br>"
            "Bounding Box(Min):  0.000000  ,  0.000000  ,  0.000000<br>"
            "Bounding Box(Max):  0.000000  ,  0.000000  ,  0.000000<br>");
  const OrvexTest::CommaLocale locale;
  ShapeLabelMgr::GetInstance()->AddNewShapeToDoc(document.Doc(), Moved(Box(1.5)));
  const std::string text = OrvexDocShapesInformation::DumpModelInformation();
  EXPECT_EQ(text, "Total number of main shapes in the model is: 1<br>Face  number:6<br>"
                  "Bounding Box(Min):  3.000000  ,  0.000000  ,  0.000000<br>"
                  "Bounding Box(Max):  4.500000  ,  1.500000  ,  1.500000<br>");
  EXPECT_EQ(OrvexDocShapesInformation::m_modelInfo.numberOfEdges, 24);
  EXPECT_EQ(OrvexDocShapesInformation::m_modelInfo.numberOfVertices, 48);
  EXPECT_TRUE(OrvexDocShapesInformation::m_modelInfo.facesByName.empty());
}

TEST(ModelInformation, ListsTheTreeBelowALabel)
{
  const TestDocument document;
  TopoDS_Shape shape = Box(1);
  TDF_Label label =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), shape);
  std::string name = "part";
  ShapeLabelMgr::GetInstance()->SetShapeName(&shape, name);
  for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
    XCAFDoc_DocumentTool::ShapeTool(label)->AddSubShape(label, faces.Current());
  ShapeLabelMgr::SubShapeMap subShapes;
  const std::string text = OrvexDocShapesInformation::GetMainShapeAndSubShape(label, subShapes);
  const std::string head = "\n\nCurrent shape Type: TopoDS_TShape, and its subshape are: ";
  std::string faces;
  for (int i = 0; i < 6; ++i)
    faces += "Type: TopoDS_TShape";
  EXPECT_EQ(subShapes.size(), 7U);
  EXPECT_EQ(text.substr(0, 4 + head.size()), "part" + head);
  EXPECT_NE(text.find(head + faces), std::string::npos);
}

TEST(ShapeTypes, AreToldApart)
{
  const TopoDS_Shape solid = Box(1);
  const TopoDS_Shape shell = TopExp_Explorer(solid, TopAbs_SHELL).Current();
  const TopoDS_Shape edge = TopExp_Explorer(solid, TopAbs_EDGE).Current();
  EXPECT_TRUE(OrvexOCCShapeType::IsSolidType(solid) && OrvexOCCShapeType::IsTopShape(solid));
  EXPECT_TRUE(OrvexOCCShapeType::IsFaceType(shell));
  EXPECT_FALSE(OrvexOCCShapeType::IsTopShape(shell) || OrvexOCCShapeType::IsFaceType(solid));
  for (const TopoDS_Shape& none : {TopoDS_Shape(), edge}) {
    EXPECT_FALSE(OrvexOCCShapeType::IsFaceType(none));
    EXPECT_FALSE(OrvexOCCShapeType::IsSolidType(none));
    EXPECT_FALSE(OrvexOCCShapeType::IsTopShape(none));
  }
}

} // namespace
