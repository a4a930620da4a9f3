#include "creators/CircleShapeParaCreator.h"

#include "creators/internal/Axes.h"
#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <GC_MakeCircle.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kCenter, kRadius };

const std::array kFields = {OriginField("Base Point"), LengthField("Radius")};

TopoDS_Shape Build(const ParameterSet& values)
{
  return EdgeOver(
    GC_MakeCircle(HorizontalAxesAt(PointAt(values, kCenter)), RealAt(values, kRadius)).Value());
}

} // namespace

const ShapeKind& CircleShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Circle",
                              .typeCode = kTypeCircle,
                              .namePrefix = "Circle",
                              .featureType = "Circle",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .make = &MakeCreator<CircleShapeParaCreator>,
                              .update = &UpdateWith<CircleShapeParaCreator>};
  return kind;
}

TDF_Label CircleShapeParaCreator::CreateCircle(const gp_Pnt& center, double radius)
{
  return CreateWith({center, radius});
}

void CircleShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& center, double& radius)
{
  ReadInto(label, center, radius);
}

void CircleShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& radius)
{
  StoreFrom(label, center, radius);
}
