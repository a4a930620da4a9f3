// The B-spline: an edge that runs through its points. The label keeps the points as given.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API BSplineShapeParaCreator : public KindShapeParaCreator
{
public:
  // Interpolates the points, those left out that lie within 1e-7 of the last one that was kept.
  // Returns: the new label; null without a current document, for fewer than two points (also after
  // leaving out), and if the kernel fails, whose failures are caught here.
  TDF_Label CreateBSpline(std::vector<gp_Pnt>& points);

  // Interpolates all points, closed smoothly if `periodic`, and takes out the inner knots that the
  // curve can do without within 0.001. With fewer than four points, with a level below 2 and on any
  // failure this is CreateBSpline. Never registered as a feature: a later UpdateShape rebuilds the
  // label as an ordinary interpolation.
  TDF_Label CreateBSplineEx(std::vector<gp_Pnt>& points, int reductionLevel, bool periodic);

  void GetParameter(TDF_Label label, std::vector<gp_Pnt>& points);
  void SetShapeParameter(TDF_Label& label, std::vector<gp_Pnt>& points);

  const Orvex::ShapeKind& Kind() const override;
};
