// The road that all parametric kinds share: from values to a shape on a label with its parameters,
// and from the label back to the shape. It works on the kind's description (creators/ShapeKind.h).
//
// To add a kind: a class derived from this one, whose source states the description; its code among
// those of document/LabelScheme.h; a row in the table of creators/ShapeKind.cpp.
#pragma once

#include "creators/BaseShapeParaCreator.h"
#include "creators/ShapeKind.h"

#include <cstddef>

class ORVEX_API KindShapeParaCreator : public BaseShapeParaCreator
{
public:
  void CreateShapeParameter(TDF_Label& label) override;
  void UpdateShape(TDF_Label& label) override;
  void PerformTransform(TDF_Label& label, gp_Trsf trsf) override;
  TDF_Label PerformClone(TDF_Label& label, gp_Trsf trsf) override;
  void AddElementProperty(TDF_Label& label) override;

  // Builds the shape, adds it to the current document and gives it a name, the common attributes,
  // its parameters and its feature record, in this order. No value is brought into range first.
  // Returns: the new label; null without a document or if the kind refuses the values.
  // Errors: what the kernel throws while building; nothing has been added then.
  TDF_Label CreateWith(const Orvex::ParameterSet& values);

  // The values on a label, in the order of the kind's fields. A parameter that the label does not
  // hold keeps what `defaults` says; a direction of zero length throws Standard_ConstructionError.
  Orvex::ParameterSet ReadParameters(const TDF_Label& label, Orvex::ParameterSet defaults);
  Orvex::ParameterSet ReadParameters(const TDF_Label& label);

  // What the label holds of the kind's parameters, in the order of their tags.
  std::vector<Orvex::HeldParameter> HeldParameters(const TDF_Label& label);

  // Writes the values to the parameters that the label holds, under the kind's rules of storing.
  void StoreParameters(const TDF_Label& label, const Orvex::ParameterSet& values);

  virtual const Orvex::ShapeKind& Kind() const = 0;

protected:
  // The road from a shape that is built already, without and with the feature record.
  TDF_Label AddUnregistered(const TopoDS_Shape& shape, const Orvex::ParameterSet& values);
  TDF_Label AddToDocument(const TopoDS_Shape& shape, const Orvex::ParameterSet& values);

  // The typed faces of ReadParameters and StoreParameters, values in the order of the fields.
  template <typename... Values>
  void ReadInto(const TDF_Label& label, Values&... values)
  {
    const Orvex::ParameterSet read =
      ReadParameters(label, Orvex::ParameterSet{Orvex::ParameterValue(values)...});
    std::size_t index = 0;
    ((values = std::get<Values>(read[index++])), ...);
  }

  template <typename... Values>
  void StoreFrom(const TDF_Label& label, const Values&... values)
  {
    StoreParameters(label, Orvex::ParameterSet{Orvex::ParameterValue(values)...});
  }

private:
  void Register(const TDF_Label& label);
};

namespace Orvex {

// For the two members of a description that depend on the creator's class alone.
template <typename Creator>
KindShapeParaCreator* MakeCreator()
{
  return new Creator();
}

template <typename Creator>
void UpdateWith(TDF_Label& label)
{
  Creator creator;
  creator.UpdateShape(label);
}

} // namespace Orvex
