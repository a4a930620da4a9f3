// The regular polygon: a closed wire round a centre, in the plane parallel to XY through its first
// vertex.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API OrthPolygonShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label; null without a current document or for a number of sides of zero or
  // below. Its name is "Polygon", without a number.
  // Errors: vertices that coincide make the kernel throw Standard_Failure.
  TDF_Label CreateOrthPolygon(const gp_Pnt& center, const gp_Pnt& firstVertex, int sides);

  void GetParameter(TDF_Label label, gp_Pnt& center, gp_Pnt& firstVertex, int& sides);
  void SetShapeParameter(TDF_Label& label, gp_Pnt& center, gp_Pnt& firstVertex, int& sides);

  const Orvex::ShapeKind& Kind() const override;
};
