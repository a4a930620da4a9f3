// Records of the comparison of two shapes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Sub-shapes count at each occurrence.
struct ShapeTopologyCounts
{
  std::int32_t solids = 0;
  std::int32_t shells = 0;
  std::int32_t faces = 0;
  std::int32_t wires = 0;
  std::int32_t edges = 0;
  std::int32_t vertices = 0;

  bool operator==(const ShapeTopologyCounts&) const = default;
};

// What is compared; all 0 for a null shape.
struct ShapeEquivalenceMetrics
{
  // Absolute value, in cubic model units.
  double volume = 0;
  double area = 0;
  // The kernel's box, with the gap of its tolerances; of the triangles where a face has them.
  double xMin = 0;
  double yMin = 0;
  double zMin = 0;
  double xMax = 0;
  double yMax = 0;
  double zMax = 0;
  ShapeTopologyCounts topology;
};

struct ShapeEquivalenceOptions
{
  // Of volume and area against the larger one; of box coordinates against the largest of them, at
  // least 1.
  double relativeTolerance = 0.0001;
  // Volumes and areas below this count as this large; box coordinates may differ by this on top.
  double absoluteTolerance = 1e-6;
  bool checkVolume = true;
  bool checkArea = true;
  bool checkBoundingBox = true;
  bool checkTopology = true;
};

struct ShapeEquivalenceReport
{
  // Both valid, and every check matches.
  bool equivalent = false;
  // Not null, and BRepCheck finds no fault.
  bool sourceValid = false;
  bool candidateValid = false;
  // A check that is switched off stays true.
  bool volumeMatch = true;
  bool areaMatch = true;
  bool bboxMatch = true;
  bool topologyMatch = true;
  double volumeRelativeError = 0;
  double areaRelativeError = 0;
  // Largest difference of one coordinate.
  double bboxMaxDeviation = 0;
  ShapeEquivalenceMetrics source;
  ShapeEquivalenceMetrics candidate;
  // "source_invalid", "candidate_invalid", "volume_mismatch", "area_mismatch", "bbox_mismatch",
  // "topology_mismatch": those that hold, in this order.
  std::vector<std::string> failures;
};
