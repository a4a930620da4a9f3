#include "step/rebuild/internal/OperandPartition.h"

#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Shell.hxx>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

namespace Orvex {

namespace {

using BuiltFaces = std::vector<PayloadTopology::BuiltFace>;

// Sets of faces that grow together.
class Groups
{
public:
  explicit Groups(std::size_t count) : parent(count)
  {
    std::iota(parent.begin(), parent.end(), std::size_t{0});
  }

  std::size_t Of(std::size_t member)
  {
    while (parent[member] != member)
      member = parent[member] = parent[parent[member]];
    return member;
  }

  // The smaller number leads, so that the order of the faces stays.
  void Join(std::size_t first, std::size_t second)
  {
    first = Of(first);
    second = Of(second);
    parent[std::max(first, second)] = std::min(first, second);
  }

private:
  std::vector<std::size_t> parent;
};

// An inner loop of a face, and the faces on its other side.
struct InnerLoop
{
  std::size_t face = 0;
  TopoDS_Wire wire;
  std::vector<std::size_t> others;
};

class BodyGraph
{
public:
  explicit BodyGraph(const BuiltFaces& built) : faces(built), groups(built.size())
  {
    MapEdges();
    for (std::size_t face = 0; face < faces.size(); ++face)
      for (const TopoDS_Wire& wire : faces[face].innerLoops)
        loops.push_back({face, wire, FacesAlong(wire, face)});
    JoinAcrossEdges();
    JoinWithinLoops();
  }

  std::size_t GroupOf(std::size_t face)
  {
    return groups.Of(face);
  }

  void Join(std::size_t first, std::size_t second)
  {
    groups.Join(first, second);
    JoinWithinLoops();
  }

  // Loops that part two operands; those whose other side belongs to the same one are not.
  std::vector<InnerLoop> PartingLoops()
  {
    std::vector<InnerLoop> parting;
    std::copy_if(loops.begin(), loops.end(), std::back_inserter(parting),
                 [&](const InnerLoop& loop) { return Parts(loop); });
    return parting;
  }

private:
  void MapEdges()
  {
    for (std::size_t face = 0; face < faces.size(); ++face)
      for (TopExp_Explorer at(faces[face].face, TopAbs_EDGE); at.More(); at.Next())
        facesOf[at.Current()].insert(face);
  }

  std::vector<std::size_t> FacesAlong(const TopoDS_Wire& wire, std::size_t but) const
  {
    std::set<std::size_t> found;
    for (TopExp_Explorer at(wire, TopAbs_EDGE); at.More(); at.Next()) {
      const std::set<std::size_t>& along = facesOf.at(at.Current());
      found.insert(along.begin(), along.end());
    }
    found.erase(but);
    return {found.begin(), found.end()};
  }

  void JoinAcrossEdges()
  {
    TopTools_MapOfShape inner;
    for (const InnerLoop& loop : loops)
      for (TopExp_Explorer at(loop.wire, TopAbs_EDGE); at.More(); at.Next())
        inner.Add(at.Current());
    for (const auto& [edge, along] : facesOf)
      if (!inner.Contains(edge))
        for (const std::size_t face : along)
          groups.Join(*along.begin(), face);
  }

  // What stands within one loop is one operand. That may undo other partings, so it is repeated.
  void JoinWithinLoops()
  {
    for (bool changed = true; changed;) {
      changed = false;
      for (const InnerLoop& loop : loops)
        for (const std::size_t other : loop.others)
          if (Parts(loop) && groups.Of(other) != groups.Of(loop.others.front())) {
            groups.Join(other, loop.others.front());
            changed = true;
          }
    }
  }

  bool Parts(const InnerLoop& loop)
  {
    return !loop.others.empty() &&
           std::none_of(loop.others.begin(), loop.others.end(), [&](std::size_t other) {
             return groups.Of(other) == groups.Of(loop.face);
           });
  }

  struct EdgeOrder
  {
    bool operator()(const TopoDS_Shape& first, const TopoDS_Shape& second) const
    {
      return first.TShape().get() < second.TShape().get();
    }
  };

  const BuiltFaces& faces;
  Groups groups;
  std::map<TopoDS_Shape, std::set<std::size_t>, EdgeOrder> facesOf;
  std::vector<InnerLoop> loops;
};

// The face without the loops that part it from what stands on it.
TopoDS_Face WithoutLoops(const TopoDS_Face& face, const TopTools_MapOfShape& parting)
{
  const BRep_Builder builder;
  TopoDS_Face bare = TopoDS::Face(face.EmptyCopied().Oriented(TopAbs_FORWARD));
  for (TopExp_Explorer at(face.Oriented(TopAbs_FORWARD), TopAbs_WIRE); at.More(); at.Next())
    if (!parting.Contains(at.Current()))
      builder.Add(bare, at.Current());
  return TopoDS::Face(bare.Oriented(face.Orientation()));
}

// The piece of the face that the loop cuts out, seen from the other side.
TopoDS_Face PieceWithin(const TopoDS_Wire& loop, const TopoDS_Face& face)
{
  TopoDS_Face piece = TopoDS::Face(face.EmptyCopied().Oriented(TopAbs_FORWARD));
  BRep_Builder().Add(piece, loop.Reversed());
  return TopoDS::Face(piece.Oriented(TopAbs::Reverse(face.Orientation())));
}

TopoDS_Shell Shelled(const std::vector<TopoDS_Face>& faces)
{
  const BRep_Builder builder;
  TopoDS_Shell shell;
  builder.MakeShell(shell);
  for (const TopoDS_Face& face : faces)
    builder.Add(shell, face);
  return shell;
}

double VolumeOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(shape, properties);
  return properties.Mass();
}

// Whether the shell encloses nothing: a piece that is only drawn on a face, not raised from it.
bool IsFlat(const TopoDS_Shape& shell)
{
  constexpr double kFlat = 1e-6;
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(shell, properties);
  return std::abs(VolumeOf(shell)) < kFlat * std::pow(properties.Mass(), 1.5);
}

// Returns: false for faces that leave an opening.
bool Close(const std::vector<TopoDS_Face>& faces, Operand& operand)
{
  const BRep_Builder builder;
  TopoDS_Shell shell = Shelled(faces);
  if (!BRep_Tool::IsClosed(shell))
    return false;
  shell.Closed(true);
  operand.adds = VolumeOf(shell) > 0;
  builder.MakeSolid(operand.solid);
  builder.Add(operand.solid, operand.adds ? shell : shell.Reversed());
  return true;
}

Partition FailedPartition(const char* failure)
{
  return {{}, failure};
}

// The faces of each part of a body, with the pieces that close it off.
class PartedFaces
{
public:
  PartedFaces(const BuiltFaces& faces, BodyGraph& graph)
  {
    const std::vector<InnerLoop> loops = graph.PartingLoops();
    TopTools_MapOfShape parting;
    for (const InnerLoop& loop : loops)
      parting.Add(loop.wire);
    for (std::size_t face = 0; face < faces.size(); ++face) {
      Part& part = parts[graph.GroupOf(face)];
      part.faces.push_back(WithoutLoops(faces[face].face, parting));
      part.ids.push_back(faces[face].id);
    }
    for (const InnerLoop& loop : loops) {
      const std::size_t carried = graph.GroupOf(loop.others.front());
      parts[carried].faces.push_back(PieceWithin(loop.wire, faces[loop.face].face));
      carries.insert({graph.GroupOf(loop.face), carried});
    }
  }

  // Joins what is only drawn on a face with that face's part.
  // Returns: whether there was any, and the parts are others now.
  bool JoinFlat(BodyGraph& graph) const
  {
    bool joined = false;
    for (const auto& [carrier, carried] : carries)
      if (IsFlat(Shelled(parts.at(carried).faces))) {
        graph.Join(carrier, carried);
        joined = true;
      }
    return joined;
  }

  Partition Closed() const
  {
    const std::map<std::size_t, int> depths = Depths();
    if (depths.empty())
      return FailedPartition("its parts stand on each other in a circle");
    Partition partition;
    for (const auto& [group, part] : parts) {
      Operand& operand = partition.operands.emplace_back();
      operand.faceIds = part.ids;
      operand.depth = depths.at(group);
      if (!Close(part.faces, operand))
        return FailedPartition("a part of it is not closed");
    }
    std::stable_sort(partition.operands.begin(), partition.operands.end(),
                     [](const Operand& a, const Operand& b) { return a.depth < b.depth; });
    return partition;
  }

private:
  struct Part
  {
    std::vector<TopoDS_Face> faces;
    std::vector<ReplayId> ids;
  };

  // One more than the deepest that a part stands on or in.
  // Returns: nothing where they stand on each other in a circle.
  std::map<std::size_t, int> Depths() const
  {
    std::map<std::size_t, int> depths;
    for (const auto& [group, part] : parts)
      depths[group] = 0;
    for (std::size_t round = 0; round <= parts.size(); ++round) {
      bool changed = false;
      for (const auto& [carrier, carried] : carries)
        if (depths[carried] <= depths[carrier]) {
          depths[carried] = depths[carrier] + 1;
          changed = true;
        }
      if (!changed)
        return depths;
    }
    return {};
  }

  // By the group that leads them.
  std::map<std::size_t, Part> parts;
  std::set<std::pair<std::size_t, std::size_t>> carries;
};

bool AreAllBuilt(const BuiltFaces& faces)
{
  return !faces.empty() && std::none_of(faces.begin(), faces.end(),
                                        [](const auto& built) { return built.face.IsNull(); });
}

constexpr const char* kFacesMissing = "not all faces could be built";

} // namespace

Partition PartitionOf(const BuiltFaces& faces)
{
  if (!AreAllBuilt(faces))
    return FailedPartition(kFacesMissing);
  BodyGraph graph(faces);
  while (true) {
    PartedFaces parted(faces, graph);
    if (!parted.JoinFlat(graph))
      return parted.Closed();
  }
}

Partition Undivided(const BuiltFaces& faces)
{
  if (!AreAllBuilt(faces))
    return FailedPartition(kFacesMissing);
  Operand operand;
  std::vector<TopoDS_Face> all;
  for (const auto& built : faces) {
    operand.faceIds.push_back(built.id);
    all.push_back(built.face);
  }
  if (!Close(all, operand))
    return FailedPartition("its faces leave an opening");
  return {{operand}, {}};
}

} // namespace Orvex
