// Surfaces made of curves, and surfaces edited: loft, sweep along two rails, blend, patch, filled
// hole, network; extending, trimming, intersecting and projecting; and the measure of how two faces
// meet.
//
// All take plain shapes and give a plain shape, null if there is none; no document is touched. Most
// try a short list of ways, from what was asked for down to something weaker. The forms that take
// a report tell which way won, why the others came to nothing, and what is less than was asked for;
// the report may be null, and is emptied first.
//
//   OperationReport report;
//   const TopoDS_Shape hull = AdvancedSurfaceOp::BuildAdvancedLoft(frames, {keel}, {}, &report);
//   if (hull.IsNull())
//     std::cerr << report.Text();
//
// Guarantees:
// - What is given stays bit for bit what it was. Results share curves and surfaces with it, but no
//   vertices, edges or faces.
// - The same input gives the same result; any number of threads may call at once.
// - Shapes with vertices at NaN, infinity or beyond 1e50, on which the kernel never comes to an
//   end, give a null result; so do curved shapes beyond 4e8 that are to be
//   projected or filled.
//
// Units: lengths in model units.
// Errors: no failure of the kernel leaves, with the exceptions named below.
#pragma once

#include "foundation/Export.h"
#include "operations/AdvancedLoftOptions.h"
#include "operations/BlendSurfaceInputStatus.h"
#include "operations/BlendSurfaceOptions.h"
#include "operations/OperationReport.h"
#include "operations/SurfaceBoundaryConstraints.h"
#include "operations/SurfaceContinuityLevel.h"
#include "operations/SurfaceContinuityMetrics.h"

#include <TopoDS_Shape.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <vector>

class ORVEX_API AdvancedSurfaceOp
{
public:
  using Shapes = std::vector<TopoDS_Shape>;

  // --- Loft and sweep ---

  // A shell or solid through sections, from the first to the last. Sections and guides are edges,
  // wires, faces (their outer wires) or shapes whose edges join one after the other.
  //
  // Guides move the inner sections, not the first and the last: the section at position i of n
  // belongs to the points of the guides at i/(n-1) of their parameter ranges, whose average is its
  // target. Soft guides move the centre of its bounding box half the way there; strict guides move
  // its nearest point all the way, and fail where that is further than 50 tolerances and 1e-4. Of a
  // guide of several edges the first alone counts. A guide that is no curve fails soft and strict
  // attempts.
  //
  // The attempts begin with the options as SanitizeAdvancedLoftOptions leaves them, and go on with
  // looser ones.
  // Returns: null for fewer than two sections, for a section or guide given twice, and if no
  //   attempt gives a shape.
  static TopoDS_Shape BuildAdvancedLoft(const Shapes& sections, const Shapes& guides,
                                        const AdvancedLoftOptions& options);
  static TopoDS_Shape BuildAdvancedLoft(const Shapes& sections, const Shapes& guides,
                                        const AdvancedLoftOptions& options,
                                        OperationReport* report);

  // The options that the loft starts from: within their ranges, and reduced for large jobs, which
  // otherwise take long or come to nothing. Without guides the mode of the guides is 0.
  // isComplex receives whether the job counts as large, changed whether the result is other than
  // what was given; both may be null.
  static AdvancedLoftOptions SanitizeAdvancedLoftOptions(const Shapes& sections,
                                                         const Shapes& guides,
                                                         const AdvancedLoftOptions& options,
                                                         bool* isComplex, bool* changed);

  // Sections swept along two rails. Two or more are lofted, with the rails as soft guides and the
  // continuity given (above 2 counts as 2, below 0 as 1). A single one is swept along the first
  // rail and held in contact with the second; a solid if it is closed or planar and the kernel can
  // close the sweep, otherwise a shell.
  // Returns: null if a rail is no curve, without sections, for a single one that isn't planar, and
  //   for one that lies further than its own size from rails of which the first has several edges.
  // Caveat: the sweep of a single section that is far from its rails can take many seconds.
  static TopoDS_Shape BuildSweep2(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2,
                                  const Shapes& sections, int continuity);
  static TopoDS_Shape BuildSweep2(const TopoDS_Shape& rail1, const TopoDS_Shape& rail2,
                                  const Shapes& sections, int continuity, OperationReport* report);

  // --- Blend ---

  // The first reason why no blend can be made.
  static BlendSurfaceInputStatus ValidateBlendSurfaceInput(const BlendSurfaceBuildOptions& options);

  // Whether either side has a support face or a level above position.
  static bool RequiresConstrainedBlendSolve(const BlendSurfaceBuildOptions& options);

  // A closed wire of both edges and two straight lines between their ends, the shorter pair; a tie
  // within 1e-7 leaves the second edge in its direction. Null for an invalid input, and if the
  // edges meet at an end.
  static TopoDS_Wire BuildBlendBoundaryFrame(const BlendSurfaceBuildOptions& options);

  // A face that fills that frame. An input without supports and levels falls back to the blend
  // without constraints.
  // Caveat: levels and supports don't enter it; they only decide that this way is taken.
  static TopoDS_Face BuildBlendBoundarySeedSurface(const BlendSurfaceBuildOptions& options);

  // A face between two edges. With a support or a level: the filled frame if it is valid, otherwise
  // the blend without constraints. That one runs from curve to curve, with a slight bulge across.
  // Returns: null for an input that isn't valid: see ValidateBlendSurfaceInput.
  // Caveat: the blend without constraints takes the curves in their own directions, and is twisted
  //   between curves that run in opposite ones.
  static TopoDS_Face BuildBlendSurface(const BlendSurfaceBuildOptions& options);
  static TopoDS_Face BuildBlendSurface(const BlendSurfaceBuildOptions& options,
                                       OperationReport* report);

  // The same for one level on both sides. A level above position without both supports gives null.
  static TopoDS_Face BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                       const BlendSurfaceOptions& options);
  static TopoDS_Face BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                       const BlendSurfaceOptions& options, OperationReport* report);

  // The same without supports.
  static TopoDS_Face BuildBlendSurface(const TopoDS_Edge& edge1, const TopoDS_Edge& edge2,
                                       int continuity, double blendFactor);

  // --- Patch, fill, network ---

  // A face that the wire bounds and that goes through the points, with some tolerance. quality:
  // 0 and less for coarse and quick, 2 and more for the highest degree. continuity: 0 position, 1
  // tangent, 2 curvature, against the faces that the edges were taken from; falls back to position
  // where that fails.
  // Caveat: levels above position hold against the first surface that an edge lies on, and only if
  //   that is a spline surface: against planes, cylinders and the like the kernel mostly fails or
  //   crashes, and is not asked.
  static TopoDS_Face BuildPatchSurface(const TopoDS_Wire& wire, const std::vector<gp_Pnt>& points,
                                       double quality, int continuity);
  static TopoDS_Face BuildPatchSurface(const TopoDS_Wire& wire, const std::vector<gp_Pnt>& points,
                                       double quality, int continuity, OperationReport* report);

  // A face that the wire bounds, with a level for each edge: its constraint's, the first one with
  // its number, otherwise `level`. Constraints with other numbers are passed over. Falls back to
  // position on all edges, then to any surface that the kernel finds under the wire. Levels hold as
  // for a patch.
  static TopoDS_Face FillHole(const TopoDS_Wire& wire,
                              const std::vector<FillHoleEdgeConstraint>& constraints,
                              SurfaceContinuityLevel level);
  static TopoDS_Face FillHole(const TopoDS_Wire& wire,
                              const std::vector<FillHoleEdgeConstraint>& constraints,
                              SurfaceContinuityLevel level, OperationReport* report);
  static TopoDS_Face FillHole(const TopoDS_Wire& wire, SurfaceContinuityLevel level);

  // A skin over closed wires, sewn to caps on the first and the last: ruled between two wires with
  // as many edges, a loft over more. Wires without a skin are filled one by one.
  // Returns: null for fewer than two wires, for a wire given twice (also as a copy), for one that
  //   is not valid or not closed, and for constraints with the same or unknown numbers.
  static TopoDS_Shape
  BuildSurfaceNetwork(const std::vector<TopoDS_Wire>& wires,
                      const std::vector<SurfaceNetworkBoundaryConstraint>& constraints,
                      SurfaceContinuityLevel level);
  static TopoDS_Shape
  BuildSurfaceNetwork(const std::vector<TopoDS_Wire>& wires,
                      const std::vector<SurfaceNetworkBoundaryConstraint>& constraints,
                      SurfaceContinuityLevel level, OperationReport* report);
  static TopoDS_Shape BuildSurfaceNetwork(const std::vector<TopoDS_Wire>& wires,
                                          SurfaceContinuityLevel level);

  // How two faces meet at the middle of the first edge that both have. The tolerance is the length
  // up to which derivatives count as none.
  // Errors: Standard_Failure passes.
  // Caveat: the maximum curvature has a sign, and the absolute value comes after: where surfaces
  //   bend away from their normals, as a cylinder with an outward one, the maximum is 0.
  static SurfaceContinuityMetrics
  EvaluateFaceContinuity(const TopoDS_Face& face1, const TopoDS_Face& face2, double tolerance);

  // --- Editing ---

  // The face's surface between the face's bounds, longer by `length` on one side: 1 the start of U,
  // 2 its end, 3 the start of V, 4 its end; others count as 2. Continuity at the old border: 0
  // position, 1 curvature.
  // Returns: null unless the length is above 0 and finite, and for an unbounded face.
  // Errors: Standard_Failure passes if the face has no surface, or none between its bounds.
  // Caveats: holes and trimmed borders are gone. A continuity of 2 extends nothing: the kernel has
  //   no extension of that order, and the face comes back between its old bounds. The length is
  //   approximate where parameters are not lengths.
  static TopoDS_Shape ExtendSurface(const TopoDS_Face& face, double length, int side,
                                    int continuity);
  static TopoDS_Shape ExtendSurface(const TopoDS_Face& face, double length, int side,
                                    int continuity, OperationReport* report);

  // The face split along the edges of the cutter, which lie on it; or, with `project`, along what
  // the cutter, an edge or wire, projects to along the face's normals. All parts come back.
  static TopoDS_Shape TrimSurface(const TopoDS_Face& face, const TopoDS_Shape& cutter,
                                  bool project);
  static TopoDS_Shape TrimSurface(const TopoDS_Face& face, const TopoDS_Shape& cutter, bool project,
                                  OperationReport* report);

  // The edges and vertices in which two shapes meet; an empty compound if they don't.
  static TopoDS_Shape IntersectSurfaces(const TopoDS_Shape& first, const TopoDS_Shape& second);
  static TopoDS_Shape IntersectSurfaces(const TopoDS_Shape& first, const TopoDS_Shape& second,
                                        OperationReport* report);

  // An edge or wire projected on a face, or on the first face of another shape: along the
  // direction, both ways, or along the face's normals if the direction is null.
  // Errors: Standard_Failure passes; the report then holds what was written before.
  static TopoDS_Shape ProjectCurveToSurface(const TopoDS_Shape& curve, const TopoDS_Shape& surface,
                                            const gp_Dir* direction);
  static TopoDS_Shape ProjectCurveToSurface(const TopoDS_Shape& curve, const TopoDS_Shape& surface,
                                            const gp_Dir* direction, OperationReport* report);
};

// AdvancedSurfaceOp::BuildBlendSurface under a name of its own.
ORVEX_API TopoDS_Face BuildBlendSurfaceWithOptions(const TopoDS_Edge& edge1,
                                                   const TopoDS_Edge& edge2,
                                                   const BlendSurfaceOptions& options);
