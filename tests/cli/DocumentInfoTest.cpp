// What orvex info tells of documents that an application made: bindings, looks, assemblies.
#include "info/ModelInfo.h"

#include "creators/BoxShapeParaCreator.h"
#include "creators/ShapeBuilder.h"
#include "document/ShapeLabelMgr.h"
#include "model/Documents.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <TDocStd_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gtest/gtest.h>

using namespace Orvex::Cli;

namespace {

class DocumentInfo : public ::testing::Test
{
protected:
  QJsonObject InfoOf(const Handle(TDocStd_Document) & document)
  {
    const std::string path = folder.filePath("part.xbf").toStdString();
    EXPECT_TRUE(SaveDocument(document, path));
    Handle(TDocStd_Application)::DownCast(document->Application())->Close(document);
    return DescribeModelFile(path, FileFormat::Document, true, [](const ProgressStep&) {});
  }

  QTemporaryDir folder;
};

TDF_Label NewBox()
{
  return BoxShapeParaCreator().CreateBox(gp_Pnt(1, 2, 3), gp_Dir(0, 0, 1), 10, 20, 30);
}

} // namespace

TEST_F(DocumentInfo, TellsWhatAParameterFollowsAndWhatItHolds)
{
  const auto document = NewDocument();
  TDF_Label box = NewBox();
  ShapeBuilder::UpdateParameter(box, "Length", "width of all", true);
  const QJsonArray parameters = InfoOf(document)["shapes"][0]["parameters"].toArray();
  ASSERT_EQ(parameters.size(), 5);
  EXPECT_EQ(parameters[2]["reference"].toString(), "width of all");
  EXPECT_EQ(parameters[2]["value"].toDouble(), 10.0);
  EXPECT_FALSE(parameters[3].toObject().contains("reference"));
}

TEST_F(DocumentInfo, TellsTheLooks)
{
  const auto document = NewDocument();
  TopoDS_Shape shape = ShapeLabelMgr::GetInstance()->GetShapeByLabel(NewBox());
  auto* registry = ShapeLabelMgr::GetInstance();
  double red = 1.0, green = 0.0, blue = 0.0;
  std::string steel = "Steel", name = "Gehäuse";
  registry->SetShapeColor(shape, red, green, blue);
  registry->SetShapeVisibilty(shape, false);
  registry->SetShapeTransparent(shape, 0.25);
  registry->SetShapeMaterial(shape, steel);
  registry->SetShapeName(&shape, name);
  const QJsonObject entry = InfoOf(document);
  const QJsonObject read = entry["shapes"][0].toObject();
  EXPECT_EQ(read["color"].toString(), "#ff0000");
  EXPECT_EQ(entry["colors"].toArray(), QJsonArray{"#ff0000"});
  EXPECT_TRUE(read["visible"].isBool() && !read["visible"].toBool());
  EXPECT_EQ(read["opacity"].toDouble(), 0.25);
  EXPECT_EQ(read["material"].toString(), "Steel");
  EXPECT_EQ(read["name"].toString(), "Gehäuse");
}

TEST_F(DocumentInfo, CountsAnAssemblyByItsOccurrencesAndShowsItsTree)
{
  const auto document = NewDocument();
  const auto tool = XCAFDoc_DocumentTool::ShapeTool(document->Main());
  const TDF_Label box = NewBox();
  const TDF_Label assembly = tool->NewShape();
  for (const double x : {0.0, 100.0}) {
    gp_Trsf move;
    move.SetTranslation(gp_Vec(x, 0, 0));
    tool->AddComponent(assembly, box, TopLoc_Location(move));
  }
  tool->UpdateAssemblies();
  const QJsonObject entry = InfoOf(document);
  EXPECT_EQ(entry["structure"]["assemblies"].toInt(), 1);
  EXPECT_EQ(entry["structure"]["parts"].toInt(), 1);
  EXPECT_EQ(entry["counts"]["solids"]["expanded"].toInt(), 2);
  EXPECT_EQ(entry["counts"]["solids"]["distinct"].toInt(), 1);
  const QJsonArray children = entry["tree"][0]["children"].toArray();
  ASSERT_EQ(children.size(), 2);
  EXPECT_EQ(children[1]["placement"][3].toDouble(), 100.0);
  EXPECT_EQ(children[1]["occurrence"].toInt(), 2);
  EXPECT_EQ(children[1]["color"].toString(), entry["colors"][0].toString());
  EXPECT_NEAR(entry["box"]["size"][0].toDouble(), 110.0, 1e-3);
}

TEST_F(DocumentInfo, ADirectionOfNoLengthIsShownAndNoFailure)
{
  const auto document = NewDocument();
  TDF_Label box = NewBox();
  ShapeBuilder::UpdateParameter(box, "Normal", gp_Pnt(0, 0, 0), true);
  const QJsonObject entry = InfoOf(document);
  EXPECT_EQ(entry["shapes"][0]["parameters"][1]["value"].toArray(), (QJsonArray{0.0, 0.0, 0.0}));
}
