// A model that remembers how it was made: a bracket out of a plate and a wall, with a drilled hole
// and a slot that is suppressed. One global parameter drives the wall, and through an expression
// the hole. Writes a document with its parameters beside it:
//
//   bracket bracket.xbf
//   orvex history bracket.xbf
//   orvex rebuild bracket.xbf --param wall=12 -o thicker.xbf

#include "creators/BoxShapeParaCreator.h"
#include "creators/CylinderShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"
#include "features/FeatureTree.h"
#include "features/ParametricFeatureManager.h"
#include "operations/OrvexGeometryOp.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <BRepGProp.hxx>
#include <BinXCAFDrivers.hxx>
#include <GProp_GProps.hxx>
#include <XCAFApp_Application.hxx>

#include <cstdio>

namespace {

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

double VolumeOn(const TDF_Label& label)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(ShapeOn(label), properties);
  return properties.Mass();
}

TDF_Label CutOf(const TDF_Label& from, const TDF_Label& tool)
{
  TopoDS_Shape shape = ShapeOn(from), hole = ShapeOn(tool);
  return OrvexGeometryOp::PerformSubtract(shape, hole, eBOOL_KEEP_BOTH);
}

void AddWallParameter()
{
  ParametersDef wall;
  wall.name = "wall";
  wall.type = eREAL_PARAMETER;
  wall.valueText = "8";
  wall.description = "Thickness of the wall";
  GlobalParaMeterMgr::AddParameter("wall", wall);
}

} // namespace

int main(int argc, char** argv)
{
  if (argc != 2) {
    std::fprintf(stderr, "usage: bracket FILE.xbf\n");
    return 2;
  }
  auto application = XCAFApp_Application::GetApplication();
  BinXCAFDrivers::DefineFormat(application);
  Handle(TDocStd_Document) document;
  application->NewDocument("BinXCAF", document);
  document->SetUndoLimit(20);
  ShapeDocMgr::GetInstance()->SetDoc(document);
  AddWallParameter();

  const TDF_Label plate = BoxShapeParaCreator().CreateBox(gp_Pnt(0, 0, 0), gp::DZ(), 80, 50, 8);
  const TDF_Label wall = BoxShapeParaCreator().CreateBox(gp_Pnt(0, 0, 0), gp::DZ(), 8, 50, 40);
  const TDF_Label drill =
    CylinderShapeParaCreator().CreateCylinder(gp_Pnt(50, 25, -5), gp::DZ(), 5, 20, 360);
  const TDF_Label slotTool =
    BoxShapeParaCreator().CreateBox(gp_Pnt(20, 20, -5), gp::DZ(), 15, 10, 20);

  std::vector<TopoDS_Shape> parts{ShapeOn(plate), ShapeOn(wall)};
  const TDF_Label body = OrvexGeometryOp::PerformUnite(parts, true);
  const TDF_Label drilled = CutOf(body, drill);
  const TDF_Label slotted = CutOf(drilled, slotTool);

  FeatureHistoryManager& history = FeatureHistoryManager::GetInstance();
  history.AddFeature("Box", "Plate", plate, {});
  history.AddFeature("Box", "Wall", wall, {});
  history.AddFeature("Cylinder", "Drill", drill, {});
  history.AddFeature("Box", "Slot tool", slotTool, {});
  history.AddFeature("BooleanFuse", "Body", body, {plate, wall});
  history.AddFeature("BooleanCut", "Drilled", drilled, {body, drill});
  const int slot = history.AddFeature("BooleanCut", "Slotted", slotted, {drilled, slotTool});
  history.SuppressFeature(slot);

  ParametricFeatureManager& graph = ParametricFeatureManager::GetInstance();
  std::printf("bracket: %.1f mm³\n", VolumeOn(drilled));
  graph.SetParamExpression(Orvex::ChildByName(wall, "Length"), "wall");
  graph.SetParamExpression(Orvex::ChildByName(drill, "Bottom Radius"), "wall*0.75");
  std::printf("hole of 0.75 walls: %.1f mm³\n", VolumeOn(drilled));
  document->Undo();
  std::printf("undone: %.1f mm³\n", VolumeOn(drilled));
  document->Redo();

  Orvex::StoreFeatureTree();
  QString error;
  const QString path = QString::fromLocal8Bit(argv[1]);
  const bool saved =
    application->SaveAs(document, TCollection_ExtendedString(argv[1], true)) == PCDM_SS_OK &&
    GlobalParaMeterMgr::SaveToFile(GlobalParaMeterMgr::SidecarPath(path), &error);
  if (!saved)
    std::fprintf(stderr, "bracket: cannot write %s\n", argv[1]);
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  application->Close(document);
  return saved ? 0 : 1;
}
