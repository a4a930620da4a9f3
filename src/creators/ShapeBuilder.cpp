#include "creators/ShapeBuilder.h"

#include "creators/CompoundShapeParaCreator.h"
#include "creators/KindShapeParaCreator.h"
#include "creators/internal/ParameterLabel.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"

#include <TDataStd_BooleanList.hxx>
#include <TDataStd_Integer.hxx>
#include <TDataStd_Real.hxx>
#include <TDataXtd_Position.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <memory>

namespace {

std::unique_ptr<BaseShapeParaCreator> CreatorOf(TDF_Label label)
{
  return std::unique_ptr<BaseShapeParaCreator>(ShapeBuilder::GetShapeInstance(label));
}

bool MoveAsCompound(TDF_Label& label, const gp_Trsf& trsf)
{
  if (ShapeDocMgr::GetInstance()->GetDoc().IsNull() || label.IsNull() ||
      XCAFDoc_ShapeTool::GetShape(label).IsNull() || XCAFDoc_ShapeTool::IsReference(label))
    return false;
  BaseShapeParaCreator().PerformObjectTransform(label, trsf);
  Orvex::SetType(label, Orvex::kTypeCompound);
  return true;
}

bool Move(TDF_Label& label, const gp_Trsf& trsf)
{
  const auto creator = CreatorOf(label);
  if (creator == nullptr)
    return MoveAsCompound(label, trsf);
  creator->PerformTransform(label, trsf);
  return true;
}

// Calls edit(child) for every child with that name.
template <typename Edit>
void EditNamed(const TDF_Label& label, const TCollection_AsciiString& name, Edit&& edit)
{
  if (label.IsNull())
    return;
  Orvex::VisitChildren(label, [&](const TDF_Label& child) {
    if (Orvex::HasName(child, name))
      edit(child);
    return false;
  });
}

void SetPoint(const TDF_Label& child, gp_Pnt value)
{
  Orvex::SetPoint(child, value);
}

// Only children that bear the value's attribute are touched.
template <typename Attribute, typename Value>
void EditValue(const TDF_Label& label, const TCollection_AsciiString& name, const Value& value,
               bool keep, void (*write)(const TDF_Label&, Value))
{
  EditNamed(label, name, [&](const TDF_Label& child) {
    if (!child.IsAttribute(Attribute::GetID()))
      return;
    if (keep)
      write(child, value);
    else
      child.ForgetAllAttributes(true);
  });
}

} // namespace

BaseShapeParaCreator* ShapeBuilder::GetShapeInstance(TDF_Label& label)
{
  const int code = GetShapeType(label);
  if (code == Orvex::kTypeCompound)
    return new CompoundShapeParaCreator();
  const Orvex::ShapeKind* kind = Orvex::KindOfCode(code);
  return kind == nullptr ? nullptr : kind->make();
}

eSHAPE_TYPE ShapeBuilder::GetShapeType(TDF_Label& label)
{
  if (label.IsNull())
    return eSHAPE_NONE;
  return static_cast<eSHAPE_TYPE>(Orvex::ValidTypeOf(label).value_or(eSHAPE_NONE));
}

bool ShapeBuilder::PerformMove(TDF_Label& label, gp_Trsf trsf)
{
  return Move(label, trsf);
}

void ShapeBuilder::PerformRotate(TDF_Label& label, gp_Trsf trsf)
{
  Move(label, trsf);
}

bool ShapeBuilder::PerformScale(TDF_Label& label, gp_Trsf trsf)
{
  return Move(label, trsf);
}

TDF_Label ShapeBuilder::PerformClone(TDF_Label& label, gp_Trsf trsf)
{
  const auto creator = CreatorOf(label);
  return creator == nullptr ? BaseShapeParaCreator().PerformClone(label, trsf)
                            : creator->PerformClone(label, trsf);
}

void ShapeBuilder::UpdateShapeByTDF(TDF_Label label)
{
  if (const auto creator = CreatorOf(label))
    creator->UpdateShape(label);
}

void ShapeBuilder::UpdateAllShape()
{
  for (const TDF_Label& label : ShapeLabelMgr::GetInstance()->GetAllShapeLabes())
    UpdateShapeByTDF(label);
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name,
                                   const std::string& value, bool onShape)
{
  if (label.IsNull())
    return;
  if (!onShape)
    return Orvex::SetName(label, value.c_str());
  EditNamed(label, name,
            [&](const TDF_Label& child) { Orvex::SetName(child.FindChild(1), value.c_str()); });
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name,
                                   const char* value, bool onShape)
{
  UpdateParameter(label, name, std::string(value), onShape);
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name, int value,
                                   bool keep)
{
  EditValue<TDataStd_Integer>(label, name, value, keep, &Orvex::SetInteger);
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name, double value,
                                   bool keep)
{
  EditValue<TDataStd_Real>(label, name, value, keep, &Orvex::SetReal);
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name, gp_Pnt value,
                                   bool keep)
{
  EditValue<TDataXtd_Position>(label, name, value, keep, &SetPoint);
}

void ShapeBuilder::UpdateParameter(TDF_Label& label, TCollection_AsciiString name, bool value,
                                   bool keep)
{
  EditValue<TDataStd_BooleanList>(label, name, value, keep, &Orvex::SetFlag);
}

void ShapeBuilder::RemoveParameter(TDF_Label& label, TCollection_AsciiString name,
                                   const std::string& text, bool onShape)
{
  if (label.IsNull())
    return;
  if (!onShape) {
    if (Orvex::NameOf(label))
      label.ForgetAllAttributes(true);
    return;
  }
  const bool digits = BaseShapeParaCreator().isDigitStr(QString::fromStdString(text));
  EditNamed(label, name, [&](const TDF_Label& child) {
    if (child.NbChildren() == 1)
      TDF_ChildIterator(child).Value().ForgetAllAttributes(true);
    else if (child.NbChildren() == 0)
      Orvex::MakeParameterLabel(child, 1, text.c_str(),
                                digits ? Orvex::ParameterLabelKind::Real
                                       : Orvex::ParameterLabelKind::NameOnly);
  });
}
