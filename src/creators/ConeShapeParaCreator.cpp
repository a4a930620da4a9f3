#include "creators/ConeShapeParaCreator.h"

#include "creators/internal/Axes.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepPrimAPI_MakeCone.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kBottomRadius, kTopRadius, kHeight, kAngle, kNormal };

constexpr ValueRange kNotNegative{.from = 0.0};

const std::array kFields = {
  OriginField("Base Point"),
  LengthField("Bottom Radius", ReadRule::Stored, kNotNegative),
  LengthField("Top Radius", ReadRule::Stored, kNotNegative),
  LengthField("Height"),
  DegreesField("Angle", 0, 360),
  DirectionField("Normal"),
};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Ax2 axes = AxesAt(PointAt(values, kBasePoint), DirectionAt(values, kNormal));
  return BRepPrimAPI_MakeCone(axes, RealAt(values, kBottomRadius), RealAt(values, kTopRadius),
                              RealAt(values, kHeight), Radians(RealAt(values, kAngle)))
    .Shape();
}

void Clamp(ParameterSet& values)
{
  double& bottom = RealAt(values, kBottomRadius);
  double& top = RealAt(values, kTopRadius);
  for (double* radius : {&bottom, &top})
    if (!(*radius >= 0.0))
      *radius = 0.0;
  if (bottom < kSmallestLength && top < kSmallestLength)
    bottom = kSmallestLength;
  RaiseToSmallestLength(RealAt(values, kHeight));
  MakeFullTurnUnlessWithin(RealAt(values, kAngle));
}

} // namespace

const ShapeKind& ConeShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Cone",
                              .typeCode = kTypeCone,
                              .namePrefix = "Cone",
                              .featureType = "Cone",
                              .isSolid = true,
                              .fields = kFields,
                              .build = &Build,
                              .clamp = &Clamp,
                              .condition = "Bottom Radius and Top Radius differ",
                              .make = &MakeCreator<ConeShapeParaCreator>,
                              .update = &UpdateWith<ConeShapeParaCreator>};
  return kind;
}

TDF_Label ConeShapeParaCreator::CreateCone(const gp_Pnt& base, gp_Dir& axis, double& bottomRadius,
                                           double& topRadius, double& height, double& angle)
{
  return CreateWith({base, bottomRadius, topRadius, height, angle, axis});
}

void ConeShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& base, gp_Dir& axis,
                                        double& bottomRadius, double& topRadius, double& height,
                                        double& angle)
{
  ReadInto(label, base, bottomRadius, topRadius, height, angle, axis);
}

void ConeShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& base, gp_Dir& axis,
                                             double& bottomRadius, double& topRadius,
                                             double& height, double& angle)
{
  StoreFrom(label, base, bottomRadius, topRadius, height, angle, axis);
}
