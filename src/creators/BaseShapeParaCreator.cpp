#include "creators/BaseShapeParaCreator.h"

#include "creators/ShapeParaCreatorTool.h"
#include "creators/internal/ParameterLabel.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <TDataStd_BooleanList.hxx>
#include <TDataStd_Name.hxx>
#include <TDataStd_Real.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

constexpr int kElementTag = 9;
constexpr const char* kElementName = "Element";

TopoDS_Shape Moved(const TopoDS_Shape& shape, const gp_Trsf& trsf)
{
  BRepBuilderAPI_Transform transform(trsf);
  transform.Perform(shape, true);
  return transform.Shape();
}

bool ElementTagIsTaken(const TDF_Label& label)
{
  const auto name = Orvex::NameOf(label.FindChild(kElementTag, false));
  return name && !name->IsEqual(kElementName);
}

void EnsureText(const TDF_Label& label, const char* text)
{
  if (!label.IsAttribute(TDataStd_Name::GetID()))
    TDataStd_Name::Set(label, text);
}

// The kernel makes an assembly of a compound, puts its components on the first tags and names them;
// those names must not be taken for the material and the display mode of the whole.
void ForgetComponentNames(const TDF_Label& label)
{
  for (const int tag : {Orvex::kMaterialTag, Orvex::kDisplayModeTag})
    if (const TDF_Label child = label.FindChild(tag, false); !child.IsNull())
      child.ForgetAttribute(TDataStd_Name::GetID());
}

QVariant ReferredValue(const TCollection_AsciiString& reference)
{
  return GlobalParaMeterMgr::GetParameterRawValue(QString::fromUtf8(reference.ToCString()));
}

} // namespace

BaseShapeParaCreator::BaseShapeParaCreator(const BaseShapeParaCreator&) : IBaseShapeParaCreator()
{}

BaseShapeParaCreator& BaseShapeParaCreator::operator=(const BaseShapeParaCreator&)
{
  return *this;
}

void* BaseShapeParaCreator::operator new(std::size_t size)
{
  return ::operator new(size);
}

void BaseShapeParaCreator::operator delete(void* memory)
{
  ::operator delete(memory);
}

void BaseShapeParaCreator::operator delete(BaseShapeParaCreator* creator, std::destroying_delete_t)
{
  void* memory = dynamic_cast<void*>(creator);
  creator->~BaseShapeParaCreator();
  ::operator delete(memory);
}

void BaseShapeParaCreator::CreateShapeParameter(TDF_Label&)
{}

void BaseShapeParaCreator::UpdateShape(TDF_Label&)
{}

void BaseShapeParaCreator::ValidateParameters()
{}

void BaseShapeParaCreator::AddCommonAttribute(TDF_Label& label)
{
  const auto add = [&label](int tag, const char* name, auto value) {
    TDF_Label child = label.FindChild(tag);
    ShapeParaCreatorTool::AddParameterByName(child, name, value);
  };
  add(Orvex::kVisibilityTag, Orvex::kVisibilityName, true);
  add(Orvex::kTransparentTag, Orvex::kTransparentName, Orvex::kOpaque);
  add(Orvex::kColorTag, Orvex::kColorName, Orvex::DefaultColor());
  AddMateiralProperty(label);
  add(Orvex::kEnabledTag, Orvex::kEnabledName, true);
  AddMeshProperty(label);

  const TDF_Label mode = label.FindChild(Orvex::kDisplayModeTag);
  Orvex::SetName(mode, Orvex::kDisplayModeName);
  EnsureText(mode, Orvex::kSurfaceMode);
  if (!Orvex::FlagOf(mode))
    Orvex::SetFlag(mode, false);
}

void BaseShapeParaCreator::PerformTransform(TDF_Label& label, gp_Trsf trsf)
{
  PerformObjectTransform(label, trsf);
}

void BaseShapeParaCreator::PerformObjectTransform(TDF_Label& label, gp_Trsf trsf)
{
  if (label.IsNull())
    return;
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  if (!shape.IsNull())
    XCAFDoc_DocumentTool::ShapeTool(label)->SetShape(label, Moved(shape, trsf));
}

TDF_Label BaseShapeParaCreator::PerformClone(TDF_Label& label, gp_Trsf trsf)
{
  if (label.IsNull())
    return {};
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  if (shape.IsNull())
    return {};
  BRepBuilderAPI_Copy copy;
  copy.Perform(shape, false, false);
  if (!copy.IsDone())
    return {};
  TDF_Label clone = XCAFDoc_DocumentTool::ShapeTool(label)->AddShape(Moved(copy.Shape(), trsf));
  ForgetComponentNames(clone);
  AddCommonAttribute(clone);
  AddGeometryTypeAsCompound(clone);
  return clone;
}

double BaseShapeParaCreator::GetDoubleParaValue(TDF_Label& parameter)
{
  if (const auto reference = Orvex::ReferenceOf(parameter)) {
    const QString text = QString::fromUtf8(reference->ToCString());
    return isDigitStr(text) ? text.toDouble() : ReferredValue(*reference).toDouble();
  }
  return std::abs(Orvex::RealOf(parameter).value_or(0.0));
}

gp_Pnt BaseShapeParaCreator::GetPointParaValue(TDF_Label& parameter)
{
  if (const auto reference = Orvex::ReferenceOf(parameter)) {
    const QVariant value = ReferredValue(*reference);
    // A text converts to the list of its characters; only a vector parameter gives a list.
    if (value.typeId() == QMetaType::QVariantList) {
      const QVariantList list = value.toList();
      if (list.size() >= 3)
        return gp_Pnt(list[0].toDouble(), list[1].toDouble(), list[2].toDouble());
    }
  }
  return Orvex::PointOf(parameter).value_or(gp_Pnt());
}

void BaseShapeParaCreator::AddElementProperty(TDF_Label& label)
{
  if (ElementTagIsTaken(label))
    return;
  const TDF_Label child = label.FindChild(kElementTag);
  EnsureText(child, "Shell");
  Orvex::SetName(child, kElementName);
}

void BaseShapeParaCreator::AddSolidElementProperty(TDF_Label& label)
{
  if (ElementTagIsTaken(label))
    return;
  const TDF_Label child = label.FindChild(kElementTag);
  TDataStd_Name::Set(child, "Solid");
  Orvex::SetName(child, kElementName);
}

void BaseShapeParaCreator::AddGeometryTypeAsCompound(TDF_Label& label)
{
  Orvex::SetType(label, Orvex::kTypeCompound);
}

void BaseShapeParaCreator::AddMateiralProperty(TDF_Label& label)
{
  const TDF_Label child = label.FindChild(Orvex::kMaterialTag);
  EnsureText(child, Orvex::kNoMaterial);
  Orvex::SetName(child, Orvex::kMaterialName);
}

void BaseShapeParaCreator::AddMeshProperty(TDF_Label& label)
{
  Orvex::MakeParameterLabel(label, Orvex::kMeshSizeTag, Orvex::kMeshSizeName,
                            Orvex::ParameterLabelKind::Real);
}

void BaseShapeParaCreator::GetCommonAttribute(TDF_Label& label, bool& visible, double& transparent,
                                              gp_Pnt& color, int&, bool& enabled)
{
  if (label.IsNull())
    throw std::runtime_error("GetCommonAttribute: input label is null");
  const auto child = [&label](int tag) { return label.FindChild(tag, false); };
  visible = Orvex::FlagOf(child(Orvex::kVisibilityTag)).value_or(visible);
  transparent = Orvex::RealOf(child(Orvex::kTransparentTag)).value_or(transparent);
  color = Orvex::PointOf(child(Orvex::kColorTag)).value_or(color);
  enabled = Orvex::FlagOf(child(Orvex::kEnabledTag)).value_or(enabled);
}

bool BaseShapeParaCreator::isDigitStr(QString text)
{
  const QByteArray bytes = text.toLatin1();
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
}
