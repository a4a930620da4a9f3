#include "kernel/internal/OperandKeeping.h"

#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>

namespace Orvex {

namespace {

// A shape loses the mark "free" when it becomes part of another, and a result may take in an
// operand as a whole. This one has the operand's parts, but a holder of its own. Parts are not free
// any more; if one has been marked so again, it is stood in for as well.
TopoDS_Shape StandIn(const TopoDS_Shape& shape)
{
  if (shape.IsNull() || !shape.Free())
    return shape;
  TopoDS_Shape holder;
  holder.TShape(shape.TShape()->EmptyCopy());
  for (TopoDS_Iterator part(shape, false, false); part.More(); part.Next())
    BRep_Builder().Add(holder, StandIn(part.Value()));
  holder.Closed(shape.Closed());
  holder.Infinite(shape.Infinite());
  holder.Orientation(shape.Orientation());
  holder.Location(shape.Location());
  return holder;
}

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
  // Not the constructor with two shapes: it builds at once, before any option can be set.
  BRepAlgoAPI_BooleanOperation boolean;
  boolean.SetOperation(operation);
  boolean.SetArguments(ListOf(StandIn(first)));
  boolean.SetTools(ListOf(StandIn(second)));
  boolean.SetNonDestructive(true);
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
  TopoDS_Compound compound;
  BRep_Builder builder;
  builder.MakeCompound(compound);
  builder.Add(compound, StandIn(first));
  builder.Add(compound, StandIn(second));
  return compound;
}

} // namespace Orvex
