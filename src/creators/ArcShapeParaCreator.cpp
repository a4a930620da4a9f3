#include "creators/ArcShapeParaCreator.h"

#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <GC_MakeArcOfCircle.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kStart, kEnd, kThird };

const std::array kFields = {PointField("Start Point"), PointField("End Point"),
                            PointField("Third Point")};

TopoDS_Shape Build(const ParameterSet& values)
{
  const GC_MakeArcOfCircle arc(PointAt(values, kStart), PointAt(values, kEnd),
                               PointAt(values, kThird));
  return EdgeOver(arc.Value());
}

} // namespace

const ShapeKind& ArcShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Arc",
                              .typeCode = kTypeArc,
                              .namePrefix = "Arc",
                              .featureType = "Arc",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "the points are not on one line",
                              .make = &MakeCreator<ArcShapeParaCreator>,
                              .update = &UpdateWith<ArcShapeParaCreator>};
  return kind;
}

TDF_Label ArcShapeParaCreator::CreateArc(const gp_Pnt& start, const gp_Pnt& end,
                                         const gp_Pnt& third)
{
  return CreateWith({start, end, third});
}

void ArcShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& start, gp_Pnt& end, gp_Pnt& third)
{
  ReadInto(label, start, end, third);
}

void ArcShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& start, gp_Pnt& end,
                                            gp_Pnt& third)
{
  StoreFrom(label, start, end, third);
}
