// Shapes by label alone: finds the creator that belongs to a label and routes moves, clones,
// rebuilds and parameter edits to it, so that a front end needs to know no kind. Labels without a
// known kind are handled as plain geometry.
#pragma once

#include "creators/BaseShapeParaCreator.h"

#include <TCollection_AsciiString.hxx>

#include <string>

// The integer of a label's type child (Orvex::PrimitiveType), 0 if there is none.
enum eSHAPE_TYPE : int { eSHAPE_NONE = 0 };

class ORVEX_API ShapeBuilder
{
public:
  // The creator of the label's kind; null for a label without one. The caller deletes it, which is
  // well defined through this class; see BaseShapeParaCreator.
  static BaseShapeParaCreator* GetShapeInstance(TDF_Label& label);
  static eSHAPE_TYPE GetShapeType(TDF_Label& label);

  // With a creator: its PerformTransform. Otherwise the stored shape is moved, and the label is a
  // compound by type from then on; false if there is no shape to move, or if the label only refers
  // to another one, as the component of an assembly does.
  static bool PerformMove(TDF_Label& label, gp_Trsf trsf);
  static void PerformRotate(TDF_Label& label, gp_Trsf trsf);
  static bool PerformScale(TDF_Label& label, gp_Trsf trsf);

  // A moved copy as a new label; null if there is nothing to copy.
  static TDF_Label PerformClone(TDF_Label& label, gp_Trsf trsf);

  // Rebuild one label, or every label that has a creator, in document order.
  static void UpdateShapeByTDF(TDF_Label label);
  static void UpdateAllShape();

  // With a text: `onShape` true binds the parameter of that name to a reference (a number or the
  // name of a global parameter); `onShape` false renames the label given, which is then the
  // parameter's own.
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name,
                              const std::string& value, bool onShape);
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name, const char* value,
                              bool onShape);

  // With a value: `keep` true sets the parameter of that name, `keep` false wipes its label. Only a
  // parameter that bears a value of that type is touched. Nothing is rebuilt.
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name, int value, bool keep);
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name, double value,
                              bool keep);
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name, gp_Pnt value,
                              bool keep);
  static void UpdateParameter(TDF_Label& label, TCollection_AsciiString name, bool value,
                              bool keep);

  // `onShape` false wipes the label given. `onShape` true takes the reference from the parameter of
  // that name, which falls back on its value; a parameter without one gets the text as reference.
  static void RemoveParameter(TDF_Label& label, TCollection_AsciiString name,
                              const std::string& text, bool onShape);
};
