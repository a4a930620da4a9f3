// The exact geometry of one edge, face, shell or solid of a read model, as plain records.
//
// Lengths and points are in model units, angles in radians, parameters in the kernel's own
// parametrisation of the curve or surface. Ids are those of StepGeometryPayloadStore, 0 for none.
// A degree of -1 and an empty kind mean that there is none; vectors without a meaning for the kind
// stay empty.
#pragma once

#include "step/replay/ReplayId.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvex {

struct ReplayPoint
{
  double x = 0;
  double y = 0;
  double z = 0;
};

// A point in the parameters of a surface.
struct ReplayUv
{
  double u = 0;
  double v = 0;
};

// Contents by kind, vectors as their three coordinates:
//   line            analytic: point at the first parameter, point at the last
//   circle          analytic: centre, axis, X direction, radius, first and last parameter
//   ellipse         analytic: centre, axis, X direction, major and minor radius, first and last
//   bezier_curve    degree, poles, weights if rational
//   b_spline_curve  degree, poles, weights if rational, knots
//   any other       the two parameters alone
struct ReplayCurvePayload
{
  // Of the edge; of the face for the basis curve of a surface.
  ReplayId id = 0;
  // As ToString(ReplayCurveKind).
  std::string kind;
  std::int32_t degree = -1;
  double firstParameter = 0;
  double lastParameter = 0;
  std::vector<ReplayPoint> controlPoints;
  // The distinct ones, each with its multiplicity.
  std::vector<double> knots;
  std::vector<std::int32_t> multiplicities;
  // One per pole.
  std::vector<double> weights;
  std::vector<double> analyticParameters;
};

// A curve in the parameters of a face's surface. Contents as above, with two coordinates and no
// axis:
//   line     analytic: point at the first parameter, point at the last
//   circle   analytic: centre, X direction, radius, first and last parameter
//   ellipse  analytic: centre, X direction, major and minor radius, first and last parameter
struct ReplayPcurvePayload
{
  std::string kind;
  std::int32_t degree = -1;
  double firstParameter = 0;
  double lastParameter = 0;
  std::vector<ReplayUv> controlPoints;
  std::vector<double> knots;
  std::vector<std::int32_t> multiplicities;
  std::vector<double> weights;
  std::vector<double> analyticParameters;
};

// Contents by kind:
//   plane                  analytic: location, normal direction
//   cylinder_surface       analytic: location, axis, X direction, radius
//   cone_surface           analytic: location, axis, X direction, reference radius, semi-angle
//   sphere                 analytic: location, axis, X direction, radius
//   torus_surface          analytic: location, axis, X direction, major and minor radius
//   bezier_surface         degrees, poles; never weights
//   b_spline_surface       degrees, poles, knots, weights if rational
//   surface_of_revolution  analytic: axis location, axis direction; basis curve
//   surface_of_extrusion   analytic: direction; basis curve
//   other_surface          the bounds alone; offset surfaces are among these
// Caveat: an extrusion has another text here than in ToString(ReplaySurfaceKind).
struct ReplaySurfacePayload
{
  // Of the face.
  ReplayId id = 0;
  std::string kind;
  std::int32_t degreeU = -1;
  std::int32_t degreeV = -1;
  // Of the face on the surface.
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
  // Poles along U and along V.
  std::int32_t poleRows = 0;
  std::int32_t poleCols = 0;
  // Row by row: those of one U stand together. The weights have the same order.
  std::vector<ReplayPoint> controlPoints;
  std::vector<double> uKnots;
  std::vector<double> vKnots;
  std::vector<std::int32_t> uMultiplicities;
  std::vector<std::int32_t> vMultiplicities;
  std::vector<double> weights;
  std::vector<double> analyticParameters;
  bool hasBasisCurve = false;
  ReplayCurvePayload basisCurve;
};

// An edge as one loop uses it.
struct ReplayCoedgePayload
{
  ReplayId edgeId = 0;
  // Of the edge itself, without regard to orientation.
  ReplayId startVertexId = 0;
  ReplayId endVertexId = 0;
  // Without extent in space, as the pole of a sphere.
  bool isDegenerated = false;
  // The face meets itself here.
  bool isSeam = false;
  // Whether the field of the same name holds something.
  bool hasStartVertexPoint = false;
  bool hasEndVertexPoint = false;
  bool hasStartVertexUv = false;
  bool hasEndVertexUv = false;
  ReplayPoint startVertexPoint;
  ReplayPoint endVertexPoint;
  ReplayUv startVertexUv;
  ReplayUv endVertexUv;
  // The edge is not reversed in its loop.
  bool orientation = true;
  // Caveat: also true for an edge that has only a curve on its surface.
  bool hasCurve3d = false;
  bool hasPcurve = false;
  bool hasSecondaryPcurve = false;
  ReplayCurvePayload curve3d;
  ReplayPcurvePayload pcurve;
  // The edge's second curve on a surface; of seams only.
  ReplayPcurvePayload secondaryPcurve;
};

struct ReplayLoopPayload
{
  bool isOuter = false;
  // In the order of the walk along the wire.
  std::vector<ReplayCoedgePayload> coedges;
};

struct ReplayFaceTrimPayload
{
  ReplayId faceId = 0;
  // The same number.
  ReplayId surfaceId = 0;
  // The face is not reversed.
  bool sameSense = true;
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
  std::vector<ReplayLoopPayload> loops;
};

struct ReplayFacePayload
{
  ReplayId faceId = 0;
  ReplaySurfacePayload surface;
  ReplayFaceTrimPayload trim;
};

struct ReplayShellPayload
{
  ReplayId shellId = 0;
  bool isClosed = false;
  // Without those that cannot be described.
  std::vector<ReplayFacePayload> faces;
};

struct ReplaySolidPayload
{
  ReplayId solidId = 0;
  // The whole solid in the kernel's text format, version 3, with triangles and without normals; the
  // only place where numbers have full precision.
  std::string exactBrep;
  // Without those that cannot be described.
  std::vector<ReplayShellPayload> shells;
};

} // namespace Orvex
