// Builds the product tree of an imported document: a node per occurrence, nested assemblies
// unfolded, and a definition per product.
#pragma once

#include "assembly/AssemblyTreeMgr.h"
#include "step/internal/ShapeCollector.h"

namespace Orvex {

class ProductTree
{
public:
  // Requires: both outlive this object, and the collector has walked the document.
  ProductTree(ShapeCollector& shapeCollector, const ReadControl& readControl);

  // The node of a top-level label.
  AssemblyTreeNode RootOf(const TDF_Label& label);

  // The definitions of all parts met so far.
  AssemblyTreeMgr::Definitions& GetDefinitions();

private:
  AssemblyTreeNode NodeOf(const TDF_Label& label, const TDF_Label& occurrence);
  AssemblyTreeNode ChildOf(const TDF_Label& component);
  AssemblyTreeNode LeafOf(const TDF_Label& component, const TDF_Label& product);
  std::string Define(const TDF_Label& product, const std::string& name,
                     const std::string& shapeName);

  ShapeCollector& collector;
  const ReadControl& control;
  AssemblyTreeMgr::Definitions definitions;
};

} // namespace Orvex
