// The sphere: centre, radius, and three angles in degrees: the latitudes between which it is cut,
// and the longitude of its sector. Its axis is the Z direction through the centre.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API SphereShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: what the kernel refuses passes as Standard_Failure; it does not refuse every bad value.
  TDF_Label CreateSphere(const gp_Pnt& center, double radius, double angle1, double angle2,
                         double angle3);

  void GetParameter(TDF_Label label, gp_Pnt& center, double& radius, double& angle1, double& angle2,
                    double& angle3);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& radius, double& angle1,
                         double& angle2, double& angle3);

  const Orvex::ShapeKind& Kind() const override;
};
