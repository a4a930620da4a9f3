#include "creators/EllipseShapeParaCreator.h"

#include "creators/internal/Axes.h"
#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <GC_MakeEllipse.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kCenter, kMajorRadius, kMinorRadius };

const std::array kFields = {OriginField("Base Point"), LengthField("MajorRadius"),
                            LengthField("MinorRadius")};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Ax2 axes = HorizontalAxesAt(PointAt(values, kCenter));
  return EdgeOver(
    GC_MakeEllipse(axes, RealAt(values, kMajorRadius), RealAt(values, kMinorRadius)).Value());
}

} // namespace

const ShapeKind& EllipseShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Ellipse",
                              .typeCode = kTypeEllipse,
                              .namePrefix = "Ellipse",
                              .featureType = "Ellipse",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "MajorRadius is at least MinorRadius",
                              .make = &MakeCreator<EllipseShapeParaCreator>,
                              .update = &UpdateWith<EllipseShapeParaCreator>};
  return kind;
}

TDF_Label EllipseShapeParaCreator::CreateEllipse(const gp_Pnt& center, double majorRadius,
                                                 double minorRadius)
{
  return CreateWith({center, majorRadius, minorRadius});
}

void EllipseShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& center, double& majorRadius,
                                           double& minorRadius)
{
  ReadInto(label, center, majorRadius, minorRadius);
}

void EllipseShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& center,
                                                double& majorRadius, double& minorRadius)
{
  StoreFrom(label, center, majorRadius, minorRadius);
}
