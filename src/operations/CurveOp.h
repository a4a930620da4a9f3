// Operations on curves that are given as shapes: longer, beside, shorter.
//
// No operation touches the document or changes its input. All give null for failure; also for a
// distance that is no finite number and a parameter that is no number.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

class ORVEX_API CurveOp
{
public:
  // An edge, or the first one of another shape, with an extension by `distance` in model units past
  // its last parameter (`atEnd`) or before its first. A straight edge becomes a straight edge
  // between two points. Any other goes on to the point at that distance along its tangent, with
  // continuous tangent: so the extension of a curve that bends there is somewhat longer.
  // Returns: one new edge. Null for a distance not above 0, a vanishing tangent, an edge without a
  //   curve in space, and a curve that has no end of its own: an arc is extended only if its curve
  //   is a trimmed circle, not if the edge is cut out of a whole one.
  // Errors: Standard_Failure passes.
  // Caveat: a curve that is longer than its edge goes on from its own end, the edge's is forgotten.
  static TopoDS_Shape ExtendCurve(const TopoDS_Shape& curve, double distance, bool atEnd);

  // A plane wire, or the wire of one edge, at a distance in its plane, with round joins; negative
  // is inwards. An open wire gets a closed one around it. Returns: a wire, or a compound of wires:
  // of none where nothing is left inside. Null for any
  //   other shape, also for a compound with a wire in it, and for what the kernel cannot offset,
  //   such as a wire that is not plane or a single straight edge.
  // Errors: Standard_Failure passes.
  static TopoDS_Shape OffsetCurve(const TopoDS_Shape& curve, double distance);

  // The part of an edge, or of the first one of another shape, between two parameters of its curve
  // in either order, each clamped to the edge's range.
  // Returns: one new edge, in the sense of the curve. Null if less than 1e-7 is left between the
  //   parameters, and for an edge without a curve in space.
  // Errors: Standard_Failure passes.
  static TopoDS_Shape TrimCurve(const TopoDS_Shape& curve, double first, double last);
};
