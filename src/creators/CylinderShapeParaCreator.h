// The cylinder: centre of its bottom, direction of its axis, radius, height, and the angle of the
// sector in degrees.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API CylinderShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: what the kernel refuses passes as Standard_Failure; it does not refuse every bad value.
  TDF_Label CreateCylinder(const gp_Pnt& base, const gp_Dir& axis, double radius, double height,
                           double angle);

  // Radius, height and angle follow references and are absolute values.
  void GetParameter(TDF_Label label, gp_Pnt& base, gp_Dir& axis, double& radius, double& height,
                    double& angle);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& base, gp_Dir& axis, double& radius,
                         double& height, double& angle);

  const Orvex::ShapeKind& Kind() const override;
};
