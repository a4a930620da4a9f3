#include "collision/internal/ShapeMeshing.h"

#include "collision/internal/ParallelLoop.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <TopExp_Explorer.hxx>

#include <atomic>
#include <map>
#include <numeric>
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

// Sets of positions that are joined by and by.
class Unions
{
public:
  explicit Unions(std::size_t count) : parents(count)
  {
    std::iota(parents.begin(), parents.end(), std::size_t(0));
  }

  std::size_t Find(std::size_t i)
  {
    while (parents[i] != i)
      i = parents[i] = parents[parents[i]];
    return i;
  }

  // The lower root stays one.
  void Join(std::size_t i, std::size_t j)
  {
    const auto [low, high] = std::minmax({Find(i), Find(j)});
    parents[high] = low;
  }

private:
  std::vector<std::size_t> parents;
};

// Shapes that have a face or an edge in common, which is what the mesher writes on.
std::vector<Group> GroupsOf(const std::vector<TopoDS_Shape>& shapes)
{
  Unions unions(shapes.size());
  std::unordered_map<const TopoDS_TShape*, std::size_t> users;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    for (const TopAbs_ShapeEnum kind : {TopAbs_FACE, TopAbs_EDGE})
      for (TopExp_Explorer sub(shapes[i], kind); sub.More(); sub.Next()) {
        const auto [user, isNew] = users.emplace(sub.Current().TShape().get(), i);
        if (!isNew)
          unions.Join(user->second, i);
      }
  std::map<std::size_t, Group> byRoot;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    byRoot[unions.Find(i)].push_back(shapes[i]);
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
