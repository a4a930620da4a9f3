// The rigid motions that make two faces mate.
//
// Faces are named by references, texts "SHAPE:FACE" with the tags of the shape's label and of the
// face's label under it. A is the fixed partner; the motion is for the part of B. Lengths are in
// model units, angles in degrees. The direction of a planar face is the axis of its plane, whatever
// the orientation of the face.
//
//   ShapeLabelMgr::GetInstance()->RegisterSubShape(face);    // once, for a face without a label
//   const std::string b = AssemblyGeometryHelper::EncodeRefGeom(face);
//   gp_Trsf motion;
//   if (AssemblyGeometryHelper::ComputeCoincidentTransform(a, b, motion)) ...
//
// A reference that names nothing, and a face of another kind than asked for, gives false, and what
// was to be written stays as it is.
// Caveat: for the thread of the front end only.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>
#include <gp_Ax1.hxx>
#include <gp_Pln.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>
#include <gp_Vec.hxx>

#include <string>

namespace AssemblyGeometryHelper {

// Returns: empty for what is no face and for a face without a label of its own.
ORVEX_API std::string EncodeRefGeom(const TopoDS_Shape& face);

// Returns: null for a text that is no reference and for one that names nothing.
ORVEX_API TopoDS_Shape DecodeRefGeom(const std::string& reference);

ORVEX_API bool GetFacePlane(const std::string& reference, gp_Pln& plane);
ORVEX_API bool GetCylinderAxis(const std::string& reference, gp_Ax1& axis);

// The centre of the face's box, which may lie off the face; the origin if there is no face.
ORVEX_API gp_Pnt GetFaceCenter(const std::string& reference);

// Planes face to face, and the centres together.
ORVEX_API bool ComputeCoincidentTransform(const std::string& a, const std::string& b,
                                          gp_Trsf& motion);

// Cylinders on one axis, by the smaller turn; B keeps its place along the axis.
ORVEX_API bool ComputeConcentricTransform(const std::string& a, const std::string& b,
                                          gp_Trsf& motion);

// Planes parallel, with equal or opposite directions, by the smaller turn about the centre of B.
ORVEX_API bool ComputeParallelTransform(const std::string& a, const std::string& b,
                                        gp_Trsf& motion);

// Directions of the planes at an angle, by a turn about the centre of B.
// Returns: false, with the identity, for parallel planes unless they have the angle already: then
// nothing tells about which axis to turn.
ORVEX_API bool ComputeAngleTransform(const std::string& a, const std::string& b, double degrees,
                                     gp_Trsf& motion);

// The centre of B at a distance from the plane of A, on the side where it is.
ORVEX_API bool ComputeDistanceTranslation(const std::string& a, const std::string& b,
                                          double distance, gp_Vec& translation);

// How far the centre of B is from the plane of A; both planar.
ORVEX_API bool ComputePlanePlaneDist(const std::string& a, const std::string& b, double& distance);

} // namespace AssemblyGeometryHelper
