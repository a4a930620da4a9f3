// One finding of a model check.
#pragma once

#include <cstdint>
#include <string>

struct ModelCheckIssue
{
  // Place of the shape in the list that was checked, from 0.
  std::int32_t shapeIndex = -1;
  // Which sub-shape, from 1; -1 for the shape as a whole. Edges count by the kernel's map of edges
  // with their faces, each once; wires, solids and faces by the steps of a TopExp_Explorer, so that
  // one that occurs twice has two numbers.
  std::int32_t subIndex = -1;
  // "critical" or "warning".
  std::string severity;
  // "TOPO_SHAPE_INVALID", ...: for programs; see ModelCheckAnalyzer.
  std::string code;
  // "shape", "edge", "wire", "solid" or "face".
  std::string entityType;
  // A group of codes, for people.
  std::string category;
  std::string message;
  // What was measured, and the limit that it was compared with; both 0 where there is no measure.
  double value = 0;
  double threshold = 0;
};
