#include "collision/internal/ShapeMeshing.h"

#include "collision/internal/DisjointSets.h"
#include "collision/internal/ParallelLoop.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <TopExp_Explorer.hxx>

#include <atomic>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace Orvex {

namespace {

using Group = std::vector<TopoDS_Shape>;

std::vector<TopoDS_Shape> Distinct(const std::vector<TopoDS_Shape>& shapes)
{
  std::unordered_set<const TopoDS_TShape*> met;
  std::vector<TopoDS_Shape> distinct;
  for (const TopoDS_Shape& shape : shapes)
    if (!shape.IsNull() && met.insert(shape.TShape().get()).second)
      distinct.push_back(shape);
  return distinct;
}

// Shapes that have a face or an edge in common, which is what the mesher writes on.
std::vector<Group> GroupsOf(const std::vector<TopoDS_Shape>& shapes)
{
  DisjointSets sets(shapes.size());
  std::unordered_map<const TopoDS_TShape*, std::size_t> users;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    for (const TopAbs_ShapeEnum kind : {TopAbs_FACE, TopAbs_EDGE})
      for (TopExp_Explorer sub(shapes[i], kind); sub.More(); sub.Next()) {
        const auto [user, isNew] = users.emplace(sub.Current().TShape().get(), i);
        if (!isNew)
          sets.Join(user->second, i);
      }
  std::map<std::size_t, Group> byRoot;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    byRoot[sets.Find(i)].push_back(shapes[i]);
  std::vector<Group> groups;
  for (auto& [root, group] : byRoot)
    groups.push_back(std::move(group));
  return groups;
}

} // namespace

void MeshShape(const TopoDS_Shape& shape, const MeshFineness& fineness)
{
  try {
    // The constructor meshes.
    BRepMesh_IncrementalMesh(shape, fineness.deflection, fineness.isRelative, fineness.angle, true);
  } catch (...) {
    // What the mesher cannot do shows in the triangulation that is missing.
  }
}

int MeshDistinctShapes(const std::vector<TopoDS_Shape>& shapes, const MeshFineness& fineness,
                       const std::function<bool()>& isOver)
{
  const std::vector<Group> groups = GroupsOf(Distinct(shapes));
  std::atomic<int> meshed = 0;
  ForEachInParallel(static_cast<int>(groups.size()), [&](int i) {
    for (const TopoDS_Shape& shape : groups[static_cast<std::size_t>(i)]) {
      if (isOver())
        return;
      MeshShape(shape, fineness);
      ++meshed;
    }
  });
  return meshed;
}

} // namespace Orvex
