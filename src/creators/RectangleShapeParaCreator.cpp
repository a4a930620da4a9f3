#include "creators/RectangleShapeParaCreator.h"

#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepBuilderAPI_MakePolygon.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kLength, kWidth };

const std::array kFields = {OriginField("Base Point"), LengthField("Length"), LengthField("Width")};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Pnt& corner = PointAt(values, kBasePoint);
  const gp_Vec alongX(RealAt(values, kLength), 0, 0);
  const gp_Vec alongY(0, RealAt(values, kWidth), 0);
  return BRepBuilderAPI_MakePolygon(corner, corner.Translated(alongX),
                                    corner.Translated(alongX + alongY), corner.Translated(alongY),
                                    true)
    .Shape();
}

} // namespace

const ShapeKind& RectangleShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Rectangle",
                              .typeCode = kTypeRectangle,
                              .namePrefix = "RectangleFace",
                              .featureType = "Rectangle",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .make = &MakeCreator<RectangleShapeParaCreator>,
                              .update = &UpdateWith<RectangleShapeParaCreator>};
  return kind;
}

TDF_Label RectangleShapeParaCreator::CreateRectangle(const gp_Pnt& corner, double length,
                                                     double width)
{
  return CreateWith({corner, length, width});
}

void RectangleShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& corner, double& length,
                                             double& width)
{
  ReadInto(label, corner, length, width);
}

void RectangleShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& corner, double& length,
                                                  double& width)
{
  StoreFrom(label, corner, length, width);
}
