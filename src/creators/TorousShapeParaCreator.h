// The torus: centre, major and minor radius, and three angles in degrees: two that cut its tube,
// and the angle of its sector. Its axis is the Z direction through the centre.
//
// A torus leaves creation and rebuild already meshed: a mesh is the proof that the shape is sound.
#pragma once

#include "creators/KindShapeParaCreator.h"

#include <string>

class ORVEX_API TorousShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label; null without a current document, for values that ValidateParameters
  // refuses, for a major radius above 1e6 or a coordinate above 1e12 minor radii, and if no sound
  // shape comes out. Nothing is added and no name number drawn then.
  TDF_Label CreateTorous(const gp_Pnt& center, double& majorRadius, double& minorRadius,
                         double& angle1, double& angle2, double& angle3);

  using BaseShapeParaCreator::ValidateParameters;

  // Whether the values give a torus; if not, why, in `error` unless that is null.
  static bool ValidateParameters(double majorRadius, double minorRadius, double angle1,
                                 double angle2, double angle3, std::string* error);

  void GetParameter(TDF_Label label, gp_Pnt& center, double& majorRadius, double& minorRadius,
                    double& angle1, double& angle2, double& angle3);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& center, double& majorRadius, double& minorRadius,
                         double& angle1, double& angle2, double& angle3);

  const Orvex::ShapeKind& Kind() const override;
};
