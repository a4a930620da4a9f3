#include "document/OrvexDocShapesInformation.h"

#include <ShapeAnalysis_ShapeContents.hxx>

#include <algorithm>
#include <charconv>
#include <initializer_list>

namespace {

constexpr const char* kTypeWord = "TopoDS_TShape";

std::string FixedNumber(double value)
{
  // The largest double has 309 digits before the point.
  char text[340];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr};
}

std::string CornerLine(const char* title, const gp_Pnt& corner)
{
  return title + FixedNumber(corner.X()) + "  ,  " + FixedNumber(corner.Y()) + "  ,  " +
         FixedNumber(corner.Z()) + "<br>";
}

bool IsOneOf(const TopoDS_Shape& shape, std::initializer_list<TopAbs_ShapeEnum> types)
{
  return !shape.IsNull() && std::find(types.begin(), types.end(), shape.ShapeType()) != types.end();
}

} // namespace

sModelInformation OrvexDocShapesInformation::m_modelInfo;

void OrvexDocShapesInformation::CollectData()
{
  sModelInformation info;
  for (const TopoDS_Shape& shape : ShapeLabelMgr::GetAllShapes()) {
    if (shape.IsNull())
      continue;
    ShapeAnalysis_ShapeContents contents;
    contents.Perform(shape);
    info.numberOfFaces += contents.NbFaces();
    info.numberOfEdges += contents.NbEdges();
    info.numberOfVertices += contents.NbVertices();
  }
  info.boundingBox = ShapeLabelMgr::GetAllBoundingBox();
  m_modelInfo = info;
}

std::string OrvexDocShapesInformation::DumpModelInformation()
{
  const auto shapes = ShapeLabelMgr::GetAllShapes().size();
  CollectData();
  const Bnd_Box& box = m_modelInfo.boundingBox;
  const gp_Pnt least = box.IsVoid() ? gp_Pnt() : box.CornerMin();
  const gp_Pnt most = box.IsVoid() ? gp_Pnt() : box.CornerMax();
  return "Total number of main shapes in the model is: " + std::to_string(shapes) + "<br>" +
         "Face  number:" + std::to_string(m_modelInfo.numberOfFaces) + "<br>" +
         CornerLine("Bounding Box(Min):  ", least) + CornerLine("Bounding Box(Max):  ", most);
}

std::string
OrvexDocShapesInformation::GetMainShapeAndSubShape(TDF_Label& label,
                                                   ShapeLabelMgr::SubShapeMap& subShapes)
{
  auto* registry = ShapeLabelMgr::GetInstance();
  const TopoDS_Shape shape = registry->GetShapeByLabel(label);
  std::string text = registry->GetShapeName(&shape);
  registry->GetSubshapWithcursive(label, subShapes);
  for (const auto& [parent, children] : subShapes) {
    text.append("\n\nCurrent shape Type: ").append(kTypeWord).append(", and its subshape are: ");
    for (std::size_t i = 0; i < children.size(); ++i)
      text.append("Type: ").append(kTypeWord);
  }
  return text;
}

bool OrvexOCCShapeType::IsFaceType(const TopoDS_Shape& shape)
{
  return IsOneOf(shape, {TopAbs_SHELL, TopAbs_FACE});
}

bool OrvexOCCShapeType::IsSolidType(const TopoDS_Shape& shape)
{
  return IsOneOf(shape, {TopAbs_SOLID, TopAbs_COMPSOLID});
}

bool OrvexOCCShapeType::IsTopShape(const TopoDS_Shape& shape)
{
  return IsOneOf(shape, {TopAbs_COMPOUND, TopAbs_COMPSOLID, TopAbs_SOLID});
}
