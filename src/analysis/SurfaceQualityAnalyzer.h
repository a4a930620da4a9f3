// Analyses of surfaces by samples on a grid: curvature, zebra stripes, reflections, draft, smallest
// radius, wall thickness, and continuity across edges. All read the shape and change nothing.
//
//   ThicknessAnalysisReport walls = SurfaceQualityAnalyzer::AnalyzeThickness(solid, 10, 20);
//
// Normals are those of the surfaces, whatever the orientation of the faces. A sample where the
// kernel has no curvature or normal (a pole) is passed over, and so is a face with an empty
// parameter box.
//
// Errors: arguments that allow no sample give a report that is not valid, or an empty list. What
// the kernel throws passes. Cost: linear in faces times samples, and for thickness in the rays'
// hits besides. No state: calls on different shapes may run at once.
#pragma once

#include "analysis/SurfaceQuality.h"
#include "foundation/Export.h"
#include "operations/SurfaceContinuityMetrics.h"

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Dir.hxx>

#include <vector>

class ORVEX_API SurfaceQualityAnalyzer
{
public:
  // Gaussian and mean curvature on nu by nv places, at least 2 each.
  static SurfaceQualityReport AnalyzeCurvatureMap(const TopoDS_Face& face, int nu, int nv);

  // The same with stripes, as of lamps far away: (sin(normal . light * frequency) + 1) / 2.
  static SurfaceQualityReport AnalyzeZebraMap(const TopoDS_Face& face, const gp_Dir& lightDirection,
                                              int nu, int nv, double frequency);

  // Angles against a direction of pull. A negative requirement counts as 0.
  static DraftAnalysisReport AnalyzeDraft(const TopoDS_Shape& shape, const gp_Dir& pullDirection,
                                          double minAngleDegrees, int nu, int nv, int maxHotspots);

  // Tiles of so many radians, in longitude and in polar angle, seen by reflection.
  static EnvironmentReflectionReport AnalyzeEnvironmentReflection(const TopoDS_Shape& shape,
                                                                  const gp_Dir& viewDirection,
                                                                  int nu, int nv, double tileSize);

  // The smaller radius of curvature; flat places have none.
  static MinRadiusAnalysisReport AnalyzeMinRadius(const TopoDS_Shape& shape, int samplesPerAxis,
                                                  int maxHotspots);

  // From each place straight through the material to the other side. A place with material on both
  // sides (or one that lies on another face) has the smaller of both ways.
  // Caveat: a place outside the trimming of its face is measured too, where its surface runs
  // through material. A report is valid also without a sample, as of an open shell.
  static ThicknessAnalysisReport AnalyzeThickness(const TopoDS_Shape& shape, int samplesPerAxis,
                                                  int maxHotspots);

  // How the first two faces of each edge meet, edge by edge in the order of the kernel's map.
  static std::vector<SurfaceContinuityMetrics>
  EvaluateAdjacencyContinuity(const TopoDS_Shape& shape, double tolerance);

  // The angles of AnalyzeDraft and the values of AnalyzeThickness for colour maps, a grid for each
  // face that has a value. Caveat: a place without one holds 0, as an infinitely thin wall would.
  static std::vector<AnalysisColoringGrid>
  SampleDraftForColoring(const TopoDS_Shape& shape, const gp_Dir& pullDirection, int nu, int nv);
  static std::vector<AnalysisColoringGrid> SampleThicknessForColoring(const TopoDS_Shape& shape,
                                                                      int samplesPerAxis);
};
