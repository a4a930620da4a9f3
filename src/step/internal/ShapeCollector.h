// Walks an imported document and collects its shapes under unique names, with their colours.
//
// The occurrences of an assembly give one shape each, a sub-assembly as a whole; a product that is
// a bag of bodies gives its bodies.
#pragma once

#include "step/StepShapeData.h"
#include "step/internal/LabelReading.h"
#include "step/internal/ReadControl.h"

#include <XCAFDoc_ColorTool.hxx>

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvex {

class ShapeCollector
{
public:
  // Requires: everything given by reference outlives this object.
  ShapeCollector(const opencascade::handle<XCAFDoc_ColorTool>& colorTool,
                 std::string nameForUnnamed, std::map<std::string, TopoDS_Shape>& shapesByName,
                 std::vector<StepShapeData>& shapeList, const ReadControl& readControl);

  void Collect(const TDF_Label& label);

  // The first name under which this shape was collected that was not taken yet; empty if there is
  // none. Shapes with equal hashes count as one.
  std::string TakeNameOf(const TopoDS_Shape& shape);

private:
  void CollectComponent(const TDF_Label& component);
  void CollectBodies(const TDF_Label& label, const TopoDS_Shape& shape);
  void Add(const TopoDS_Shape& shape, const std::string& proposedName,
           const std::optional<Quantity_Color>& color);
  std::string UniqueName(const std::string& proposedName) const;

  struct Names
  {
    std::vector<std::string> all;
    std::size_t taken = 0;
  };

  opencascade::handle<XCAFDoc_ColorTool> colors;
  std::string baseName;
  std::map<std::string, TopoDS_Shape>& shapes;
  std::vector<StepShapeData>& list;
  const ReadControl& control;
  int runningNumber = 1;
  std::unordered_map<int, Names> namesByHash;
};

} // namespace Orvex
