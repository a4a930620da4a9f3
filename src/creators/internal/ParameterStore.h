// One parameter of a kind on its child label: made, written, read, moved. There is one case for
// each type of value.
#pragma once

#include "creators/BaseShapeParaCreator.h"
#include "creators/ShapeKind.h"

namespace Orvex {

// Makes the child for a field, at the tag after the number of children, with a zero value.
void CreateParameterChild(const TDF_Label& shapeLabel, const ParameterField& field);

// Writes a value under the field's rule of storing.
void StoreParameter(const TDF_Label& parameter, const ParameterField& field,
                    const ParameterValue& value);

// Reads a value under the field's rule of reading; what is missing leaves `fallback`.
ParameterValue ReadParameter(BaseShapeParaCreator& creator, TDF_Label parameter,
                             const ParameterField& field, const ParameterValue& fallback);

// Moves points, directions and vectors; lengths, angles, numbers and shapes stay.
void TransformParameter(ParameterValue& value, const gp_Trsf& trsf);

} // namespace Orvex
