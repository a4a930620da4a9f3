// Operations on whole shapes: booleans, sewing and the chop; sweeps of sections, offsets, general
// fuses and unions that keep their section; comparison of faces, counts of triangles and export.
//
// The forms that give a label work in the current document. Each is one undo step, or part of the
// one that is open: it computes first, then puts the result on a new label of its own, a compound
// by type with the name "compound" and a running number, and removes the operands or leaves them.
// What fails leaves the document as it was and gives a null label; so does a missing document.
// While the parametric manager is on, operands always stay, since the result is rebuilt from them.
//
// The forms that give a shape touch no document, with the one exception that is told below.
//
// Guarantees: the operands are bit for bit what they were, whatever the outcome. A null pointer is
// met like a null shape; so are shapes with vertices at no finite place, with which the kernel
// might never end, by booleans, offsets and fuses. Finite is what is up to 1e50.
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
#include "operations/sOffsetParameter.h"

#include <NCollection_List.hxx>
#include <TDF_Label.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <string>
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

  // --- Sweeps ---

  // The prism of the face that a section bounds: a solid, and for a direction in the plane of the
  // section a flat one. The section is given by its edges in the order in which they join, by the
  // corners of a polyline, which repeats the first to be closed, or as a wire; it need not be
  // plane if its edges have curves on a common surface. A negative length sweeps against the
  // direction.
  // Returns: null for an empty section: no edges, one of them null, fewer than two points, a null
  //   wire.
  // Errors: Standard_Failure passes: of a section that is no wire or bounds no face, of equal
  //   successive points, of a length below 1e-7 or that is no finite number.
  // Caveat: an open section of several edges, or one that crosses itself, gives a prism that is no
  //   valid solid.
  static TopoDS_Shape CreateShapeBySweep(std::vector<const TopoDS_Edge*> edges, gp_Dir direction,
                                         double length);
  static TopoDS_Shape CreateShapeBySweep(std::vector<gp_Pnt> points, gp_Dir direction,
                                         double length);
  static TopoDS_Shape CreateShapeBySweep(TopoDS_Wire wire, gp_Dir direction, double length);

  // --- Offset ---

  // The shape at a distance of a solid, shell or face.
  // Returns: null if the kernel cannot do it, as for a vanishing offset, an edge, or one inwards by
  //   more than the shape is thick; for a mode or join that is none, and for an offset or tolerance
  //   that is no finite number.
  // Errors: Standard_Failure passes.
  static TopoDS_Shape OffsetObject(TopoDS_Shape& shape, sOffsetParameter parameter);

  // --- Non-regular unions ---

  // General fuse: the shapes cut along each other, their common parts once, in one compound.
  // Points within 1e-5 are the same. A single shape of a list comes back as it is.
  // Returns: null if the kernel cannot do it, as for the same shape twice; for a null shape, and
  //   for an empty list.
  // Caveat: the kernel is told that shapes touch and do not cross. Shapes that have faces in
  //   common, as the parts of a model for simulation do, are cut along them, in little time; those
  //   whose insides overlap come out as they went in.
  static TopoDS_Shape NonRegularBool2ShapesLCW(TopoDS_Shape* first, TopoDS_Shape* second);
  static TopoDS_Shape NonRegularBoolLCW(NCollection_List<TopoDS_Shape>& shapes);

  // The face that the section of two shapes spans, or a copy of the section if its edges, in their
  // order, make a wire that lies on no surface. It gets a label in the document, if there is one,
  // like the results above, but without a command.
  // Returns: null, and no label, for shapes that do not meet and those that the kernel cannot
  //   intersect.
  // Errors: Standard_Failure passes, as of a section that is several loops, or a point.
  static TopoDS_Shape PerformNoneRegularUnite(const TopoDS_Shape* first,
                                              const TopoDS_Shape* second);

  // The union of two shapes, and whether they meet. `result` is set in either case, to null if the
  // kernel cannot fuse them; `faces` stays as it is. Errors: Standard_Failure passes.
  static bool PerformNoneRegularUnite(const TopoDS_Shape* first, const TopoDS_Shape* second,
                                      TopoDS_Shape& result, std::vector<TopoDS_Face>& faces);

  // The same; of shapes that meet, the faces that their section spans are appended to `faces` (see
  // CreateFacesByEdgesWrapGroup), and both shapes and the result are dumped to IGES files:
  // "tool_N.igs", "blank_N.igs" and "BoolResult_N.igs", N counting the dumps of the process from 0.
  // They go to the folder that ORVEX_SIMULATION_DUMPS names, which is made if it is not there, or
  // to the system's temporary folder. A process that meets files of another one there goes on in a
  // new folder inside, "run-" and six letters. What cannot be dumped is left out.
  static bool PerformNoneRegularUniteForSimulation(const TopoDS_Shape* first,
                                                   const TopoDS_Shape* second, TopoDS_Shape& result,
                                                   std::vector<TopoDS_Face>& faces);

  // The union of the first shape with all later ones that are neither faces nor shells, one by one,
  // in the way above; a union that fails is passed over. The faces that all sections span are
  // appended to `faces`.
  // Returns: whether `result`, that of the last union, is not null; false, with `result` as it was,
  //   for fewer than two shapes. No union at all gives false and null.
  static bool ExeNonRegUniteWithInFace(std::vector<TopoDS_Shape>& shapes,
                                       std::vector<TopoDS_Face>& faces, TopoDS_Shape& result);

  // Appends the faces that the edges of a section span to `faces`; works on copies of the edges.
  // An edge that is closed and that its successor does not go on from is a loop of its own; all
  // others are joined by their ends to loops, whatever their order. Each closed loop spans one
  // face: on the surface that its edges lie on, plane or not, or else a filled one through them.
  // What is left, since it branches, spans the plane faces inside its edges. Loops of which the
  // kernel makes no valid face, such as self-crossing ones, span none.
  // Caveat: a loop inside another one makes no hole there; each has its own face.
  static void CreateFacesByEdgesWrapGroup(std::vector<TopoDS_Edge>& edges,
                                          std::vector<TopoDS_Face>& faces);

  // --- Comparison, counts, export ---

  // What faces are compared by: how often edges of the face have a vertex, the mean of those
  // vertices and of the middles (by parameter) of the edges, and the area. A null face has no
  // vertices and no area, and its center is the origin, as that of a face without edges.
  static void GetFaceGeometry(TopoDS_Face& face, int& vertexCount, gp_Pnt& center, double& area);

  // Whether these agree: the number, the centers within 1e-6, the areas by less than 1e-6.
  // Orientation and kind of surface do not count. False for a null face.
  static bool IsSameFace(TopoDS_Face& first, TopoDS_Face& second);

  // How many triangles the faces of a shape hold; nothing is meshed. A face that occurs several
  // times counts as often. Tells in the debug log whether every face has triangles.
  static int GetShapeTrianglesNum(TopoDS_Shape& shape);

  // Writes an IGES file in millimetres, as GeometryTool does.
  static void SaveShapeToIgsFile(std::string& path, TopoDS_Shape shape);

private:
  // A label for a result; null for a null shape or without a document.
  static TDF_Label CreateAttribue(TopoDS_Shape& shape);
};
