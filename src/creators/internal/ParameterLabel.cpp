#include "creators/internal/ParameterLabel.h"

#include "document/LabelScheme.h"

namespace Orvex {

TDF_Label MakeParameterLabel(const TDF_Label& parent, int tag, const TCollection_AsciiString& name,
                             ParameterLabelKind kind)
{
  const TDF_Label child = parent.FindChild(tag);
  SetName(child, name);
  if (kind == ParameterLabelKind::Real && !RealOf(child))
    SetReal(child, 0.0);
  else if (kind == ParameterLabelKind::Integer && !IntegerOf(child))
    SetInteger(child, 0);
  else if (kind == ParameterLabelKind::Point && !PointOf(child))
    SetPoint(child, gp_Pnt());
  return child;
}

} // namespace Orvex
