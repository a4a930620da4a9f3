#include "creators/LineShapeParaCreator.h"

#include "creators/internal/CurveEdge.h"
#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <GC_MakeSegment.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kStart, kEnd };

constexpr double kShortestLine = 1e-6;

const std::array kFields = {OriginField("Start Point"), PointField("End Point")};

TopoDS_Shape Build(const ParameterSet& values)
{
  const gp_Pnt& start = PointAt(values, kStart);
  const gp_Pnt& end = PointAt(values, kEnd);
  if (start.Distance(end) < kShortestLine)
    return {};
  return EdgeOver(GC_MakeSegment(start, end).Value());
}

} // namespace

const ShapeKind& LineShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Line",
                              .typeCode = kTypeLine,
                              .namePrefix = "Line",
                              .featureType = "Line",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "the points are at least 1e-6 apart",
                              .make = &MakeCreator<LineShapeParaCreator>,
                              .update = &UpdateWith<LineShapeParaCreator>};
  return kind;
}

TDF_Label LineShapeParaCreator::CreateLine(gp_Pnt& start, gp_Pnt& end)
{
  return CreateWith({start, end});
}

void LineShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& start, gp_Pnt& end)
{
  ReadInto(label, start, end);
}

void LineShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& start, gp_Pnt& end)
{
  StoreFrom(label, start, end);
}
