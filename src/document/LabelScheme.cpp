#include "document/LabelScheme.h"

#include <TDF_TagSource.hxx>
#include <TDF_Tool.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TDataStd_BooleanList.hxx>
#include <TDataStd_Integer.hxx>
#include <TDataStd_Real.hxx>
#include <TDataXtd_Position.hxx>

namespace Orvex {

namespace {

template <typename Attribute>
Handle(Attribute) Find(const TDF_Label& label)
{
  Handle(Attribute) attribute;
  if (!label.IsNull())
    label.FindAttribute(Attribute::GetID(), attribute);
  return attribute;
}

} // namespace

gp_Pnt DefaultColor()
{
  return gp_Pnt(0.7, 0.2, 0.8);
}

std::string EntryOf(const TDF_Label& label)
{
  if (label.IsNull())
    return {};
  TCollection_AsciiString entry;
  TDF_Tool::Entry(label, entry);
  return entry.ToCString();
}

TDF_Label LabelOfEntry(const Handle(TDocStd_Document) & document, const std::string& entry)
{
  TDF_Label label;
  TDF_Tool::Label(document->GetData(), entry.c_str(), label, false);
  return label;
}

std::optional<TCollection_AsciiString> NameOf(const TDF_Label& label)
{
  const auto name = Find<TDataStd_AsciiString>(label);
  if (name.IsNull())
    return std::nullopt;
  return name->Get();
}

bool HasName(const TDF_Label& label, const TCollection_AsciiString& name)
{
  const auto found = Find<TDataStd_AsciiString>(label);
  return !found.IsNull() && found->Get().IsEqual(name);
}

void SetName(const TDF_Label& label, const TCollection_AsciiString& name)
{
  TDataStd_AsciiString::Set(label, name);
}

void EnsureName(const TDF_Label& label, const TCollection_AsciiString& nameIfNone)
{
  if (!NameOf(label))
    SetName(label, nameIfNone);
}

std::optional<double> RealOf(const TDF_Label& label)
{
  const auto real = Find<TDataStd_Real>(label);
  if (real.IsNull())
    return std::nullopt;
  return real->Get();
}

std::optional<int> IntegerOf(const TDF_Label& label)
{
  const auto integer = Find<TDataStd_Integer>(label);
  if (integer.IsNull())
    return std::nullopt;
  return integer->Get();
}

std::optional<gp_Pnt> PointOf(const TDF_Label& label)
{
  const auto position = Find<TDataXtd_Position>(label);
  if (position.IsNull())
    return std::nullopt;
  return position->GetPosition();
}

std::optional<bool> FlagOf(const TDF_Label& label)
{
  const auto list = Find<TDataStd_BooleanList>(label);
  if (list.IsNull() || list->IsEmpty())
    return std::nullopt;
  return list->First();
}

void SetReal(const TDF_Label& label, double value)
{
  TDataStd_Real::Set(label, value);
}

void SetInteger(const TDF_Label& label, int value)
{
  TDataStd_Integer::Set(label, value);
}

void SetPoint(const TDF_Label& label, const gp_Pnt& value)
{
  TDataXtd_Position::Set(label)->SetPosition(value);
}

void SetFlag(const TDF_Label& label, bool value)
{
  const auto list = TDataStd_BooleanList::Set(label);
  list->Clear();
  list->Append(value);
}

std::optional<TCollection_AsciiString> ReferenceOf(const TDF_Label& parameter)
{
  if (parameter.IsNull() || parameter.NbChildren() != 1)
    return std::nullopt;
  return NameOf(TDF_ChildIterator(parameter).Value());
}

std::optional<int> ValidTypeOf(const TDF_Label& shapeLabel)
{
  const TDF_Label type = shapeLabel.FindChild(kTypeTag, false);
  if (type.IsNull() || !HasName(type, kTypeName))
    return std::nullopt;
  return IntegerOf(type);
}

void SetType(const TDF_Label& shapeLabel, int code)
{
  const TDF_Label type = shapeLabel.FindChild(kTypeTag);
  SetName(type, kTypeName);
  SetInteger(type, code);
  ReserveAttributeTags(shapeLabel);
}

void ReserveAttributeTags(const TDF_Label& shapeLabel)
{
  const auto source = TDF_TagSource::Set(shapeLabel);
  if (source->Get() < kFeatureMetaTag)
    source->Set(kFeatureMetaTag);
}

TDF_Label ChildByName(const TDF_Label& label, const TCollection_AsciiString& name)
{
  TDF_Label found;
  VisitChildren(label, [&](const TDF_Label& child) {
    if (!HasName(child, name))
      return false;
    found = child;
    return true;
  });
  return found;
}

} // namespace Orvex
