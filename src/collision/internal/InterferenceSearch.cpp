#include "collision/internal/InterferenceSearch.h"

#include "collision/internal/ExactStages.h"
#include "kernel/internal/BoxLimits.h"
#include "kernel/internal/OperandKeeping.h"

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <StdFail_NotDone.hxx>
#include <TopExp_Explorer.hxx>

#include <algorithm>

namespace Orvex {

namespace {

bool HasVertex(const TopoDS_Shape& shape)
{
  return TopExp_Explorer(shape, TopAbs_VERTEX).More();
}

} // namespace

InterferenceSearch::InterferenceSearch(const Shapes& shapes_, double tolerance,
                                       const InterferenceChecker::MeshOptions& filter_,
                                       const InterferenceChecker::Continue& progress_)
    : shapes(shapes_), filter(filter_), progress(progress_)
{
  MeasureShapes(tolerance);
  if (!order.empty())
    Build(0, static_cast<int>(order.size()));
}

InterferenceSearch::Pairs InterferenceSearch::Run()
{
  if (!nodes.empty())
    Join();
  return std::move(found);
}

// Shapes without a box stay out of the tree: they have nothing in common with anything.
void InterferenceSearch::MeasureShapes(double tolerance)
{
  for (const TopoDS_Shape& shape : shapes) {
    Bnd_Box box;
    if (!shape.IsNull())
      BRepBndLib::Add(shape, box, true);
    outerBoxes.push_back(box);
    if (!box.IsVoid()) {
      outerBoxes.back().Enlarge(tolerance);
      box.SetGap(tolerance);
      order.push_back(static_cast<int>(boxes.size()));
    }
    boxes.push_back(box);
    const BoxLimits limits = LimitsOf(box).value_or(BoxLimits());
    centres.push_back({limits.Middle(0), limits.Middle(1), limits.Middle(2)});
  }
}

// Parents before their children: the root is node 0.
int InterferenceSearch::Build(int begin, int end)
{
  const int number = static_cast<int>(nodes.size());
  const auto at = [](int i) { return static_cast<std::size_t>(i); };
  nodes.push_back({{}, -1, -1, begin, end});
  Bnd_Box box;
  for (int i = begin; i < end; ++i)
    box.Add(boxes[at(order[at(i)])]);
  nodes[at(number)].box = box;
  if (end - begin <= kMaxShapesPerLeaf)
    return number;
  const std::size_t axis = LimitsOf(box).value_or(BoxLimits()).LongestAxis();
  const int middle = begin + (end - begin) / 2;
  const auto key = [&](int shape) {
    return std::make_pair(SortKey(centres[at(shape)][axis]), shape);
  };
  std::nth_element(order.begin() + begin, order.begin() + middle, order.begin() + end,
                   [&](int a, int b) { return key(a) < key(b); });
  const int left = Build(begin, middle);
  const int right = Build(middle, end);
  nodes[at(number)].left = left;
  nodes[at(number)].right = right;
  return number;
}

void InterferenceSearch::Join()
{
  std::vector<std::pair<int, int>> stack{{0, 0}};
  while (!stack.empty()) {
    const auto [first, second] = stack.back();
    stack.pop_back();
    const Node& a = nodes[static_cast<std::size_t>(first)];
    const Node& b = nodes[static_cast<std::size_t>(second)];
    if (a.box.IsOut(b.box))
      continue;
    if (a.IsLeaf() && b.IsLeaf()) {
      if (!TryLeaves(a, b))
        return;
    } else if (a.Count() < b.Count()) {
      stack.emplace_back(first, b.left);
      stack.emplace_back(first, b.right);
    } else {
      stack.emplace_back(a.left, second);
      stack.emplace_back(a.right, second);
    }
  }
}

// False once the caller has had enough.
bool InterferenceSearch::TryLeaves(const Node& a, const Node& b)
{
  for (int i = a.begin; i < a.end; ++i) {
    TryRow(i, a, b);
    done += static_cast<std::size_t>(a.Count()) * static_cast<std::size_t>(b.Count());
    if (progress && !progress(done, shapes.size()))
      return false;
  }
  return true;
}

void InterferenceSearch::TryRow(int position, const Node& a, const Node& b)
{
  for (int j = a.begin == b.begin ? position + 1 : b.begin; j < b.end; ++j) {
    const auto [first, second] =
      std::minmax({order[static_cast<std::size_t>(position)], order[static_cast<std::size_t>(j)]});
    const auto key = static_cast<std::uint64_t>(first) << 32 | static_cast<std::uint32_t>(second);
    if (first != second && seen.insert(key).second)
      TryPair(static_cast<std::size_t>(first), static_cast<std::size_t>(second));
  }
}

void InterferenceSearch::TryPair(std::size_t first, std::size_t second)
{
  // Leaves hold shapes that are apart, too. Those have nothing in common.
  if (outerBoxes[first].IsOut(outerBoxes[second]))
    return;
  if (filter.enabled && IsFarByMesh(shapes[first], shapes[second]))
    return;
  const TopoDS_Shape common = BooleanOf(BOPAlgo_COMMON, shapes[first], shapes[second]);
  if (common.IsNull())
    throw StdFail_NotDone("no common of two shapes");
  if (HasVertex(common))
    found.emplace_back(first, second);
}

bool InterferenceSearch::IsFarByMesh(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  MeshOnce(first);
  MeshOnce(second);
  const auto distance = ExactDistanceOf(first, second);
  if (!distance)
    throw StdFail_NotDone("no distance between two shapes");
  return distance->value > 2 * filter.linearDeflection;
}

void InterferenceSearch::MeshOnce(const TopoDS_Shape& shape)
{
  if (meshed.insert(shape.TShape().get()).second)
    BRepMesh_IncrementalMesh(shape, filter.linearDeflection, false, filter.angularDeflection, true);
}

} // namespace Orvex
