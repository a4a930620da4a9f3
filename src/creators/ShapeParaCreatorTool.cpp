#include "creators/ShapeParaCreatorTool.h"

#include "document/LabelScheme.h"

#include <array>
#include <utility>

namespace {

using NamedType = std::pair<const char*, ePARAMETER_TYPE>;

constexpr std::array kParameterTypes = {
  NamedType{"Number Polygon", ePARAMETER_INTEGER},
  NamedType{"Element", ePARAMETER_INTEGER},
  NamedType{"Transparent", ePARAMETER_REAL},
  NamedType{"Angle", ePARAMETER_REAL},
  NamedType{"Angle1", ePARAMETER_REAL},
  NamedType{"Angle2", ePARAMETER_REAL},
  NamedType{"Angle3", ePARAMETER_REAL},
  NamedType{"Length", ePARAMETER_REAL},
  NamedType{"Width", ePARAMETER_REAL},
  NamedType{"Height", ePARAMETER_REAL},
  NamedType{"Bottom Radius", ePARAMETER_REAL},
  NamedType{"Radius", ePARAMETER_REAL},
  NamedType{"Top Radius", ePARAMETER_REAL},
  NamedType{"Mesh Size", ePARAMETER_REAL},
  NamedType{"Start Point", ePARAMETER_POINT},
  NamedType{"End Point", ePARAMETER_POINT},
  NamedType{"Base Point", ePARAMETER_POINT},
  NamedType{"Normal", ePARAMETER_POINT},
  NamedType{"Color", ePARAMETER_POINT},
  NamedType{"Visibility", ePARAMETER_FLAG},
  NamedType{"Closed", ePARAMETER_FLAG},
  NamedType{"Name", ePARAMETER_TEXT},
  NamedType{"Material", ePARAMETER_TEXT},
};

} // namespace

void ShapeParaCreatorTool::AddParameterByName(TDF_Label& label, TCollection_AsciiString name,
                                              int value)
{
  Orvex::SetName(label, name);
  Orvex::SetInteger(label, value);
}

void ShapeParaCreatorTool::AddParameterByName(TDF_Label& label, TCollection_AsciiString name,
                                              double value)
{
  Orvex::SetName(label, name);
  Orvex::SetReal(label, value);
}

void ShapeParaCreatorTool::AddParameterByName(TDF_Label& label, TCollection_AsciiString name,
                                              gp_Pnt value)
{
  Orvex::SetName(label, name);
  Orvex::SetPoint(label, value);
}

void ShapeParaCreatorTool::AddParameterByName(TDF_Label& label, TCollection_AsciiString name,
                                              bool value)
{
  Orvex::SetName(label, name);
  Orvex::SetFlag(label, value);
}

ePARAMETER_TYPE ShapeParaCreatorTool::GetParaType(QString name)
{
  for (const auto& [known, type] : kParameterTypes)
    if (name == QLatin1String(known))
      return type;
  return ePARAMETER_NONE;
}

int TarvelNameIndexMgr::m_gIndex = 0;

int TarvelNameIndexMgr::GetGlobeIndex()
{
  return m_gIndex++;
}
