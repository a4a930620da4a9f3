// The issues that a model check can report.
#pragma once

#include <array>
#include <cstddef>

namespace Orvex {

// In the order of the checks.
enum class ModelFault {
  InvalidShape,
  DegeneratedEdge,
  InvalidEdge,
  UnmatchedEdgeCurves,
  ShortEdge,
  SmallLoop,
  OpenBoundary,
  NonManifoldEdge,
  InvalidWire,
  OpenWire,
  InvalidSolid,
  ZeroVolume,
  InvalidFace,
  SmallHole,
  SmallBlend,
  TinyFace,
  SmallChamfer
};

struct ModelFaultRow
{
  const char* code;
  const char* severity;
  const char* entityType;
  const char* category;
  const char* message;
};

// clang-format off
inline constexpr std::array<ModelFaultRow, 17> kModelFaults = {{
  {"TOPO_SHAPE_INVALID",     "critical", "shape", "Topology",                     "Invalid B-Rep topology detected on shape."},
  {"GEO_EDGE_DEGENERATED",   "warning",  "edge",  "Degenerated Edge",             "Degenerated edge detected."},
  {"TOPO_EDGE_INVALID",      "critical", "edge",  "Topology",                     "Invalid edge topology."},
  {"GEO_EDGE_SAMEPARAM",     "warning",  "edge",  "Edge Parameterization",        "Edge has SameParameter=false; geometric/parametric mismatch risk."},
  {"GEO_EDGE_SHORT",         "warning",  "edge",  "Short Edge",                   "Edge length below short-edge threshold."},
  {"FEAT_SMALL_LOOP",        "warning",  "edge",  "Small Hole/Loop",              "Small circular edge detected (possible small hole/loop)."},
  {"TOPO_OPEN_BOUNDARY",     "critical", "shape", "Open Shell / Missing Face",    "Free boundary edges found; solid may have missing faces."},
  {"TOPO_NON_MANIFOLD_EDGE", "critical", "shape", "Non-manifold Topology",        "Edges shared by more than two faces detected."},
  {"TOPO_WIRE_INVALID",      "critical", "wire",  "Topology",                     "Invalid wire topology."},
  {"TOPO_WIRE_OPEN",         "critical", "wire",  "Wire Closure",                 "Open or invalid wire detected."},
  {"TOPO_SOLID_INVALID",     "critical", "solid", "Topology",                     "Invalid solid topology."},
  {"GEO_SOLID_ZERO_VOLUME",  "critical", "solid", "Solid Integrity",              "Solid has near-zero volume; may indicate missing faces/self-intersections."},
  {"TOPO_FACE_INVALID",      "critical", "face",  "Topology",                     "Invalid face topology."},
  {"FEAT_SMALL_HOLE",        "warning",  "face",  "Small Hole",                   "Small cylindrical hole-like face detected."},
  {"FEAT_SMALL_BLEND",       "warning",  "face",  "Small Fillet/Blend",           "Blend-like face radius below threshold."},
  {"GEO_FACE_TINY",          "warning",  "face",  "Tiny Face / Possible Chamfer", "Very small planar/non-planar face detected."},
  {"FEAT_SMALL_CHAMFER",     "warning",  "face",  "Small Chamfer",                "Small planar transition face detected (possible chamfer)."},
}};
// clang-format on

constexpr const ModelFaultRow& RowOf(ModelFault fault)
{
  return kModelFaults[static_cast<std::size_t>(fault)];
}

} // namespace Orvex
