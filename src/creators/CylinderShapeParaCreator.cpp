#include "creators/CylinderShapeParaCreator.h"

#include "creators/internal/Axes.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepPrimAPI_MakeCylinder.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kNormal, kRadius, kHeight, kAngle };

const std::array kFields = {
  OriginField("Base Point"),
  DirectionField("Normal"),
  LengthField("Bottom Radius", ReadRule::Reference),
  LengthField("Height", ReadRule::Reference),
  DegreesField("Angle", 0, 360, ReadRule::Reference),
};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Ax2 axes = AxesAt(PointAt(values, kBasePoint), DirectionAt(values, kNormal));
  return BRepPrimAPI_MakeCylinder(axes, RealAt(values, kRadius), RealAt(values, kHeight),
                                  Radians(RealAt(values, kAngle)))
    .Shape();
}

void Clamp(ParameterSet& values)
{
  RaiseToSmallestLength(RealAt(values, kRadius));
  RaiseToSmallestLength(RealAt(values, kHeight));
  MakeFullTurnUnlessWithin(RealAt(values, kAngle));
}

} // namespace

const ShapeKind& CylinderShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Cylinder",
                              .typeCode = kTypeCylinder,
                              .namePrefix = "Cylinder",
                              .featureType = "Cylinder",
                              .alwaysRegistered = true,
                              .isSolid = true,
                              .fields = kFields,
                              .build = &Build,
                              .clamp = &Clamp,
                              .make = &MakeCreator<CylinderShapeParaCreator>,
                              .update = &UpdateWith<CylinderShapeParaCreator>};
  return kind;
}

TDF_Label CylinderShapeParaCreator::CreateCylinder(const gp_Pnt& base, const gp_Dir& axis,
                                                   double radius, double height, double angle)
{
  return CreateWith({base, axis, radius, height, angle});
}

void CylinderShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& base, gp_Dir& axis,
                                            double& radius, double& height, double& angle)
{
  ReadInto(label, base, axis, radius, height, angle);
}

void CylinderShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& base, gp_Dir& axis,
                                                 double& radius, double& height, double& angle)
{
  StoreFrom(label, base, axis, radius, height, angle);
}
