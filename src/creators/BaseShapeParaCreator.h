// Creators: small stateless objects, one class per kind of parametric shape.
//
// A creator builds the kernel's shape from arguments, adds a label for it to the current document
// and writes the shape's parameters on child labels. From then on the label alone is the truth:
// UpdateShape reads the parameters back and replaces the shape on the label.
//
//   BoxShapeParaCreator box;
//   TDF_Label label = box.CreateBox(gp::Origin(), gp::DZ(), 10, 20, 30);
//   ...change a parameter...
//   box.UpdateShape(label);
//
// Caveats:
// - A creation opens no transaction; bracket it with ShapeDocMgr::StartTransaction and
//   EndTransaction to make it one undo step.
// - A rebuilt shape may differ from the created one in the last bits of its coordinates.
// - Failures of the kernel (Standard_Failure) pass to the caller; nothing has been added then.
// - For the thread of the front end only.
#pragma once

#include "foundation/Export.h"

#include <QString>
#include <TDF_Label.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>

#include <cstddef>
#include <new>

class ORVEX_API IBaseShapeParaCreator
{
public:
  virtual void CreateShapeParameter(TDF_Label& label) = 0;
  virtual void UpdateShape(TDF_Label& label) = 0;
};

class ORVEX_API BaseShapeParaCreator : public IBaseShapeParaCreator
{
public:
  BaseShapeParaCreator() = default;
  BaseShapeParaCreator(const BaseShapeParaCreator& other);
  BaseShapeParaCreator& operator=(const BaseShapeParaCreator& other);

  // Deleting through this class is well defined although its destructor is not virtual: with a
  // destroying operator delete (C++20) the delete expression runs no destructor of its own, and no
  // creator holds anything that one would have to release. The plain allocator is behind it.
  // Caveat: GCC 12 does not know this and warns of a written `delete base` (-Wdelete-non-virtual-
  // dtor); a std::unique_ptr says the same without the warning.
  static void* operator new(std::size_t size);
  static void operator delete(void* memory); // of a construction that throws
  static void operator delete(BaseShapeParaCreator* creator, std::destroying_delete_t);

  // Writes the type child and the kind's parameters with zero values.
  void CreateShapeParameter(TDF_Label& label) override;

  // Reads the parameters, brings them into the kind's range, builds, and puts the shape on the
  // label. A value that the kind refuses leaves the label as it is.
  void UpdateShape(TDF_Label& label) override;

  virtual void ValidateParameters();

  // Writes children 2 to 8 with what a new shape has.
  virtual void AddCommonAttribute(TDF_Label& label);

  // Moves the shape. Kinds that move their parameters leave the stored shape to UpdateShape; a
  // scaling does not change their lengths.
  virtual void PerformTransform(TDF_Label& label, gp_Trsf trsf);

  // A moved copy as a new label; null if there is nothing to copy. Here: a compound by type,
  // without parameters. Kinds that move their parameters make a fresh shape of the kind.
  // Caveat: the kernel turns a compound into an assembly, whose components share the first tags
  // with the attributes, and a shape with a location into a reference to a label of its own.
  virtual TDF_Label PerformClone(TDF_Label& label, gp_Trsf trsf);

  // Moves the stored shape and leaves the parameters, whatever the kind.
  virtual void PerformObjectTransform(TDF_Label& label, gp_Trsf trsf);

  // A real parameter: its reference if it has one, as it is; else the absolute value of its real;
  // else 0.
  virtual double GetDoubleParaValue(TDF_Label& parameter);

  // Writes an element word on child 9: "Shell", or "Solid" for solids. On a label whose child 9 is
  // a parameter, as on every created shape, nothing is written.
  virtual void AddElementProperty(TDF_Label& label);

  // Makes the label a compound by type.
  void AddGeometryTypeAsCompound(TDF_Label& label);

  // Each reference is written only if its attribute exists; the int never is.
  // Errors: std::exception "GetCommonAttribute: input label is null".
  void GetCommonAttribute(TDF_Label& label, bool& visible, double& transparent, gp_Pnt& color,
                          int& unused, bool& enabled);

  // A point parameter: the global vector parameter that its reference names; else its position;
  // else the origin. A reference to anything but a vector parameter is passed over.
  gp_Pnt GetPointParaValue(TDF_Label& parameter);

  // Only digits and points; so is the empty text, and no text with a sign.
  bool isDigitStr(QString text);

protected:
  // What AddElementProperty of solids does.
  static void AddSolidElementProperty(TDF_Label& label);

private:
  void AddMateiralProperty(TDF_Label& label);
  void AddMeshProperty(TDF_Label& label);
};
