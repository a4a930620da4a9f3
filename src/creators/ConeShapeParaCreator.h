// The cone or frustum: centre of its bottom, direction of its axis, two radii, height, and the
// angle of the sector in degrees.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API ConeShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: what the kernel refuses, as equal radii, passes as Standard_Failure.
  TDF_Label CreateCone(const gp_Pnt& base, gp_Dir& axis, double& bottomRadius, double& topRadius,
                       double& height, double& angle);

  void GetParameter(TDF_Label label, gp_Pnt& base, gp_Dir& axis, double& bottomRadius,
                    double& topRadius, double& height, double& angle);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& base, gp_Dir& axis, double& bottomRadius,
                         double& topRadius, double& height, double& angle);

  const Orvex::ShapeKind& Kind() const override;
};
