// The triangles of one shape and the tree over them.
#pragma once

#include "foundation/Export.h"
#include "picking/OrvexKDTree.h"
#include "picking/OrvexTriangleData.h"

#include <TopoDS_Shape.hxx>

#include <memory>
#include <optional>
#include <vector>

class ORVEX_API OrvexPickShapeData
{
public:
  OrvexPickShapeData() = default;
  // Keeps the shape and does no other work.
  explicit OrvexPickShapeData(const TopoDS_Shape& shape);

  // Takes the triangles of the faces as they are, whatever their deflection, and makes the tree. A
  // face without any is meshed first (linear deflection 0.1, angular 0.5 rad), and keeps its mesh;
  // one that can't be meshed gives no triangles.
  // Errors: exceptions of the kernel's mesher pass.
  void Initialize();

  const TopoDS_Shape& GetShape() const;
  // As they were at Initialize, in the order of the faces. The list is made, and kept, at the first
  // call: it takes more memory than the tree.
  const std::vector<OrvexTriangleData>& GetTriangles() const;
  // Null before Initialize.
  const OrvexKDTree* GetKDTree() const;

private:
  TopoDS_Shape shape;
  std::unique_ptr<OrvexKDTree> tree;
  mutable std::optional<std::vector<OrvexTriangleData>> triangles;
};
