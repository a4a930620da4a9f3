// The circle: an edge round a centre, parallel to the XY plane.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API CircleShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: a negative radius makes the kernel throw Standard_Failure.
  TDF_Label CreateCircle(const gp_Pnt& center, double radius);

  void GetParameter(TDF_Label label, gp_Pnt& center, double& radius);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& radius);

  const Orvex::ShapeKind& Kind() const override;
};
