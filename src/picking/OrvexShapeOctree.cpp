#include "picking/OrvexShapeOctree.h"

#include "kernel/internal/BoxLimits.h"
#include "picking/internal/LineBox.h"

#include <BRepBndLib.hxx>

#include <utility>

struct OrvexShapeOctree::Node
{
  Bnd_Box box;
  // Empty on an inner node.
  std::vector<TopoDS_Shape> shapes;
  // All null on a leaf, all set on an inner node.
  std::array<std::unique_ptr<Node>, 8> children;

  bool IsLeaf() const
  {
    return children.front() == nullptr;
  }
};

namespace {

constexpr Orvex::SlabRule kCrossing = {2.220446049250313e-16, false};

Bnd_Box BoxOf(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box, true);
  return box;
}

bool IntersectRayBox(const gp_Lin& ray, const Bnd_Box& box)
{
  const auto limits = Orvex::LimitsOf(box);
  return limits &&
         Orvex::SpanInBox(ray.Location().XYZ(), ray.Direction().XYZ(), *limits, kCrossing);
}

bool IsWithin(const Bnd_Box& box, const gp_Pnt& point, double radius)
{
  const auto limits = Orvex::LimitsOf(box);
  if (!limits)
    return false;
  double square = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double value = point.XYZ().GetData()[axis];
    // What is no number stays none, and is near nothing.
    const double gap = value < limits->min[axis]   ? limits->min[axis] - value
                       : value > limits->max[axis] ? value - limits->max[axis]
                                                   : value - value;
    square += gap * gap;
  }
  return square <= radius * radius;
}

// Bit 0 of `child` takes the upper half in X, bit 1 in Y, bit 2 in Z.
Bnd_Box CellOf(const Orvex::BoxLimits& parent, std::size_t child)
{
  Orvex::BoxLimits cell = parent;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double middle = (parent.min[axis] + parent.max[axis]) * 0.5;
    ((child >> axis & 1U) != 0 ? cell.min : cell.max)[axis] = middle;
  }
  Bnd_Box box;
  box.Update(cell.min[0], cell.min[1], cell.min[2], cell.max[0], cell.max[1], cell.max[2]);
  return box;
}

template <typename Node, typename ReachesCell, typename Keeps>
void Collect(const Node& node, const ReachesCell& reachesCell, const Keeps& keeps,
             std::vector<TopoDS_Shape>& found)
{
  if (!reachesCell(node.box))
    return;
  for (const auto& child : node.children)
    if (child != nullptr)
      Collect(*child, reachesCell, keeps, found);
  for (const TopoDS_Shape& shape : node.shapes)
    if (keeps(BoxOf(shape)))
      found.push_back(shape);
}

} // namespace

OrvexShapeOctree::OrvexShapeOctree(const Bnd_Box& box, int depth, int shapesPerNode)
    : root(std::make_unique<Node>()), maxDepth(depth), maxShapesPerNode(shapesPerNode)
{
  root->box = box;
}

OrvexShapeOctree::~OrvexShapeOctree() = default;

void OrvexShapeOctree::Insert(const TopoDS_Shape& shape)
{
  InsertShapeRecursive(*root, shape, BoxOf(shape), 0);
}

void OrvexShapeOctree::InsertShapes(const std::vector<TopoDS_Shape>& shapes)
{
  for (const TopoDS_Shape& shape : shapes)
    Insert(shape);
}

void OrvexShapeOctree::InsertShapeRecursive(Node& node, const TopoDS_Shape& shape,
                                            const Bnd_Box& shapeBox, int depth)
{
  if (node.box.IsOut(shapeBox))
    return;
  if (!node.IsLeaf()) {
    for (const auto& child : node.children)
      InsertShapeRecursive(*child, shape, shapeBox, depth + 1);
    return;
  }
  if (depth >= maxDepth || static_cast<int>(node.shapes.size()) < maxShapesPerNode) {
    node.shapes.push_back(shape);
    return;
  }
  Split(node, depth);
  InsertShapeRecursive(node, shape, shapeBox, depth + 1);
}

// The node's shapes enter it again at the next depth, so they come to its children two deeper.
void OrvexShapeOctree::Split(Node& node, int depth)
{
  const Orvex::BoxLimits limits = *Orvex::LimitsOf(node.box);
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    node.children[i] = std::make_unique<Node>();
    node.children[i]->box = CellOf(limits, i);
  }
  for (const TopoDS_Shape& shape : std::exchange(node.shapes, {}))
    InsertShapeRecursive(node, shape, BoxOf(shape), depth + 1);
}

std::vector<TopoDS_Shape> OrvexShapeOctree::GetAllShapes() const
{
  return GetShapesInBox(root->box);
}

const Bnd_Box& OrvexShapeOctree::GetBoundingBox() const
{
  return root->box;
}

std::vector<TopoDS_Shape> OrvexShapeOctree::GetCandidateShapes(const gp_Lin& ray,
                                                               double tolerance) const
{
  std::vector<TopoDS_Shape> found;
  Collect(
    *root, [&](const Bnd_Box& cell) { return IntersectRayBox(ray, cell); },
    [&](Bnd_Box box) {
      box.Enlarge(tolerance);
      return IntersectRayBox(ray, box);
    },
    found);
  return found;
}

std::vector<TopoDS_Shape> OrvexShapeOctree::GetNearestShapes(const gp_Pnt& point,
                                                             double radius) const
{
  std::vector<TopoDS_Shape> found;
  const auto isWithin = [&](const Bnd_Box& box) { return IsWithin(box, point, radius); };
  Collect(*root, isWithin, isWithin, found);
  return found;
}

std::vector<TopoDS_Shape> OrvexShapeOctree::GetShapesInBox(const Bnd_Box& box) const
{
  std::vector<TopoDS_Shape> found;
  const auto isNotOut = [&](const Bnd_Box& other) { return !other.IsOut(box); };
  Collect(*root, isNotOut, isNotOut, found);
  return found;
}
