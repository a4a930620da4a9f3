// The revolve: a shape swept round an axis by an angle in radians. The source shape is kept on the
// label, so that the sweep can be rebuilt when the source label is gone.
//
// Caveat: source and result share their edges, and the kernel adds the parameter curves of each new
// surface to them: every rebuild makes the source's edges a little larger.
#pragma once

#include "creators/KindShapeParaCreator.h"

class ORVEX_API RevolveShapeParaCreator : public KindShapeParaCreator
{
public:
  // Units: the angle in radians, unlike the angles of the solids.
  // Returns: the new label; null without a current document, for a null shape, and for an angle
  // that is not finite.
  TDF_Label CreateRevolve(const TopoDS_Shape& shape, const gp_Pnt& point, const gp_Dir& direction,
                          double angle);

  void GetParameter(TDF_Label label, TopoDS_Shape& shape, gp_Pnt& point, gp_Dir& direction,
                    double& angle);
  // An angle of zero or below shows "Negative Value" to the user and is not stored.
  void SetShapeParameter(TDF_Label& label, TopoDS_Shape& shape, gp_Pnt& point, gp_Dir& direction,
                         double& angle);

  const Orvex::ShapeKind& Kind() const override;
};
