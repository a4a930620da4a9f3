// The Bezier curve: an edge over its control points.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API BezierShapeParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label; null without a current document or for fewer than two points.
  // Errors: more points than the kernel's highest degree allows make it throw Standard_Failure.
  TDF_Label CreateBezier(std::vector<gp_Pnt>& points);

  void GetParameter(TDF_Label label, std::vector<gp_Pnt>& points);
  void SetShapeParameter(TDF_Label& label, std::vector<gp_Pnt>& points);

  const Orvex::ShapeKind& Kind() const override;
};
