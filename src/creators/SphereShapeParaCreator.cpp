#include "creators/SphereShapeParaCreator.h"

#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepPrimAPI_MakeSphere.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kRadius, kAngle1, kAngle2, kAngle3 };

const std::array kFields = {
  OriginField("Base Point"),     LengthField("Radius"),          DegreesField("Angle1", -90, 0),
  DegreesField("Angle2", 0, 90), DegreesField("Angle3", 0, 360),
};

TopoDS_Shape Build(const ParameterSet& values)
{
  return BRepPrimAPI_MakeSphere(PointAt(values, kBasePoint), RealAt(values, kRadius),
                                Radians(RealAt(values, kAngle1)), Radians(RealAt(values, kAngle2)),
                                Radians(RealAt(values, kAngle3)))
    .Shape();
}

// A NaN becomes the end that leaves the sphere whole.
void Limit(double& degrees, double from, double to, double whole)
{
  if (degrees < from)
    degrees = from;
  else if (degrees > to)
    degrees = to;
  else if (!(degrees >= from))
    degrees = whole;
}

void Clamp(ParameterSet& values)
{
  RaiseToSmallestLength(RealAt(values, kRadius));
  Limit(RealAt(values, kAngle1), -90, 0, -90);
  Limit(RealAt(values, kAngle2), 0, 90, 90);
  MakeFullTurnUnlessWithin(RealAt(values, kAngle3));
}

} // namespace

const ShapeKind& SphereShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Sphere",
                              .typeCode = kTypeSphere,
                              .namePrefix = "Sphere",
                              .featureType = "Sphere",
                              .alwaysRegistered = true,
                              .isSolid = true,
                              .fields = kFields,
                              .build = &Build,
                              .clamp = &Clamp,
                              .condition = "Angle1 is below Angle2",
                              .make = &MakeCreator<SphereShapeParaCreator>,
                              .update = &UpdateWith<SphereShapeParaCreator>};
  return kind;
}

TDF_Label SphereShapeParaCreator::CreateSphere(const gp_Pnt& center, double radius, double angle1,
                                               double angle2, double angle3)
{
  return CreateWith({center, radius, angle1, angle2, angle3});
}

void SphereShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& center, double& radius,
                                          double& angle1, double& angle2, double& angle3)
{
  ReadInto(label, center, radius, angle1, angle2, angle3);
}

void SphereShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& radius,
                                               double& angle1, double& angle2, double& angle3)
{
  StoreFrom(label, center, radius, angle1, angle2, angle3);
}
