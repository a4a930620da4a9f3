#include "collision/internal/RegionReduction.h"

#include "collision/internal/DisjointSets.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepTools.hxx>
#include <BRepTools_ReShape.hxx>
#include <BRep_Builder.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>

#include <algorithm>
#include <map>
#include <set>

namespace Orvex {

namespace {

// Below this many faces the boolean is as fast as looking for features.
constexpr int kFewFaces = 24;

TopoDS_Shape Without(const TopTools_MapOfShape& wires, const TopoDS_Shape& face)
{
  const TopoDS_Shape forward = face.Oriented(TopAbs_FORWARD);
  TopoDS_Shape reduced = forward.EmptyCopied();
  for (TopoDS_Iterator wire(forward); wire.More(); wire.Next())
    if (!wires.Contains(wire.Value()))
      BRep_Builder().Add(reduced, wire.Value());
  return reduced.Oriented(face.Orientation());
}

} // namespace

RegionReduction::RegionReduction(const TopoDS_Shape& shape_) : shape(shape_)
{
  TopExp::MapShapes(shape, TopAbs_FACE, faces);
  for (int i = 1; i <= faces.Extent(); ++i) {
    Bnd_Box box;
    BRepBndLib::Add(faces(i), box, false);
    boxes.push_back(box);
    whole.Add(box);
  }
}

const Bnd_Box& RegionReduction::Box() const
{
  return whole;
}

TopoDS_Shape RegionReduction::ReducedTo(const BoxLimits& region)
{
  if (faces.Extent() < kFewFaces)
    return shape;
  Bnd_Box box;
  box.Update(region.min[0], region.min[1], region.min[2], region.max[0], region.max[1],
             region.max[2]);
  TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, facesOfEdges);
  FindInnerWires();
  GatherFeatures();
  DropFeaturesOutside(box);
  KeepBearers();
  return WinsEnough() ? Rebuilt() : shape;
}

std::size_t RegionReduction::NumberOf(const TopoDS_Shape& face) const
{
  return static_cast<std::size_t>(faces.FindIndex(face) - 1);
}

void RegionReduction::FindInnerWires()
{
  for (int i = 1; i <= faces.Extent(); ++i) {
    const TopoDS_Face& face = TopoDS::Face(faces(i));
    if (face.NbChildren() > 1 && BRepAdaptor_Surface(face, false).GetType() == GeomAbs_Plane)
      FindInnerWiresOf(face);
  }
}

// The outer wire is the one with the largest box.
void RegionReduction::FindInnerWiresOf(const TopoDS_Face& face)
{
  std::vector<InnerWire> wires;
  std::size_t outer = 0;
  double largest = -1;
  for (TopoDS_Iterator wire(face); wire.More(); wire.Next()) {
    Bnd_Box box;
    for (TopoDS_Iterator edge(wire.Value()); edge.More(); edge.Next())
      BRepBndLib::Add(edge.Value(), box, false);
    const double extent = box.IsVoid() ? 0 : box.SquareExtent();
    if (extent > largest) {
      largest = extent;
      outer = wires.size();
    }
    wires.push_back({wire.Value(), NumberOf(face), {}});
  }
  for (std::size_t i = 0; i < wires.size(); ++i)
    if (i != outer && FindNeighbours(wires[i]))
      innerWires.push_back(std::move(wires[i]));
}

// False for a wire with an edge that does not lie between its face and just one other.
bool RegionReduction::FindNeighbours(InnerWire& wire) const
{
  if (wire.wire.ShapeType() != TopAbs_WIRE)
    return false;
  for (TopoDS_Iterator edge(wire.wire); edge.More(); edge.Next()) {
    const int number = facesOfEdges.FindIndex(edge.Value());
    if (number == 0 || facesOfEdges(number).Extent() != 2)
      return false;
    const TopTools_ListOfShape& sides = facesOfEdges(number);
    const std::size_t first = NumberOf(sides.First()), second = NumberOf(sides.Last());
    if ((first == wire.carrier) == (second == wire.carrier))
      return false;
    wire.neighbours.push_back(first == wire.carrier ? second : first);
  }
  return !wire.neighbours.empty();
}

void RegionReduction::GatherFeatures()
{
  TopTools_MapOfShape cuts;
  for (const InnerWire& wire : innerWires)
    for (TopoDS_Iterator edge(wire.wire); edge.More(); edge.Next())
      cuts.Add(edge.Value());
  DisjointSets sets(boxes.size());
  for (int i = 1; i <= facesOfEdges.Extent(); ++i)
    if (!cuts.Contains(facesOfEdges.FindKey(i)))
      for (const TopoDS_Shape& face : facesOfEdges(i))
        sets.Join(NumberOf(facesOfEdges(i).First()), NumberOf(face));
  for (std::size_t i = 0; i < boxes.size(); ++i)
    feature.push_back(sets.Find(i));
}

void RegionReduction::DropFeaturesOutside(const Bnd_Box& region)
{
  std::vector<Bnd_Box> boxOf(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i)
    boxOf[feature[i]].Add(boxes[i]);
  for (const Bnd_Box& box : boxOf)
    isDropped.push_back(!box.IsVoid() && box.IsOut(region));
}

// Until nothing changes: a feature that bears one which stays, stays; so do all that share a wire
// with one which stays, or close a wire of their own.
void RegionReduction::KeepBearers()
{
  for (bool changed = true; changed;) {
    changed = false;
    for (const InnerWire& wire : innerWires) {
      std::set<std::size_t> features;
      for (const std::size_t face : wire.neighbours)
        features.insert(feature[face]);
      const std::size_t bearer = feature[wire.carrier];
      const auto stays = [this](std::size_t one) { return !isDropped[one]; };
      if (features.count(bearer) == 0 && std::none_of(features.begin(), features.end(), stays))
        continue;
      features.insert(bearer);
      for (const std::size_t one : features) {
        changed = changed || isDropped[one];
        isDropped[one] = false;
      }
    }
  }
}

// A shape that is outside of the region as a whole stays as it is.
bool RegionReduction::WinsEnough() const
{
  const auto dropped = std::count_if(feature.begin(), feature.end(),
                                     [this](std::size_t one) { return isDropped[one]; });
  return dropped > 0 && dropped < std::ssize(feature);
}

TopoDS_Shape RegionReduction::Rebuilt() const
{
  std::map<std::size_t, TopTools_MapOfShape> droppedWires;
  for (const InnerWire& wire : innerWires)
    if (isDropped[feature[wire.neighbours.front()]])
      droppedWires[wire.carrier].Add(wire.wire);
  BRepTools_ReShape changes;
  for (std::size_t i = 0; i < feature.size(); ++i) {
    const TopoDS_Shape& face = faces(static_cast<int>(i + 1));
    if (isDropped[feature[i]])
      changes.Remove(face);
    else if (const auto wires = droppedWires.find(i); wires != droppedWires.end())
      changes.Replace(face, Without(wires->second, face));
  }
  return changes.Apply(shape);
}

void RemoveMeshesOfNewFaces(const TopoDS_Shape& reduction, const TopoDS_Shape& shape)
{
  if (reduction.IsSame(shape))
    return;
  TopTools_IndexedMapOfShape known, all;
  TopExp::MapShapes(shape, TopAbs_FACE, known);
  TopExp::MapShapes(reduction, TopAbs_FACE, all);
  for (int i = 1; i <= all.Extent(); ++i)
    if (!known.Contains(all(i)))
      BRepTools::Clean(all(i));
}

} // namespace Orvex
