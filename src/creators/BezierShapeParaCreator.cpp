#include "creators/BezierShapeParaCreator.h"

#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <Geom_BezierCurve.hxx>
#include <TColgp_Array1OfPnt.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kControlPoints };

const std::array kFields = {
  ParameterField{.name = "ControlPoints", .initial = PointList(), .unit = Unit::Length}};

TopoDS_Shape Build(const ParameterSet& values)
{
  const PointList& points = PointsAt(values, kControlPoints);
  if (points.size() < 2)
    return {};
  const TColgp_Array1OfPnt poles(points.front(), 1, static_cast<int>(points.size()));
  return EdgeOver(new Geom_BezierCurve(poles));
}

} // namespace

const ShapeKind& BezierShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Bezier",
                              .typeCode = kTypeBezier,
                              .namePrefix = "Bezier",
                              .featureType = "Bezier",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "two to 26 points",
                              .make = &MakeCreator<BezierShapeParaCreator>,
                              .update = &UpdateWith<BezierShapeParaCreator>};
  return kind;
}

TDF_Label BezierShapeParaCreator::CreateBezier(std::vector<gp_Pnt>& points)
{
  return CreateWith({points});
}

void BezierShapeParaCreator::GetParameter(TDF_Label label, std::vector<gp_Pnt>& points)
{
  ReadInto(label, points);
}

void BezierShapeParaCreator::SetShapeParameter(TDF_Label& label, std::vector<gp_Pnt>& points)
{
  StoreFrom(label, points);
}
