// The extrude of a face along a direction. Unlike the other extrude it moves with its parameters,
// and it is never registered as a feature.
#pragma once

#include "creators/KindShapeParaCreator.h"

#include <TopoDS_Face.hxx>

class ORVEX_API ExtrudeLoopParaCreator : public KindShapeParaCreator
{
public:
  // Returns: the new label; null without a current document, and for a null face, of which the user
  // is told "extrude face is NULL".
  TDF_Label CreateExtrudeByLoop(const TopoDS_Face& face, const gp_Dir& direction, double length);

  void GetParameter(TDF_Label label, TopoDS_Face& face, gp_Dir& direction, double& length);
  // A length of zero or below shows "Negative Value" to the user and is not stored.
  void SetShapeParameter(TDF_Label& label, TopoDS_Face& face, gp_Dir& direction, double& length);

  void PerformTransform(TDF_Label& label, gp_Trsf trsf) override;
  // Errors: Standard_TypeMismatch if the stored shape is no face.
  TDF_Label PerformClone(TDF_Label& label, gp_Trsf trsf) override;

  const Orvex::ShapeKind& Kind() const override;

private:
  Orvex::ParameterSet Moved(const TDF_Label& label, const gp_Trsf& trsf);
};
