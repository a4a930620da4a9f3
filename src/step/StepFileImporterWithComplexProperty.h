// A plain STEP importer that walks every sub-shape and prints a text report per shape. No thread,
// no document, no names from the file.
//
//   Orvex::StepFileImporterWithComplexProperty importer;
//   if (importer.ImportFile("bolt.step"))
//     for (const auto& item : importer.GetAssemblyItems())
//       std::cout << item->info;
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>
#include <gp_Trsf.hxx>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvex {

// One shape or sub-shape.
struct AssemblyItem
{
  std::string name;                 // "Shape_" and the index, which is not unique: see below
  TopoDS_Shape shape;               // located
  gp_Trsf transformation;           // of the shape's location
  double angle = 0.0;               // radians, of the placed X axis against the X axis about Z
  std::array<double, 3> axis{};     // the placed Z axis
  std::array<double, 3> position{}; // the placed origin, millimetres
  std::map<std::string, std::string> properties; // for the application; the importer fills none
  std::string info;                              // the text report
};

class ORVEX_API StepFileImporterWithComplexProperty
{
public:
  // Reads a file (path in the file system's encoding) and appends its shapes to the items: each
  // root, followed by its sub-shapes, depth first. A root has its number as index; the first child
  // of a shape has the index of that shape plus 1, the next ones count on from there, whatever
  // their siblings' children took. Indices therefore repeat.
  // Returns: false if the file cannot be read; true otherwise, also when there was no shape in it.
  // Errors: exceptions of the kernel pass through.
  bool ImportFile(const char* path);

  const std::vector<std::shared_ptr<AssemblyItem>>& GetAssemblyItems() const;

  // Name to shape; of items with equal names the last one.
  std::map<std::string, TopoDS_Shape> GetUniqueShapes() const;

private:
  void ExtractShapeInfo(const TopoDS_Shape& shape, int index);
  static std::string GenerateShapeInfoString(const AssemblyItem& item);

  std::vector<std::shared_ptr<AssemblyItem>> items;
};

} // namespace Orvex
