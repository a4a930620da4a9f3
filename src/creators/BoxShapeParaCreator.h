// The box: a corner, the direction of its height, and three lengths in model units.
#pragma once

#include "creators/KindShapeParaCreator.h"

#include <gp_Ax2.hxx>
#include <gp_Dir.hxx>

class ORVEX_API BoxShapeParaCreator : public KindShapeParaCreator
{
public:
  // Length along X, width along Y, height along Z of the axes. The X direction of the axes shapes
  // the box that is made here, but is not stored: a rebuild uses the default one.
  // Returns: the new label, null without a current document.
  // Errors: a length of zero or below makes the kernel throw Standard_Failure.
  TDF_Label CreateBox(const gp_Ax2& axes, double dx, double dy, double dz);
  TDF_Label CreateBox(const gp_Pnt& corner, const gp_Dir& normal, double dx, double dy, double dz);

  // Follows references; lengths are absolute values. A parameter that the label lacks leaves the
  // caller's variable.
  void GetParameter(TDF_Label label, gp_Pnt& corner, gp_Dir& normal, double& length, double& width,
                    double& height);

  // A length of zero or below leaves the stored one in place.
  void SetShapeParameter(TDF_Label& label, gp_Pnt& corner, gp_Dir& normal, double& length,
                         double& width, double& height);

  void ValidateParameters() override;
  const Orvex::ShapeKind& Kind() const override;
};
