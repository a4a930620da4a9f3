// The shape registry: from a shape to its label in the current document and back, which shapes
// there are, and the attributes that each of them bears.
//
// Everything persistent about a shape hangs on its label; see document/LabelScheme.h for what
// stands where. A look-up that finds nothing answers with a null label, an empty shape, false or
// the literal that the operation names; nothing here throws for it.
//
//   TDF_Label label = registry->AddNewShapeToDocAndGetLabel(doc, shape);
//   double r = 1, g = 0, b = 0;
//   registry->SetShapeColor(shape, r, g, b);
//
// Caveats:
// - The kernel looks shapes up by what they are and ignores where they are: a moved copy of a
//   registered shape is answered with the label of the unmoved one, unless it is registered too.
// - The parameter in which a sweep keeps its source bears that shape. It is never answered as the
//   label of a shape or of a sub-shape.
// - Attribute getters make the child they read if it is missing; the child stays empty.
// - For the thread of the front end only.
#pragma once

#include "foundation/Export.h"

#include <Bnd_Box.hxx>
#include <TDF_Label.hxx>
#include <TDocStd_Document.hxx>
#include <TopoDS_Shape.hxx>
#include <TopoDS_TShape.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Trsf.hxx>

#include <map>
#include <string>
#include <vector>

class ORVEX_API ShapeLabelMgr
{
public:
  using SubShapeMap = std::map<opencascade::handle<TopoDS_TShape>, std::vector<TopoDS_Shape>>;

  // The instance, made on first use and never destroyed.
  static ShapeLabelMgr* GetInstance();

  // --- Adding and connecting ---

  // Adds a shape to the document as a new top-level label and returns it. The label's tags for
  // sub-shapes start above those of the attributes.
  // Errors: null label for a null document or a null shape.
  TDF_Label AddNewShapeToDocAndGetLabel(opencascade::handle<TDocStd_Document> doc,
                                        const TopoDS_Shape& shape);
  void AddNewShapeToDoc(opencascade::handle<TDocStd_Document> doc, TopoDS_Shape shape);

  // Puts a shape on a label of the current document. A label without a valid type child becomes a
  // compound by type.
  void ConnectShapeAndLable(TopoDS_Shape& shape, TDF_Label label);

  // --- Look-up ---

  // The label of a shape. If no top-level label has it: the first instance, component or
  // sub-shape that is it.
  TDF_Label GetShapeLabel(TopoDS_Shape shape);
  TDF_Label GetShapeLabel(const TopoDS_Shape* shape);
  // One label per shape, in order; null in the place of a shape that has none.
  std::vector<TDF_Label> GetShapeLabels(const std::vector<TopoDS_Shape>& shapes);
  // The label of a sub-shape under the label of the shape that it belongs to.
  TDF_Label GetShapeLabelWithFace(TopoDS_Shape& face);
  // The tags of the two labels. False if the sub-shape has no label; the shape tag is written all
  // the same if there is a shape that it belongs to.
  bool GetShapeLabelWithFaceTagID(TopoDS_Shape& face, int& shapeTag, int& faceTag);
  // Gives a sub-shape a label of its own under the label of the shape that it belongs to, above the
  // tags of all attributes, so that it can be named and referred to. One undo step, or part of the
  // one that is open.
  // Returns: the label that it had already, if it had one; null without a document, and for what is
  // no sub-shape of a shape there.
  TDF_Label RegisterSubShape(const TopoDS_Shape& shape);
  TopoDS_Shape GetShapeByLabel(TDF_Label label);
  // In order, empty shapes for labels without one.
  std::vector<TopoDS_Shape> GetShapesByLabels(const std::vector<TDF_Label>& labels);
  // The shape of the first top-level label with that tag.
  TopoDS_Shape GetShapeByTag(int tag);
  TopoDS_Shape GetSubShapeByTag(int shapeTag, int subShapeTag);
  // Byte for byte; of several shapes with that name the first in document order.
  TopoDS_Shape GetShapeByName(std::string& name);

  // --- Enumeration, in document order ---

  std::vector<TDF_Label> GetAllShapeLabes();
  std::vector<TopoDS_Shape> GetAllShapes(opencascade::handle<TDocStd_Document> doc);
  static std::vector<TopoDS_Shape> GetAllShapes();
  // Pointers to copies of the shapes that the registry keeps. As long as the shapes of the document
  // stay the same, every call gives the same pointers; after a change the old ones stay valid for
  // the next 15 changes that a call sees, so that a walk may itself ask again.
  static std::vector<TopoDS_Shape*> GetAllShapesPtr();
  // Only solids and compsolids.
  std::vector<TopoDS_Shape> GetAllSolidShapes();
  std::vector<std::string> GetAllShapeNames();
  // The box round all shapes, from their triangulations where there are any, without a gap. Void
  // if there is no shape.
  static Bnd_Box GetAllBoundingBox();

  // --- Sub-shape trees ---

  // Appends to the entry of the label's shape the shapes of its sub-shape labels, in order. The
  // second form goes on below each of them.
  void GetSubshapNocursive(TDF_Label label, SubShapeMap& subShapes);
  void GetSubshapWithcursive(TDF_Label label, SubShapeMap& subShapes);

  // --- Attributes ---

  // "Default_Name" if there is no name to give.
  std::string GetShapeName(const TopoDS_Shape* shape);
  std::string GetShapeNameByLabel(const TDF_Label& label);
  bool SetShapeName(const TopoDS_Shape* shape, std::string& name);

  // Red, green and blue in 0 to 1. The setter clamps the caller's variables into that range; a
  // pure yellow (red and green from 0.95, blue up to 0.15) becomes the amber 1, 0.85, 0.
  bool GetShapeColor(TopoDS_Shape shape, double& red, double& green, double& blue);
  void SetShapeColor(TopoDS_Shape shape, double& red, double& green, double& blue);

  // 1.0 is opaque. Stored as given. A label without a value gets 1.0 by being asked.
  double GetShapeTransparent(TopoDS_Shape& shape);
  void SetShapeTransparent(TopoDS_Shape& shape, double transparent);

  bool GetShapeVisibilty(TopoDS_Shape& shape);
  void SetShapeVisibilty(TopoDS_Shape& shape, bool visible);
  bool GetIsShapeEnabled(TopoDS_Shape& shape);
  void SetIsShapeEnabled(TopoDS_Shape& shape, bool enabled);

  // "surface", "wireframe" or whatever word was set, in lower case.
  std::string GetShapeDisplayMode(TopoDS_Shape& shape);
  void SetShapeDisplayMode(TopoDS_Shape& shape, const std::string& mode);
  bool GetShapeIsWireFrameMode(TopoDS_Shape& shape);
  void SetShapeIsWireFrameMode(TopoDS_Shape& shape, bool wireframe);

  // "No-Geometry" for a null shape, "Not-Found" without a label. Setting needs the attribute that
  // a created shape has; other labels stay as they are.
  std::string GetShapeMaterial(TopoDS_Shape& shape);
  void SetShapeMaterial(TopoDS_Shape& shape, std::string& material);
  // A material other than "Not Assigned".
  bool ShapeHasMaterial(TopoDS_Shape& shape);
  // Materials are looked up by shape only: always empty.
  std::string GetMaterialByLabel(const TDF_Label& label);

  // The primitive type code (Orvex::PrimitiveType); -1 for a null shape or one without a label, 0
  // for one without a type.
  int GetPrimitiveType(TopoDS_Shape& shape);
  // Always 2.
  int GetShapeElementID(TopoDS_Shape& shape);

  // --- Removing and moving ---

  // Removes the shape's label from the document, with what belongs to it. False if there is none
  // or if other shapes use it.
  bool RemoveShape(TopoDS_Shape& shape);
  bool RemoveShapeByLabel(TDF_Label& label);

  // Moves the parameter "Base Point" of a shape that was moved as a whole, so that a rebuild lands
  // in the same place. The shape itself is the caller's to move.
  void UpdateTDFByMoveAction(TDF_Label& label, gp_Trsf trsf);

private:
  // The shape tool of the current document, fetched anew; null without a document.
  static const opencascade::handle<XCAFDoc_ShapeTool>& FetchShapeTool();

  static ShapeLabelMgr* m_Instance;
  static opencascade::handle<XCAFDoc_ShapeTool> myAssembly;
};
