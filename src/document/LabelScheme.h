// The label scheme: what stands where on the label of a shape, and the one way to read and write
// it. Registry, creators, feature history and parameter binding all go through here.
//
// A shape label is a top-level label of the document's XCAFDoc_ShapeTool:
//
// - the label: TDataStd_AsciiString, its display name; the shape itself (the tool's attributes)
// - child 1: "Type" and the primitive type code
// - children 2 to 8: the common attributes
// - children from 9: the parameters of its kind, one child each
// - child 9001: feature meta
// - children from 9002: sub-shapes that the kernel's AddSubShape is asked to name
//
// Beware: the kernel takes the tags of sub-shapes and of assembly components from a TDF_TagSource
// on the same label, which starts at 1. On a label that was not prepared, the first sub-shape is
// put on the type child, and naming it with a TDataStd_AsciiString renames that attribute.
// ReserveAttributeTags moves the source above everything of ours; every label that gets a type
// child passes through it. Documents that already hold such double use read right: attributes of
// the two uses have different GUIDs and stay side by side.
#pragma once

#include "foundation/Export.h"

#include <TCollection_AsciiString.hxx>
#include <TDF_ChildIterator.hxx>
#include <TDF_Label.hxx>
#include <TDocStd_Document.hxx>
#include <gp_Pnt.hxx>

#include <optional>
#include <string>

namespace Orvex {

// Child tags of a shape label.
inline constexpr int kTypeTag = 1;
inline constexpr int kVisibilityTag = 2;
inline constexpr int kTransparentTag = 3;
inline constexpr int kColorTag = 4;
inline constexpr int kMaterialTag = 5;
inline constexpr int kEnabledTag = 6;
inline constexpr int kMeshSizeTag = 7;
inline constexpr int kDisplayModeTag = 8;
inline constexpr int kFirstParameterTag = 9;
inline constexpr int kFeatureMetaTag = 9001;

// Names of the children with these tags.
inline constexpr const char* kTypeName = "Type";
inline constexpr const char* kVisibilityName = "Visibility";
inline constexpr const char* kTransparentName = "Transparent";
inline constexpr const char* kColorName = "Color";
inline constexpr const char* kMaterialName = "Material";
inline constexpr const char* kEnabledName = "Enabled";
inline constexpr const char* kMeshSizeName = "Mesh Size";
inline constexpr const char* kDisplayModeName = "Display Mode";

// What a new shape has.
inline constexpr double kOpaque = 1.0;
inline constexpr const char* kNoMaterial = "Not Assigned";
inline constexpr const char* kSurfaceMode = "surface";
inline constexpr const char* kWireframeMode = "wireframe";
ORVEX_API gp_Pnt DefaultColor();

// Primitive type codes, the integer of the type child.
enum PrimitiveType : int {
  kTypeLine = 2,
  kTypeRectangle = 3,
  kTypeOrthPolygon = 4,
  kTypeArc = 5,
  kTypeCircle = 6,
  kTypeEllipse = 7,
  kTypeBSpline = 8,
  kTypeBezier = 9,
  kTypeBox = 10,
  kTypeCylinder = 11,
  kTypeSphere = 12,
  kTypeCone = 13,
  kTypeTorus = 14,
  kTypeCompound = 17, // and any shape without parameters of its own
  kTypeRevolve = 18,
  kTypeExtrude = 22,
  kTypeExtrudeLoop = 23
};

// Where a label stands in its document, as "0:1:1:3"; empty for a null label. The text is the same
// in every session.
ORVEX_API std::string EntryOf(const TDF_Label& label);

// The label of such a text; null for one that the document does not have and for any other text.
ORVEX_API TDF_Label LabelOfEntry(const opencascade::handle<TDocStd_Document>& document,
                                 const std::string& entry);

// The name of a label: its TDataStd_AsciiString. The setter creates the attribute if missing.
ORVEX_API std::optional<TCollection_AsciiString> NameOf(const TDF_Label& label);
ORVEX_API bool HasName(const TDF_Label& label, const TCollection_AsciiString& name);
ORVEX_API void SetName(const TDF_Label& label, const TCollection_AsciiString& name);
ORVEX_API void EnsureName(const TDF_Label& label, const TCollection_AsciiString& nameIfNone);

// The value attributes. A getter gives nothing if the attribute is missing; for a flag also if its
// list is empty. A setter creates the attribute if missing.
ORVEX_API std::optional<double> RealOf(const TDF_Label& label);
ORVEX_API std::optional<int> IntegerOf(const TDF_Label& label);
ORVEX_API std::optional<gp_Pnt> PointOf(const TDF_Label& label);
ORVEX_API std::optional<bool> FlagOf(const TDF_Label& label);
ORVEX_API void SetReal(const TDF_Label& label, double value);
ORVEX_API void SetInteger(const TDF_Label& label, int value);
ORVEX_API void SetPoint(const TDF_Label& label, const gp_Pnt& value);
ORVEX_API void SetFlag(const TDF_Label& label, bool value);

// A parameter bound to something else has exactly one child, whose name is the text of the
// reference: a number or the name of a global parameter.
ORVEX_API std::optional<TCollection_AsciiString> ReferenceOf(const TDF_Label& parameter);

// The code on a valid type child: child 1 with the name "Type" and an integer.
ORVEX_API std::optional<int> ValidTypeOf(const TDF_Label& shapeLabel);

// Writes the type child, creating what is missing, and reserves the attribute tags.
ORVEX_API void SetType(const TDF_Label& shapeLabel, int code);

// Makes the kernel take the tags of further children of this label from above the feature meta.
ORVEX_API void ReserveAttributeTags(const TDF_Label& shapeLabel);

// Calls visit(child) for each child that exists, with the tags from 1 to the number of children,
// in order, until it returns true; returns whether one did. The bound keeps parameters apart from
// what lies far above them; the walk never makes a child, so that a label stays as it is however
// often it is read. Cost: linear in the children.
template <typename Visit>
bool VisitChildren(const TDF_Label& label, Visit&& visit)
{
  const int count = label.NbChildren();
  for (TDF_ChildIterator child(label); child.More() && child.Value().Tag() <= count; child.Next())
    if (visit(child.Value()))
      return true;
  return false;
}

// The first child within that bound with the given name; null if there is none.
ORVEX_API TDF_Label ChildByName(const TDF_Label& label, const TCollection_AsciiString& name);

} // namespace Orvex
