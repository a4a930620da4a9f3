#include "creators/KindShapeParaCreator.h"

#include "creators/ShapeParaCreatorTool.h"
#include "creators/internal/ParameterStore.h"
#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"

#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <optional>

using Orvex::ParameterField;
using Orvex::ParameterSet;
using Orvex::ParameterValue;
using Orvex::PointList;
using Orvex::ShapeKind;

namespace {

std::optional<std::size_t> FieldNamed(const ShapeKind& kind, const TDF_Label& parameter)
{
  const auto name = Orvex::NameOf(parameter);
  if (!name)
    return std::nullopt;
  const auto found =
    std::find_if(kind.fields.begin(), kind.fields.end(),
                 [&](const ParameterField& field) { return name->IsEqual(field.name); });
  if (found == kind.fields.end())
    return std::nullopt;
  return static_cast<std::size_t>(found - kind.fields.begin());
}

// Calls visit(parameter label, index of its field) for each parameter child of a shape label.
template <typename Visit>
void VisitParameters(const ShapeKind& kind, const TDF_Label& label, Visit&& visit)
{
  if (label.IsNull())
    return;
  Orvex::VisitChildren(label, [&](const TDF_Label& child) {
    if (const auto index = FieldNamed(kind, child))
      visit(child, *index);
    return false;
  });
}

// A list of points is the one parameter whose child is made when it is missing.
void EnsurePointList(const ShapeKind& kind, const TDF_Label& label)
{
  for (const ParameterField& field : kind.fields)
    if (std::holds_alternative<PointList>(field.initial) &&
        Orvex::ChildByName(label, field.name).IsNull())
      Orvex::CreateParameterChild(label, field);
}

ParameterSet InitialValues(const ShapeKind& kind)
{
  ParameterSet values;
  for (const ParameterField& field : kind.fields)
    values.push_back(field.initial);
  return values;
}

ParameterSet Transformed(ParameterSet values, const gp_Trsf& trsf)
{
  for (ParameterValue& value : values)
    Orvex::TransformParameter(value, trsf);
  return values;
}

TCollection_AsciiString NewName(const ShapeKind& kind)
{
  TCollection_AsciiString name(kind.namePrefix);
  if (kind.numbered)
    name += TarvelNameIndexMgr::GetGlobeIndex();
  return name;
}

// Puts a rebuilt shape on its label. The kinds that do so inside a command join the one that is
// open, so that a rebuild never ends its caller's undo step.
void PutShape(const ShapeKind& kind, const TDF_Label& label, const TopoDS_Shape& shape)
{
  const auto doc = kind.rebuildsInCommand ? TDocStd_Document::Get(label) : nullptr;
  Orvex::DocumentCommand command(doc);
  XCAFDoc_DocumentTool::ShapeTool(label)->SetShape(label, shape);
  command.Commit();
}

void AddParameterKey(ParametricFeatureManager::FeatureInfo& info, const TDF_Label& parameter,
                     const std::string& name)
{
  const std::string key = ParametricFeatureManager::MakeLabelKey(parameter);
  info.paramDependencies.push_back(key);
  info.paramLabels[name] = key;
}

// A list of points is entered point by point.
void AddParameterKeys(ParametricFeatureManager::FeatureInfo& info, const TDF_Label& parameter,
                      const ParameterField& field)
{
  if (!std::holds_alternative<PointList>(field.initial))
    return AddParameterKey(info, parameter, field.name);
  for (TDF_ChildIterator child(parameter); child.More(); child.Next())
    if (const auto name = Orvex::NameOf(child.Value()))
      AddParameterKey(info, child.Value(), name->ToCString());
}

} // namespace

void KindShapeParaCreator::CreateShapeParameter(TDF_Label& label)
{
  Orvex::SetType(label, Kind().typeCode);
  for (const ParameterField& field : Kind().fields)
    Orvex::CreateParameterChild(label, field);
}

TDF_Label KindShapeParaCreator::CreateWith(const ParameterSet& values)
{
  return AddToDocument(Kind().build(values), values);
}

TDF_Label KindShapeParaCreator::AddToDocument(const TopoDS_Shape& shape, const ParameterSet& values)
{
  const TDF_Label label = AddUnregistered(shape, values);
  if (!label.IsNull())
    Register(label);
  return label;
}

TDF_Label KindShapeParaCreator::AddUnregistered(const TopoDS_Shape& shape,
                                                const ParameterSet& values)
{
  TDF_Label label = ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(
    ShapeDocMgr::GetInstance()->GetDoc(), shape);
  if (label.IsNull())
    return {};
  Orvex::SetName(label, NewName(Kind()));
  AddCommonAttribute(label);
  CreateShapeParameter(label);
  StoreParameters(label, values);
  return label;
}

void KindShapeParaCreator::UpdateShape(TDF_Label& label)
{
  if (label.IsNull())
    return;
  const ShapeKind& kind = Kind();
  ParameterSet values = ReadParameters(label);
  if (kind.clamp != nullptr)
    kind.clamp(values);
  ValidateParameters();
  const TopoDS_Shape shape = kind.build(values);
  if (!shape.IsNull())
    PutShape(kind, label, shape);
}

void KindShapeParaCreator::PerformTransform(TDF_Label& label, gp_Trsf trsf)
{
  if (!Kind().movesParameters)
    return BaseShapeParaCreator::PerformTransform(label, trsf);
  StoreParameters(label, Transformed(ReadParameters(label), trsf));
}

TDF_Label KindShapeParaCreator::PerformClone(TDF_Label& label, gp_Trsf trsf)
{
  if (label.IsNull() || !Kind().movesParameters)
    return BaseShapeParaCreator::PerformClone(label, trsf);
  return CreateWith(Transformed(ReadParameters(label), trsf));
}

void KindShapeParaCreator::AddElementProperty(TDF_Label& label)
{
  if (Kind().isSolid)
    AddSolidElementProperty(label);
  else
    BaseShapeParaCreator::AddElementProperty(label);
}

ParameterSet KindShapeParaCreator::ReadParameters(const TDF_Label& label)
{
  return ReadParameters(label, InitialValues(Kind()));
}

ParameterSet KindShapeParaCreator::ReadParameters(const TDF_Label& label, ParameterSet defaults)
{
  VisitParameters(Kind(), label, [&](const TDF_Label& parameter, std::size_t index) {
    defaults[index] = Orvex::ReadParameter(*this, parameter, Kind().fields[index], defaults[index]);
  });
  return defaults;
}

std::vector<Orvex::HeldParameter> KindShapeParaCreator::HeldParameters(const TDF_Label& label)
{
  std::vector<Orvex::HeldParameter> held;
  VisitParameters(Kind(), label, [&](const TDF_Label& parameter, std::size_t index) {
    ParameterField field = Kind().fields[index];
    field.read = Orvex::ReadRule::Stored;
    if (std::holds_alternative<gp_Dir>(field.initial))
      field.initial = gp_Vec();
    const auto reference = Orvex::ReferenceOf(parameter);
    const bool list = std::holds_alternative<PointList>(field.initial);
    held.push_back({&Kind().fields[index],
                    Orvex::ReadParameter(*this, parameter, field, field.initial),
                    reference && !list ? reference->ToCString() : ""});
  });
  return held;
}

void KindShapeParaCreator::StoreParameters(const TDF_Label& label, const ParameterSet& values)
{
  if (label.IsNull())
    return;
  EnsurePointList(Kind(), label);
  VisitParameters(Kind(), label, [&](const TDF_Label& parameter, std::size_t index) {
    Orvex::StoreParameter(parameter, Kind().fields[index], values[index]);
  });
}

void KindShapeParaCreator::Register(const TDF_Label& label)
{
  const ShapeKind& kind = Kind();
  auto& manager = ParametricFeatureManager::GetInstance();
  if (kind.featureType == nullptr || !(kind.alwaysRegistered || manager.IsEnabled()))
    return;
  ParametricFeatureManager::FeatureInfo info;
  info.type = kind.featureType;
  info.key = ParametricFeatureManager::MakeLabelKey(label);
  VisitParameters(kind, label, [&](const TDF_Label& parameter, std::size_t index) {
    AddParameterKeys(info, parameter, kind.fields[index]);
  });
  info.rebuild = Orvex::RebuildOf(kind, label);
  manager.RegisterFeature(label, info);
}
