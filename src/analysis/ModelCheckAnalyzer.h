// Checks shapes for what troubles those who mesh or machine them: invalid topology, open
// boundaries, edges of more than two faces, edges that do not follow their surfaces, and small
// features.
//
//   ModelCheckReport report = ModelCheckAnalyzer::Analyze({shape}, ModelCheckOptions());
//
// Codes, in the order of the checks. Of each shape:
//   TOPO_SHAPE_INVALID      critical  BRepCheck finds fault with it
//   GEO_EDGE_DEGENERATED    warning   an edge without extent; nothing else is said of it
//   TOPO_EDGE_INVALID       critical
//   GEO_EDGE_SAMEPARAM      warning   its curves in space and on surfaces are not known to agree
//   GEO_EDGE_SHORT          warning   value: length
//   FEAT_SMALL_LOOP         warning   a circle; value: radius
//   TOPO_OPEN_BOUNDARY      critical  of the shape; value: number of edges with less than two faces
//   TOPO_NON_MANIFOLD_EDGE  critical  of the shape; value: number of edges with more than two
//   TOPO_WIRE_INVALID       critical
//   TOPO_WIRE_OPEN          critical  value: the BRepCheck_Status
//   TOPO_SOLID_INVALID      critical
//   GEO_SOLID_ZERO_VOLUME   critical  value: signed volume
//   TOPO_FACE_INVALID       critical
//   FEAT_SMALL_HOLE         warning   value: radius of the cylinder
//   FEAT_SMALL_BLEND        warning   value: radius
//   GEO_FACE_TINY           warning   value: area
//   FEAT_SMALL_CHAMFER      warning   value: length of the shortest edge
//
// Caveats:
// - The poles of spheres and cones are edges without extent, and are reported as such.
// - Small features are told by size and by counting edges: a thin pin passes for a small hole.
// - Kept are the first issues of a shape; what comes later is dropped without a trace.
#pragma once

#include "analysis/ModelCheckOptions.h"
#include "analysis/ModelCheckReport.h"
#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

#include <vector>

class ORVEX_API ModelCheckAnalyzer
{
public:
  // Null shapes are passed over. Reads the shapes only; safe on any thread while nobody changes
  // them.
  // Errors: what the kernel throws in its checks of validity and in its measures of volume and
  // area passes; in the measures of a single edge or radius it costs that one check.
  // Cost: one BRepCheck_Analyzer for each shape takes most of it.
  static ModelCheckReport Analyze(const std::vector<TopoDS_Shape>& shapes,
                                  const ModelCheckOptions& options);
};
