#include "kernel/internal/OperandKeeping.h"

#include "kernel/internal/TopologyCopy.h"

#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <cmath>

namespace Orvex {

namespace {

TopTools_ListOfShape ListOf(const TopoDS_Shape& shape)
{
  TopTools_ListOfShape list;
  list.Append(shape);
  return list;
}

// The kernel's search for intersections does not end, or ends the process, on points that are no
// numbers or so large that their squares come near the end of the numbers.
bool IsWithinSpace(const TopoDS_Shape& shape)
{
  constexpr double kFarthest = 1e50;
  const auto isFinite = [](double coordinate) { return std::abs(coordinate) <= kFarthest; };
  for (TopExp_Explorer vertex(shape, TopAbs_VERTEX); vertex.More(); vertex.Next()) {
    const gp_Pnt point = BRep_Tool::Pnt(TopoDS::Vertex(vertex.Current()));
    if (!isFinite(point.X()) || !isFinite(point.Y()) || !isFinite(point.Z()))
      return false;
  }
  return true;
}

} // namespace

TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second, const BooleanSetup& setup)
{
  if (!IsWithinSpace(first) || !IsWithinSpace(second))
    return {};
  TopologyCopier copier;
  // Not the constructor with two shapes: it builds at once, before any option can be set.
  BRepAlgoAPI_BooleanOperation boolean;
  boolean.SetOperation(operation);
  boolean.SetArguments(ListOf(copier.Copy(first)));
  boolean.SetTools(ListOf(copier.Copy(second)));
  // Which sub-shape came from which is asked by nobody, and costs time.
  boolean.SetToFillHistory(false);
  if (setup)
    setup(boolean);
  boolean.Build();
  return boolean.IsDone() ? boolean.Shape() : TopoDS_Shape();
}

TopoDS_Shape CompoundOf(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  if (first.IsNull() || second.IsNull())
    return first.IsNull() ? second : first;
  TopologyCopier copier;
  TopoDS_Compound compound;
  BRep_Builder builder;
  builder.MakeCompound(compound);
  builder.Add(compound, copier.Copy(first));
  builder.Add(compound, copier.Copy(second));
  return compound;
}

} // namespace Orvex
