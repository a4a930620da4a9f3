#include "creators/BoxShapeParaCreator.h"

#include "creators/internal/Axes.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepPrimAPI_MakeBox.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kNormal, kLength, kWidth, kHeight };

ParameterField BoxLength(const char* name)
{
  ParameterField field = LengthField(name, ReadRule::Reference);
  field.store = StoreRule::OnlyPositive;
  return field;
}

const std::array kFields = {
  OriginField("Base Point", ReadRule::Reference),
  DirectionField("Normal"),
  BoxLength("Length"),
  BoxLength("Width"),
  BoxLength("Height"),
};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Ax2 axes = AxesAt(PointAt(values, kBasePoint), DirectionAt(values, kNormal));
  return BRepPrimAPI_MakeBox(axes, RealAt(values, kLength), RealAt(values, kWidth),
                             RealAt(values, kHeight))
    .Shape();
}

void Clamp(ParameterSet& values)
{
  for (const Field length : {kLength, kWidth, kHeight})
    RaiseToSmallestLength(RealAt(values, length));
}

} // namespace

const ShapeKind& BoxShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Box",
                              .typeCode = kTypeBox,
                              .namePrefix = "Box_",
                              .featureType = "Box",
                              .alwaysRegistered = true,
                              .isSolid = true,
                              .fields = kFields,
                              .build = &Build,
                              .clamp = &Clamp,
                              .make = &MakeCreator<BoxShapeParaCreator>,
                              .update = &UpdateWith<BoxShapeParaCreator>};
  return kind;
}

TDF_Label BoxShapeParaCreator::CreateBox(const gp_Ax2& axes, double dx, double dy, double dz)
{
  return AddToDocument(BRepPrimAPI_MakeBox(axes, dx, dy, dz).Shape(),
                       {axes.Location(), axes.Direction(), dx, dy, dz});
}

TDF_Label BoxShapeParaCreator::CreateBox(const gp_Pnt& corner, const gp_Dir& normal, double dx,
                                         double dy, double dz)
{
  return CreateBox(AxesAt(corner, normal), dx, dy, dz);
}

void BoxShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& corner, gp_Dir& normal,
                                       double& length, double& width, double& height)
{
  ReadInto(label, corner, normal, length, width, height);
}

void BoxShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& corner, gp_Dir& normal,
                                            double& length, double& width, double& height)
{
  StoreFrom(label, corner, normal, length, width, height);
}

void BoxShapeParaCreator::ValidateParameters()
{}
