// The compound: any shape that has no parameters of its own. Moves and clones work on the stored
// shape; a rebuild has nothing to do.
#pragma once

#include "creators/BaseShapeParaCreator.h"

class ORVEX_API CompoundShapeParaCreator : public BaseShapeParaCreator
{
public:
  // Makes the label a compound by type.
  void CreateShapeParameter(TDF_Label& label) override;
  void AddElementProperty(TDF_Label& label) override;
};
