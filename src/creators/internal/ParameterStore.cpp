#include "creators/internal/ParameterStore.h"

#include "creators/internal/ParameterLabel.h"
#include "document/LabelScheme.h"
#include "foundation/UserMessage.h"

#include <QObject>
#include <TDF_ChildIterator.hxx>
#include <TDataStd_BooleanList.hxx>
#include <TDataXtd_Shape.hxx>

namespace Orvex {

namespace {

constexpr const char* kControlPointPrefix = "CtrlPt_";

// One case for each type of parameter value.
template <typename... Cases>
struct Overloaded : Cases...
{
  using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// TDataXtd_Shape::Set makes its attribute on an empty label only, and throws on one that has a
// name.
void SetShape(const TDF_Label& parameter, const TopoDS_Shape& shape)
{
  if (!parameter.IsAttribute(TDataXtd_Shape::GetID()))
    parameter.AddAttribute(new TDataXtd_Shape());
  if (!shape.IsNull())
    TDataXtd_Shape::Set(parameter, shape);
}

void StoreReal(const TDF_Label& parameter, StoreRule rule, double value)
{
  if (rule == StoreRule::Always || value > 0.0)
    SetReal(parameter, value);
  else if (rule == StoreRule::PositiveOrMessage)
    ShowUserMessage(QObject::tr("Error").toStdString(),
                    QObject::tr("Negative Value").toStdString());
}

// Old children beyond the new points stay as empty labels: a tag is never used for something else.
void StorePoints(const TDF_Label& parameter, const PointList& points)
{
  for (TDF_ChildIterator child(parameter); child.More(); child.Next())
    child.Value().ForgetAllAttributes();
  int tag = 0;
  for (const gp_Pnt& point : points) {
    const TDF_Label child = parameter.FindChild(++tag);
    SetName(child, TCollection_AsciiString(kControlPointPrefix) + tag);
    SetPoint(child, point);
  }
}

PointList PointsOf(const TDF_Label& parameter)
{
  PointList points;
  for (TDF_ChildIterator child(parameter); child.More(); child.Next()) {
    const auto name = NameOf(child.Value());
    const auto point = PointOf(child.Value());
    if (name && point && name->StartsWith(kControlPointPrefix))
      points.push_back(*point);
  }
  return points;
}

template <typename Vector>
Vector Components(const gp_Pnt& point)
{
  return Vector(point.XYZ());
}

} // namespace

void CreateParameterChild(const TDF_Label& shapeLabel, const ParameterField& field)
{
  const int tag = shapeLabel.NbChildren() + 1;
  const auto make = [&](ParameterLabelKind kind) {
    MakeParameterLabel(shapeLabel, tag, field.name, kind);
  };
  const auto named = [&] {
    return MakeParameterLabel(shapeLabel, tag, field.name, ParameterLabelKind::NameOnly);
  };
  std::visit(Overloaded{[&](double) { make(ParameterLabelKind::Real); },
                        [&](int) { make(ParameterLabelKind::Integer); },
                        [&](const gp_Pnt&) { make(ParameterLabelKind::Point); },
                        [&](const gp_Dir&) { make(ParameterLabelKind::Point); },
                        [&](const gp_Vec&) { make(ParameterLabelKind::Point); },
                        [&](const TopoDS_Shape& none) { SetShape(named(), none); },
                        [&](const PointList&) { TDataStd_BooleanList::Set(named()); }},
             field.initial);
}

void StoreParameter(const TDF_Label& parameter, const ParameterField& field,
                    const ParameterValue& value)
{
  std::visit(Overloaded{[&](double real) { StoreReal(parameter, field.store, real); },
                        [&](int integer) { SetInteger(parameter, integer); },
                        [&](const gp_Pnt& point) { SetPoint(parameter, point); },
                        [&](const gp_Dir& dir) { SetPoint(parameter, gp_Pnt(dir.XYZ())); },
                        [&](const gp_Vec& vec) { SetPoint(parameter, gp_Pnt(vec.XYZ())); },
                        [&](const TopoDS_Shape& shape) { SetShape(parameter, shape); },
                        [&](const PointList& points) { StorePoints(parameter, points); }},
             value);
}

ParameterValue ReadParameter(BaseShapeParaCreator& creator, TDF_Label parameter,
                             const ParameterField& field, const ParameterValue& fallback)
{
  using Value = ParameterValue;
  const bool follow = field.read == ReadRule::Reference;
  const auto stored = PointOf(parameter);
  return std::visit(
    Overloaded{
      [&](double real) -> Value {
        return follow ? creator.GetDoubleParaValue(parameter) : RealOf(parameter).value_or(real);
      },
      [&](int integer) -> Value { return IntegerOf(parameter).value_or(integer); },
      [&](const gp_Pnt& point) -> Value {
        return follow ? creator.GetPointParaValue(parameter) : stored.value_or(point);
      },
      [&](const gp_Dir& dir) -> Value { return stored ? Components<gp_Dir>(*stored) : dir; },
      [&](const gp_Vec& vec) -> Value { return stored ? Components<gp_Vec>(*stored) : vec; },
      [&](const TopoDS_Shape&) -> Value { return TDataXtd_Shape::Get(parameter); },
      [&](const PointList&) -> Value { return PointsOf(parameter); }},
    fallback);
}

void TransformParameter(ParameterValue& value, const gp_Trsf& trsf)
{
  std::visit(Overloaded{[](double) {}, [](int) {}, [](const TopoDS_Shape&) {},
                        [&](gp_Pnt& point) { point.Transform(trsf); },
                        [&](gp_Dir& direction) { direction.Transform(trsf); },
                        [&](gp_Vec& vector) { vector.Transform(trsf); },
                        [&](PointList& points) {
                          for (gp_Pnt& point : points)
                            point.Transform(trsf);
                        }},
             value);
}

} // namespace Orvex
