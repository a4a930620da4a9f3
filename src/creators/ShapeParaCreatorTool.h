// Helpers for parameters on labels, and the running number of shape names.
#pragma once

#include "foundation/Export.h"

#include <QString>
#include <TCollection_AsciiString.hxx>
#include <TDF_Label.hxx>
#include <gp_Pnt.hxx>

// What a property page shows for a parameter.
enum ePARAMETER_TYPE {
  ePARAMETER_NONE = 0,
  ePARAMETER_INTEGER = 1,
  ePARAMETER_REAL = 2,
  ePARAMETER_POINT = 3,
  ePARAMETER_FLAG = 4,
  ePARAMETER_TEXT = 5
};

class ORVEX_API ShapeParaCreatorTool
{
public:
  // Sets the name and the value on the label, creating what is missing.
  static void AddParameterByName(TDF_Label& label, TCollection_AsciiString name, int value);
  static void AddParameterByName(TDF_Label& label, TCollection_AsciiString name, double value);
  static void AddParameterByName(TDF_Label& label, TCollection_AsciiString name, gp_Pnt value);
  static void AddParameterByName(TDF_Label& label, TCollection_AsciiString name, bool value);

  // The type of the parameter with this name, compared byte for byte.
  static ePARAMETER_TYPE GetParaType(QString name);
};

// The running number in the names of new shapes. One for the process: numbers are unique across
// kinds and across the documents that a host has open, start at 0 with the process and are not
// stored, so that a name in a reopened document may come again.
class ORVEX_API TarvelNameIndexMgr
{
public:
  // The current number; the next call gives the next one.
  static int GetGlobeIndex();

private:
  static int m_gIndex;
};
