// The rectangle: a closed wire from a corner along X and Y, parallel to the XY plane.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API RectangleShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: a side of zero makes the kernel throw Standard_Failure; a negative one goes the other
  // way.
  TDF_Label CreateRectangle(const gp_Pnt& corner, double length, double width);

  void GetParameter(TDF_Label label, gp_Pnt& corner, double& length, double& width);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& corner, double& length, double& width);

  const Orvex::ShapeKind& Kind() const override;
};
