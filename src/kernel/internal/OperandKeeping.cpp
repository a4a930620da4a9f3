#include "kernel/internal/OperandKeeping.h"

#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

namespace Orvex {

namespace {

// Puts a shape's mark "free" back at the end of the scope.
class FreeMark
{
public:
  explicit FreeMark(const TopoDS_Shape& marked)
      : shape(marked), wasFree(!marked.IsNull() && marked.Free())
  {}

  ~FreeMark()
  {
    if (wasFree)
      shape.Free(true);
  }

  FreeMark(const FreeMark&) = delete;
  FreeMark& operator=(const FreeMark&) = delete;

private:
  TopoDS_Shape shape;
  bool wasFree;
};

TopTools_ListOfShape ListOf(const TopoDS_Shape& shape)
{
  TopTools_ListOfShape list;
  list.Append(shape);
  return list;
}

} // namespace

TopoDS_Shape BooleanOf(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                       const TopoDS_Shape& second)
{
  const FreeMark firstMark(first), secondMark(second);
  // Not the constructor with two shapes: it builds at once, before any option can be set.
  BRepAlgoAPI_BooleanOperation boolean;
  boolean.SetOperation(operation);
  boolean.SetArguments(ListOf(first));
  boolean.SetTools(ListOf(second));
  boolean.SetNonDestructive(true);
  // Which sub-shape came from which is asked by nobody, and costs time.
  boolean.SetToFillHistory(false);
  boolean.Build();
  return boolean.IsDone() ? boolean.Shape() : TopoDS_Shape();
}

TopoDS_Shape CompoundOf(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  if (first.IsNull() || second.IsNull())
    return first.IsNull() ? second : first;
  const FreeMark firstMark(first), secondMark(second);
  TopoDS_Compound compound;
  BRep_Builder builder;
  builder.MakeCompound(compound);
  builder.Add(compound, first);
  builder.Add(compound, second);
  return compound;
}

} // namespace Orvex
