// The numbers of the sub-shapes of a model: what makes the ids of summary and payloads agree.
#pragma once

#include "step/replay/ReplayId.h"

#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Shape.hxx>

#include <vector>

namespace Orvex {

class ReplayIdIndex
{
public:
  // Numbers go on from root to root; null ones are passed over.
  explicit ReplayIdIndex(const std::vector<TopoDS_Shape>& roots)
  {
    for (const TopoDS_Shape& root : roots)
      if (!root.IsNull())
        Add(root);
  }

  // Returns: 0 for a null shape and for one that is not in the map.
  static ReplayId IdIn(const TopTools_IndexedMapOfShape& map, const TopoDS_Shape& shape)
  {
    return shape.IsNull() ? 0 : static_cast<ReplayId>(map.FindIndex(shape));
  }

  // Returns: null for 0 and for an id that is not in the map.
  static const TopoDS_Shape* ShapeIn(const TopTools_IndexedMapOfShape& map, ReplayId id)
  {
    if (id == 0 || id > static_cast<ReplayId>(map.Extent()))
      return nullptr;
    return &map(static_cast<int>(id));
  }

  TopTools_IndexedMapOfShape vertices, edges, faces, shells, solids;

private:
  void Add(const TopoDS_Shape& root)
  {
    TopExp::MapShapes(root, TopAbs_VERTEX, vertices);
    TopExp::MapShapes(root, TopAbs_EDGE, edges);
    TopExp::MapShapes(root, TopAbs_FACE, faces);
    TopExp::MapShapes(root, TopAbs_SHELL, shells);
    TopExp::MapShapes(root, TopAbs_SOLID, solids);
  }
};

inline std::vector<TopoDS_Shape> RootsOf(const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  return {shape};
}

} // namespace Orvex
