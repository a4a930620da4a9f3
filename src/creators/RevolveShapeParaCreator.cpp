#include "creators/RevolveShapeParaCreator.h"

#include "creators/internal/Sweeps.h"
#include "document/LabelScheme.h"

#include <BRepPrimAPI_MakeRevol.hxx>
#include <gp_Ax1.hxx>

#include <array>
#include <cmath>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kNormal, kAngle, kShape };

const std::array kFields = {
  OriginField("Base Point"),
  DirectionField("Normal"),
  SweepField("Angle", Unit::Radians, 2.0 * std::numbers::pi),
  ShapeField("ShapeToRevolve"),
};

// The kernel takes full turns off an angle one by one, which never ends for an infinite angle and
// for one so large that a turn is lost in its last bit.
double WithoutManyTurns(double angle)
{
  constexpr double kManyTurns = 1e6;
  return std::abs(angle) > kManyTurns ? std::fmod(angle, 2.0 * std::numbers::pi) : angle;
}

TopoDS_Shape Build(const ParameterSet& values)
{
  const TopoDS_Shape& shape = ShapeAt(values, kShape);
  const double angle = RealAt(values, kAngle);
  if (shape.IsNull() || !std::isfinite(angle))
    return {};
  const gp_Ax1 axis(PointAt(values, kBasePoint), DirectionAt(values, kNormal));
  return BRepPrimAPI_MakeRevol(shape, axis, WithoutManyTurns(angle), false).Shape();
}

} // namespace

const ShapeKind& RevolveShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Revolve",
                              .typeCode = kTypeRevolve,
                              .namePrefix = "Revolve",
                              .featureType = "Revolve",
                              .rebuildsInCommand = true,
                              .movesParameters = false,
                              .fields = kFields,
                              .build = &Build,
                              .make = &MakeCreator<RevolveShapeParaCreator>,
                              .update = &UpdateWith<RevolveShapeParaCreator>};
  return kind;
}

TDF_Label RevolveShapeParaCreator::CreateRevolve(const TopoDS_Shape& shape, const gp_Pnt& point,
                                                 const gp_Dir& direction, double angle)
{
  return CreateWith({point, direction, angle, shape});
}

void RevolveShapeParaCreator::GetParameter(TDF_Label label, TopoDS_Shape& shape, gp_Pnt& point,
                                           gp_Dir& direction, double& angle)
{
  ReadInto(label, point, direction, angle, shape);
}

void RevolveShapeParaCreator::SetShapeParameter(TDF_Label& label, TopoDS_Shape& shape,
                                                gp_Pnt& point, gp_Dir& direction, double& angle)
{
  StoreFrom(label, point, direction, angle, shape);
}
