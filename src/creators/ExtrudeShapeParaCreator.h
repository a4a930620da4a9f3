// The extrude: a shape swept along a vector. The source shape is kept on the label, so that the
// sweep can be rebuilt when the source label is gone.
#pragma once

#include "creators/KindShapeParaCreator.h"

#include <gp_Vec.hxx>

class ORVEX_API ExtrudeShapeParaCreator : public KindShapeParaCreator
{
public:
  // Sweeps along the direction of the vector by the length; the caller's vector is made that long.
  // Returns: the new label; null without a current document or for a null shape.
  // Errors: a vector of zero length throws Standard_ConstructionError.
  TDF_Label CreateExtrude(const TopoDS_Shape& shape, gp_Vec& vector, double& length);

  void GetParameter(TDF_Label label, TopoDS_Shape& shape, gp_Vec& vector, double& length);
  // A length of zero or below shows "Negative Value" to the user and is not stored.
  void SetShapeParameter(TDF_Label& label, TopoDS_Shape& shape, gp_Vec& vector, double& length);

  const Orvex::ShapeKind& Kind() const override;
};
