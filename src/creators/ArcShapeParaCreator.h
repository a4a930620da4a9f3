// The arc: part of the circle through three points. The kernel's constructor takes them in the
// order of the parameters, so that the arc runs from "Start Point" through "End Point" to "Third
// Point".
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API ArcShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label, null without a current document.
  // Errors: points on one line make the kernel throw Standard_Failure.
  TDF_Label CreateArc(const gp_Pnt& start, const gp_Pnt& end, const gp_Pnt& third);

  void GetParameter(TDF_Label label, gp_Pnt& start, gp_Pnt& end, gp_Pnt& third);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& start, gp_Pnt& end, gp_Pnt& third);

  const Orvex::ShapeKind& Kind() const override;
};
