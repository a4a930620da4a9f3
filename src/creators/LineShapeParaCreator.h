// The line: a straight edge between two points.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API LineShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label; null without a current document or for points closer than 1e-6, and no
  // name number is drawn then.
  TDF_Label CreateLine(gp_Pnt& start, gp_Pnt& end);

  void GetParameter(TDF_Label label, gp_Pnt& start, gp_Pnt& end);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& start, gp_Pnt& end);

  const Orvex::ShapeKind& Kind() const override;
};
