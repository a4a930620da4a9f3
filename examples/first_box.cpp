// The first program: a box in a document, a length changed, the shape rebuilt.

#include "creators/BoxShapeParaCreator.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <XCAFApp_Application.hxx>

#include <cstdio>

static double VolumeOn(const TDF_Label& label)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(ShapeLabelMgr::GetInstance()->GetShapeByLabel(label), properties);
  return properties.Mass();
}

int main()
{
  Handle(TDocStd_Document) doc;
  XCAFApp_Application::GetApplication()->NewDocument("BinXCAF", doc);
  ShapeDocMgr::GetInstance()->SetDoc(doc);

  BoxShapeParaCreator creator;
  gp_Pnt corner(0, 0, 0);
  gp_Dir up(0, 0, 1);
  TDF_Label box = creator.CreateBox(corner, up, 10, 20, 30);
  std::printf("%s: volume %.0f\n", ShapeLabelMgr::GetInstance()->GetShapeNameByLabel(box).c_str(),
              VolumeOn(box));

  double length = 15, width = 20, height = 30;
  creator.SetShapeParameter(box, corner, up, length, width, height);
  creator.UpdateShape(box);
  std::printf("length 15: volume %.0f\n", VolumeOn(box));
}
