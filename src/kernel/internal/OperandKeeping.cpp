#include "kernel/internal/OperandKeeping.h"

#include "kernel/internal/KernelLimits.h"
#include "kernel/internal/TopologyCopy.h"

#include <BRepAlgoAPI_Section.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

namespace Orvex {

namespace {

TopTools_ListOfShape ListOf(const TopoDS_Shape& shape)
{
  TopTools_ListOfShape list;
  list.Append(shape);
  return list;
}

} // namespace

TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second, const BooleanSetup& setup)
{
  if (!HasFinitePlaces(first) || !HasFinitePlaces(second))
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

TopoDS_Shape SectionOf(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  if (!HasFinitePlaces(first) || !HasFinitePlaces(second))
    return {};
  TopologyCopier copier;
  BRepAlgoAPI_Section section(copier.Copy(first), copier.Copy(second), false);
  section.SetToFillHistory(false);
  section.Build();
  return section.IsDone() ? section.Shape() : TopoDS_Shape();
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
