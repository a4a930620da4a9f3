// The search behind InterferenceChecker::FindInterferences...: a tree of boxes, joined with itself,
// and a boolean for each pair of shapes in leaves that meet.
#pragma once

#include "collision/InterferenceChecker.h"

#include <Bnd_Box.hxx>

#include <array>
#include <unordered_set>

namespace Orvex {

class InterferenceSearch
{
public:
  using Shapes = InterferenceChecker::Shapes;
  using Pairs = InterferenceChecker::IndexPairs;

  InterferenceSearch(const Shapes& shapes, double tolerance,
                     const InterferenceChecker::MeshOptions& filter,
                     const InterferenceChecker::Continue& progress);

  Pairs Run();

private:
  static constexpr int kMaxShapesPerLeaf = 4;

  struct Node
  {
    Bnd_Box box;
    int left = -1; // -1 in both: a leaf
    int right = -1;
    int begin = 0; // range of `order`
    int end = 0;

    bool IsLeaf() const
    {
      return left < 0;
    }
    int Count() const
    {
      return end - begin;
    }
  };

  void MeasureShapes(double tolerance);
  int Build(int begin, int end);
  void Join();
  bool TryLeaves(const Node& a, const Node& b);
  void TryRow(int position, const Node& a, const Node& b);
  void TryPair(std::size_t first, std::size_t second);
  bool IsFarByMesh(const TopoDS_Shape& first, const TopoDS_Shape& second);
  void MeshOnce(const TopoDS_Shape& shape);

  const Shapes& shapes;
  InterferenceChecker::MeshOptions filter;
  const InterferenceChecker::Continue& progress;
  std::vector<Bnd_Box> boxes;      // with the tolerance as the gap
  std::vector<Bnd_Box> outerBoxes; // around the shape, its own gap and the tolerance
  std::vector<std::array<double, 3>> centres;
  std::vector<int> order; // positions in `shapes`
  std::vector<Node> nodes;
  std::unordered_set<std::uint64_t> seen;
  std::unordered_set<const TopoDS_TShape*> meshed;
  std::size_t done = 0;
  Pairs found;
};

} // namespace Orvex
