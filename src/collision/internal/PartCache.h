// What is made for each part of a list once and kept, when it is first needed.
#pragma once

#include <TopoDS_Shape.hxx>

#include <memory>
#include <vector>

namespace Orvex {

// Entries are made from the shapes of the list that the cache was filled for, whatever list asks
// for them later.
template <typename Entry>
class PartCache
{
public:
  void Clear()
  {
    shapes.clear();
    entries.clear();
  }

  void SetShapes(std::vector<TopoDS_Shape> shapesOfParts, double deflectionOfMeshes = 0)
  {
    shapes = std::move(shapesOfParts);
    deflection = deflectionOfMeshes;
    entries.assign(shapes.size(), {});
  }

  std::size_t Size() const
  {
    return entries.size();
  }

  double Deflection() const
  {
    return deflection;
  }

  const TopoDS_Shape& ShapeOf(int part) const
  {
    return shapes[static_cast<std::size_t>(part)];
  }

  // Those of the parts that have not been made yet and are in the list.
  std::vector<int> Missing(const std::vector<int>& parts) const
  {
    std::vector<int> missing;
    for (const int part : parts)
      if (static_cast<std::size_t>(part) < Size() &&
          !entries[static_cast<std::size_t>(part)].isMade)
        missing.push_back(part);
    return missing;
  }

  // Different parts may be set by different threads.
  void Set(int part, std::shared_ptr<const Entry> entry)
  {
    entries[static_cast<std::size_t>(part)] = {std::move(entry), true};
  }

  // Null for a part that is not in the list, was not made, or has nothing to be made of.
  std::shared_ptr<const Entry> At(int part) const
  {
    if (part < 0 || static_cast<std::size_t>(part) >= Size())
      return nullptr;
    return entries[static_cast<std::size_t>(part)].entry;
  }

private:
  struct Slot
  {
    std::shared_ptr<const Entry> entry;
    bool isMade = false;
  };

  std::vector<TopoDS_Shape> shapes;
  std::vector<Slot> entries;
  double deflection = 0;
};

} // namespace Orvex
