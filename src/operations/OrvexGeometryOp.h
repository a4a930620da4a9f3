// Operations on whole shapes: booleans, sewing and the chop.
//
// The forms that give a label work in the current document. Each is one undo step, or part of the
// one that is open: it computes first, then puts the result on a new label of its own, a compound
// by type with the name "compound" and a running number, and removes the operands or leaves them.
// What fails leaves the document as it was and gives a null label; so does a missing document.
// While the parametric manager is on, operands always stay, since the result is rebuilt from them.
//
// The forms that give a shape touch no document.
//
// Guarantees: the operands are bit for bit what they were, whatever the outcome.
//
// Caveats:
// - The kernel finds the label of a shape wherever it stands: a moved copy of a shape with a label
//   stands for that label, and the rebuilt result is made of the unmoved one.
// - A boolean copies its operands' topology first, whatever part of them it concerns.
// - For the thread of the front end only.
#pragma once

#include "foundation/Export.h"
#include "operations/BooleanOption.h"
#include "operations/BooleanSettings.h"
#include "operations/ChopResult.h"

#include <TDF_Label.hxx>
#include <TopoDS_Shape.hxx>

#include <vector>

class ORVEX_API OrvexGeometryOp
{
public:
  // The union of all shapes, from the first on. Two that the kernel cannot fuse, such as a solid
  // and a face, become a compound of the two; a null shape is passed over, but two at the start
  // give a null label. A single shape gets a label as it is. Without keepOriginals the shapes are
  // removed from the document. The result is registered as a "BooleanFuse" of the shapes that have
  // a label afterwards, if there are two.
  static TDF_Label PerformUnite(std::vector<TopoDS_Shape>& shapes, bool keepOriginals);

  // The union of two shapes.
  // Returns: null if the kernel cannot do it; nothing is thrown.
  static TopoDS_Shape PerformUnite(TopoDS_Shape& first, TopoDS_Shape& second);

  // The first shape without the second. While the parametric manager is on, the result is
  // registered as a "BooleanCut" of the two labels; while it is off, `option` tells which operands
  // are removed. Errors: Standard_Failure passes; nothing has been changed then.
  static TDF_Label PerformSubtract(TopoDS_Shape& first, TopoDS_Shape& second, eBOOL_Option option);

  // The same without a document; the bool has no meaning.
  // Returns: null if the kernel cannot do it; nothing is thrown.
  static TopoDS_Shape PerformSubtract(TopoDS_Shape& first, TopoDS_Shape& second, bool unused);

  // What two shapes have in common; an empty compound if that is nothing.
  // Returns: null if the kernel cannot do it.
  // Errors: Standard_Failure passes.
  static TopoDS_Shape PerformIneersect(TopoDS_Shape& first, TopoDS_Shape& second);

  // Sews copies of two shapes along edges that lie within 1e-6. The shapes stay in the document,
  // and no feature is registered. Errors: Standard_Failure passes, as for a null shape; nothing has
  // been changed then.
  static TDF_Label PerformSew(TopoDS_Shape& first, TopoDS_Shape& second);

  // The first shape without what it has in common with the second. `result` gets no label; unless
  // keepOriginal, the first shape is removed from the document, whatever the parametric manager
  // says. Works without a document, too.
  // Returns: false, with `result` and the document as they were, if the kernel cannot do it.
  static bool PerformChop(TopoDS_Shape& first, TopoDS_Shape& second, TopoDS_Shape& result,
                          bool keepOriginal);

  // The second shape without its overlap with the first, for a dialog: with the user's tolerance,
  // the measure of the overlap, and a message for whatever fails. An overlap up to 1e-9 counts as
  // none.
  static ChopResult PerformChopEnhanced(const TopoDS_Shape& first, const TopoDS_Shape& second,
                                        const BooleanSettings& settings);

private:
  // A label for a result; null for a null shape or without a document.
  static TDF_Label CreateAttribue(TopoDS_Shape& shape);
};
