#include "creators/OrthPolygonShapeParaCreator.h"

#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepBuilderAPI_MakePolygon.hxx>
#include <gp_Ax1.hxx>

#include <array>
#include <numbers>

using namespace Orvex;

namespace {

enum Field { kCenter, kFirstVertex, kSides };

const std::array kFields = {
  OriginField("Base Point"),
  PointField("End Point"),
  ParameterField{.name = "Number Polygon", .initial = 0, .range = {.from = 3, .to = 100000}},
};

TopoDS_Shape Build(const ParameterSet& values)
{
  const int sides = std::get<int>(values[kSides]);
  if (sides <= 0)
    return {};
  const gp_Ax1 axis(PointAt(values, kCenter), gp_Dir(0, 0, 1));
  const double step = 2.0 * std::numbers::pi / sides;
  BRepBuilderAPI_MakePolygon polygon;
  for (int i = 0; i < sides; ++i) {
    gp_Trsf turn;
    turn.SetRotation(axis, i * step);
    polygon.Add(PointAt(values, kFirstVertex).Transformed(turn));
  }
  polygon.Close();
  return polygon.Shape();
}

} // namespace

const ShapeKind& OrthPolygonShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Polygon",
                              .typeCode = kTypeOrthPolygon,
                              .namePrefix = "Polygon",
                              .numbered = false,
                              .featureType = "Polygon",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "Base Point and End Point differ in X or Y",
                              .make = &MakeCreator<OrthPolygonShapeParaCreator>,
                              .update = &UpdateWith<OrthPolygonShapeParaCreator>};
  return kind;
}

TDF_Label OrthPolygonShapeParaCreator::CreateOrthPolygon(const gp_Pnt& center,
                                                         const gp_Pnt& firstVertex, int sides)
{
  return CreateWith({center, firstVertex, sides});
}

void OrthPolygonShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& center, gp_Pnt& firstVertex,
                                               int& sides)
{
  ReadInto(label, center, firstVertex, sides);
}

void OrthPolygonShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& center,
                                                    gp_Pnt& firstVertex, int& sides)
{
  StoreFrom(label, center, firstVertex, sides);
}
