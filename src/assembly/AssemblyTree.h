// Records of the product tree: placements, part definitions, nodes. Plain values: copying a node
// copies its whole subtree.
#pragma once

#include <array>
#include <string>
#include <vector>

// A placement as a 4 by 4 matrix in row-major order: rotation in the upper left 3 by 3, translation
// (model units) in the last column, last row 0, 0, 0, 1.
struct AssemblyTransform
{
  std::array<double, 16> matrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  static AssemblyTransform Identity()
  {
    return {};
  }

  bool operator==(const AssemblyTransform&) const = default;
};

// What several occurrences of a part have in common.
struct AssemblyPartDefinition
{
  std::string partId; // the key in the table of definitions
  std::string name;
  std::string shapeName; // name of the shape among the imported shapes; empty: none

  bool operator==(const AssemblyPartDefinition&) const = default;
};

struct AssemblyTreeNode
{
  std::string id;              // meant to be unique in the tree; empty only in a default node
  std::string partId;          // key of the part definition; empty for an assembly
  AssemblyTransform transform; // placement in the parent
  std::string name;            // for display
  std::string shapeName;       // name of the shape among the imported shapes; empty: none
  bool isAssembly = false;     // only an assembly may have children
  std::vector<AssemblyTreeNode> children; // in display order

  bool operator==(const AssemblyTreeNode&) const = default;
};
