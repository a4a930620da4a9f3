// What the surface analyses find: plain records, lengths in model units.
//
// Samples stand on regular grids over the parameter box of each face, both ends included, also
// where the box reaches beyond the face's trimming. Faces count from 1 in the order of a
// TopExp_Explorer. A report that is not valid means that there was nothing to sample.
#pragma once

#include <gp_Pnt.hxx>

#include <vector>

// Curvature and stripes at one place of a face.
struct SurfaceQualitySample
{
  double u = 0;
  double v = 0;
  double gaussianCurvature = 0;
  double meanCurvature = 0;
  // From 0 to 1; 0 in a curvature map.
  double zebraValue = 0;
};

struct SurfaceQualityReport
{
  bool valid = false;
  std::vector<SurfaceQualitySample> samples;
  // Of absolute values.
  double maxGaussianCurvature = 0;
  double maxMeanCurvature = 0;
  double averageGaussianCurvature = 0;
  double averageMeanCurvature = 0;
};

// A place where a wall leans less than it should.
struct DraftHotspot
{
  int face = -1;
  double u = 0;
  double v = 0;
  double angleDegrees = 0;
  // Of the surface's normal and the pull; the angle is its arc sine.
  double dot = 0;
};

// Angles in degrees: 90 across the pull, 0 along it, negative for an undercut.
struct DraftAnalysisReport
{
  bool valid = false;
  // No sample has less than the required angle.
  bool passes = false;
  double requiredAngleDegrees = 0;
  double minAngleDegrees = 0;
  double maxAngleDegrees = 0;
  double averageAngleDegrees = 0;
  int samples = 0;
  int violations = 0;
  // The first violations in sampling order, not the worst.
  std::vector<DraftHotspot> hotspots;
};

// A place with its radius or thickness.
struct MeasureHotspot
{
  int face = -1;
  double u = 0;
  double v = 0;
  gp_Pnt point;
  double value = 0;
};
using MinRadiusHotspot = MeasureHotspot;
using ThicknessHotspot = MeasureHotspot;

struct MeasureAnalysisReport
{
  bool valid = false;
  // All of the shape, sampled or not.
  int faces = 0;
  // With a value.
  int samples = 0;
  double minValue = 0;
  double maxValue = 0;
  double averageValue = 0;
  // The smallest values, ascending.
  std::vector<MeasureHotspot> hotspots;
};
using MinRadiusAnalysisReport = MeasureAnalysisReport;
using ThicknessAnalysisReport = MeasureAnalysisReport;

// What a polished face shows of a checkered world around it.
struct EnvironmentReflectionSample
{
  double u = 0;
  double v = 0;
  gp_Pnt point;
  // 0 or 1.
  double checkerValue = 0;
  // The unit vector that the view is reflected into.
  double reflectionX = 0;
  double reflectionY = 0;
  double reflectionZ = 0;
};

struct EnvironmentReflectionReport
{
  bool valid = false;
  // All of the shape, sampled or not.
  int faces = 0;
  int samples = 0;
  std::vector<EnvironmentReflectionSample> values;
};

// The values of one face for a colour map.
struct AnalysisColoringGrid
{
  int face = 0;
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
  int nu = 0;
  int nv = 0;
  // That of (i, j) at i * nv + j; 0 where there is none.
  std::vector<double> values;
  // Of the places that have a value.
  double minValue = 0;
  double maxValue = 0;
};
