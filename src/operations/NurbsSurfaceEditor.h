// B-spline faces: made from a grid of control points, and edited.
//
// A grid runs along U, each of its rows along V. Indices of poles start at 1, as in the kernel.
//
// The edits change the surface of the face in place and then replace the face by a new one on it.
// So any other face on the same surface object changes as well, and the new face has the natural
// bounds of the surface: wires that trimmed the old one are gone. A face that is moved by a
// location has a surface of its own for this purpose, at its place.
//
// Failures: false or a null face. What is refused before the edit, such as a face on another kind
// of surface or a number that is not finite, leaves everything as it was. If only the new face
// cannot be made, the surface has changed and the old face is still there. Standard_Failure passes,
// as of a degree above 25 or of ranges too narrow for the knots; then, too, the surface may have
// changed already.
//
// Caveat: edits take no lock; nobody may read the surface meanwhile. Labels, history and feature of
// a face are for the caller to keep in step.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Face.hxx>
#include <gp_Pnt.hxx>
#include <gp_Vec.hxx>

#include <vector>

class ORVEX_API NurbsSurfaceEditor
{
public:
  // The face on the surface with these control points, all weights equal, and clamped uniform knots
  // from 0 to 1 in either direction. A degree out of range counts as the nearest in range: from 1
  // to one less than there are points.
  // Returns: null for fewer than two rows or columns and for rows of different length.
  static TopoDS_Face
  CreateSurfaceFromControlGrid(const std::vector<std::vector<gp_Pnt>>& controlGrid, int uDegree,
                               int vDegree);

  // Moves one pole; its weight stays. False for an index out of range.
  static bool MoveControlPoint(TopoDS_Face& face, int uIndex, int vIndex, const gp_Vec& delta);

  // Moves the whole surface along its normal at the middle of the face, whichever way the face is
  // oriented. This is no offset: a curved face keeps its shape. False for a distance up to 1e-7
  // either way, and where there is no normal.
  static bool PushPullFaceAlongNormal(TopoDS_Face& face, double distance);

  // Scales the knots to new ranges of the parameters. False if one is empty.
  static bool ReparameterizeSurface(TopoDS_Face& face, double uMin, double uMax, double vMin,
                                    double vMax);
};
