// Where a ray first strikes a whole shape, by the triangles of its faces.
//
// A shape's triangles are taken, and its faces meshed where they have none, at its first pick or at
// Initialize, and kept for the life of the process: nothing brings them up to date or gives them
// back.
//
// Caveat: shapes are told apart by their hash (TShape and location) alone, so two shapes whose
// hashes are equal share the triangles of the one seen first. In a shape edited in place under the
// same TShape a pick finds the old triangles.
// Caveat: no lock but for the making of the instance. One thread at a time.
#pragma once

#include "foundation/Export.h"
#include "picking/OrvexPickShapeData.h"
#include "picking/PickResultsOutput.h"

#include <gp_Dir.hxx>

#include <map>
#include <memory>
#include <vector>

class ORVEX_API OrvexFaceTriangulationPicker
{
public:
  static OrvexFaceTriangulationPicker* GetInstance();
  ~OrvexFaceTriangulationPicker();

  // Takes the triangles of shapes that were not seen before, ahead of the first pick.
  // Errors: exceptions of the kernel's mesher pass.
  void Initialize(const std::vector<TopoDS_Shape>& shapes);
  void Initialize(const TopoDS_Shape& shape);

  // The nearest triangle that the ray strikes, from either side; a triangle that the origin lies on
  // is not struck. What is not set by a pick, shapeIndex and reserved, is 0.
  // Returns: on a miss `hit` false and `parameter` 1.7976931348623157e308.
  // The debug log gets two lines while it wants detail (OrvexDebugLogFile::WantsDetail).
  PickResultsOutput Pick(TopoDS_Shape& shape, const gp_Pnt& origin, const gp_Dir& direction);

private:
  struct ByHash
  {
    bool operator()(const TopoDS_Shape& a, const TopoDS_Shape& b) const;
  };

  OrvexFaceTriangulationPicker() = default;
  OrvexFaceTriangulationPicker(const OrvexFaceTriangulationPicker&) = delete;
  OrvexFaceTriangulationPicker& operator=(const OrvexFaceTriangulationPicker&) = delete;

  const OrvexPickShapeData& DataOf(const TopoDS_Shape& shape);
  void Clear();

  std::map<TopoDS_Shape, std::unique_ptr<OrvexPickShapeData>, ByHash> entries;
};
