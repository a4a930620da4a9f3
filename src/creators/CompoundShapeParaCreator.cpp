#include "creators/CompoundShapeParaCreator.h"

void CompoundShapeParaCreator::CreateShapeParameter(TDF_Label& label)
{
  AddGeometryTypeAsCompound(label);
}

void CompoundShapeParaCreator::AddElementProperty(TDF_Label& label)
{
  AddSolidElementProperty(label);
}
