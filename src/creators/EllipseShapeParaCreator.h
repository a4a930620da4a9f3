// The ellipse: an edge round a centre, parallel to the XY plane, its major axis along X.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API EllipseShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: a negative radius, or a minor radius above the major one, makes the kernel throw
  // Standard_Failure.
  TDF_Label CreateEllipse(const gp_Pnt& center, double majorRadius, double minorRadius);

  void GetParameter(TDF_Label label, gp_Pnt& center, double& majorRadius, double& minorRadius);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& majorRadius,
                         double& minorRadius);

  const Orvex::ShapeKind& Kind() const override;
};
