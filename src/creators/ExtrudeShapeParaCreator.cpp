#include "creators/ExtrudeShapeParaCreator.h"

#include "creators/internal/Sweeps.h"
#include "document/LabelScheme.h"

#include <array>

using namespace Orvex;

namespace {

enum Field { kNormal, kLength, kShape };

const std::array kFields = {
  ParameterField{.name = "Normal", .initial = gp_Vec(), .preset = gp_Vec(0, 0, 1)},
  SweepField("Length", Unit::Length),
  ShapeField("ShapeToExtrude"),
};

gp_Vec Scaled(gp_Vec direction, double length)
{
  direction.Normalize();
  return direction * length;
}

TopoDS_Shape Build(const ParameterSet& values)
{
  return PrismOf(ShapeAt(values, kShape),
                 Scaled(std::get<gp_Vec>(values[kNormal]), RealAt(values, kLength)));
}

} // namespace

const ShapeKind& ExtrudeShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Extrude",
                              .typeCode = kTypeExtrude,
                              .namePrefix = "Extrude",
                              .featureType = "Extrude",
                              .rebuildsInCommand = true,
                              .movesParameters = false,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "Normal is not zero",
                              .make = &MakeCreator<ExtrudeShapeParaCreator>,
                              .update = &UpdateWith<ExtrudeShapeParaCreator>};
  return kind;
}

TDF_Label ExtrudeShapeParaCreator::CreateExtrude(const TopoDS_Shape& shape, gp_Vec& vector,
                                                 double& length)
{
  vector = Scaled(vector, length);
  return AddToDocument(PrismOf(shape, vector), {vector, length, shape});
}

void ExtrudeShapeParaCreator::GetParameter(TDF_Label label, TopoDS_Shape& shape, gp_Vec& vector,
                                           double& length)
{
  ReadInto(label, vector, length, shape);
}

void ExtrudeShapeParaCreator::SetShapeParameter(TDF_Label& label, TopoDS_Shape& shape,
                                                gp_Vec& vector, double& length)
{
  StoreFrom(label, vector, length, shape);
}
