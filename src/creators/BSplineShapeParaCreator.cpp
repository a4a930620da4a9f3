#include "creators/BSplineShapeParaCreator.h"

#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <GeomAPI_Interpolate.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Standard_Failure.hxx>
#include <TColgp_HArray1OfPnt.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kControlPoints };

constexpr double kTolerance = 1e-7;
constexpr double kKnotTolerance = 0.001;
constexpr int kFewestKnotsToReduce = 5;

const std::array kFields = {
  ParameterField{.name = "ControlPoints", .initial = PointList(), .unit = Unit::Length}};

PointList WithoutRepetitions(const PointList& points)
{
  PointList kept;
  for (const gp_Pnt& point : points)
    if (kept.empty() || kept.back().Distance(point) > kTolerance)
      kept.push_back(point);
  return kept;
}

// Null if the kernel cannot, whether it says so or throws.
Handle(Geom_BSplineCurve) Interpolation(const PointList& points, bool periodic)
{
  try {
    const Handle(TColgp_HArray1OfPnt) array =
      new TColgp_HArray1OfPnt(1, static_cast<int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i)
      array->SetValue(static_cast<int>(i) + 1, points[i]);
    GeomAPI_Interpolate interpolate(array, periodic, kTolerance);
    interpolate.Perform();
    if (interpolate.IsDone())
      return interpolate.Curve();
  } catch (const Standard_Failure&) {
    // Points that cannot be interpolated are refused like too few of them.
  }
  return nullptr;
}

bool RemoveLastRemovableKnot(const Handle(Geom_BSplineCurve) & curve)
{
  for (int knot = curve->NbKnots() - 1; knot >= 2; --knot)
    if (curve->RemoveKnot(knot, 0, kKnotTolerance))
      return true;
  return false;
}

// False if the kernel fails on the way.
bool Reduce(const Handle(Geom_BSplineCurve) & curve)
{
  try {
    if (curve->NbKnots() >= kFewestKnotsToReduce)
      while (RemoveLastRemovableKnot(curve)) {
      }
    return true;
  } catch (const Standard_Failure&) {
    return false;
  }
}

TopoDS_Shape Build(const ParameterSet& values)
{
  const PointList points = WithoutRepetitions(PointsAt(values, kControlPoints));
  if (points.size() < 2)
    return {};
  const auto curve = Interpolation(points, false);
  return curve.IsNull() ? TopoDS_Edge() : EdgeOver(curve);
}

} // namespace

const ShapeKind& BSplineShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "BSpline",
                              .typeCode = kTypeBSpline,
                              .namePrefix = "BSpline",
                              .featureType = "BSpline",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "at least two points more than 1e-7 apart",
                              .make = &MakeCreator<BSplineShapeParaCreator>,
                              .update = &UpdateWith<BSplineShapeParaCreator>};
  return kind;
}

TDF_Label BSplineShapeParaCreator::CreateBSpline(std::vector<gp_Pnt>& points)
{
  return CreateWith({points});
}

TDF_Label BSplineShapeParaCreator::CreateBSplineEx(std::vector<gp_Pnt>& points, int reductionLevel,
                                                   bool periodic)
{
  if (points.size() < 4 || reductionLevel < 2)
    return CreateBSpline(points);
  const auto curve = Interpolation(points, periodic);
  if (curve.IsNull() || !Reduce(curve))
    return CreateBSpline(points);
  return AddUnregistered(EdgeOver(curve), {points});
}

void BSplineShapeParaCreator::GetParameter(TDF_Label label, std::vector<gp_Pnt>& points)
{
  ReadInto(label, points);
}

void BSplineShapeParaCreator::SetShapeParameter(TDF_Label& label, std::vector<gp_Pnt>& points)
{
  StoreFrom(label, points);
}
